// The program is killed in the middle of its work, before each change that it makes to a file.
// Afterwards every action is there whole or not at all, and none that was finished is lost.
#include <QCryptographicHash>
#include <QDir>

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <iostream>

#include "reliability/Session.h"
#include "reliability/SystemCalls.h"

using namespace pollarix;
using namespace pollarix::test;

namespace {

void CopyFiles(const QString& from, const QString& to) {
    QDir(to).removeRecursively();
    QDir().mkpath(to);
    for (const QString& name : QDir(from).entryList(QDir::Files))
        ASSERT_TRUE(QFile::copy(from + '/' + name, to + '/' + name));
}

// What a survey holds, read by opening it as the program does: every row of every table, but for
// the dates of the respondents, which differ from run to run. Of another file its bytes.
QByteArray ContentOf(const QString& path) {
    QFile bytes(path);
    EXPECT_TRUE(bytes.open(QIODevice::ReadOnly)) << path.toStdString();
    if (!bytes.peek(6).startsWith("SQLite"))
        return bytes.readAll();
    QCryptographicHash digest(QCryptographicHash::Sha1);
    {
        Connection file;
        file.Open(path);
        EXPECT_EQ(file.Execute("PRAGMA integrity_check").Text(0), "ok");
        for (Recordset table = file.Execute("SELECT name FROM sqlite_schema WHERE type = 'table'");
             !table.AtEnd(); table.MoveNext()) {
            QStringList columns;
            const QString name = table.Text(0);
            for (Recordset column = file.Execute(("PRAGMA table_info(" + name + ')').toUtf8());
                 !column.AtEnd(); column.MoveNext())
                if (!column.Text("name").contains("date", Qt::CaseInsensitive))
                    columns << "quote(" + column.Text("name") + ')';
            digest.addData((name + columns.join('|')).toUtf8());
            for (Recordset row = file.Execute(
                     ("SELECT " + columns.join(" || '|' || ") + " FROM " + name + " ORDER BY rowid")
                         .toUtf8());
                 !row.AtEnd(); row.MoveNext())
                digest.addData(row.Text(0).toUtf8());
        }
    }
    // One from before anything was changed means nothing to the database: it is empty or begins
    // with zeros.
    QFile journal(path + "-journal");
    EXPECT_TRUE(!journal.open(QIODevice::ReadOnly) || !journal.read(1).startsWith('\xd9'));
    return digest.result().toHex();
}

// Keeps windows from being painted: the toolkit may do that in threads, and of those a copy of the
// process has none.
class Unpainted : public QObject {
  public:
    bool eventFilter(QObject*, QEvent* event) override {
        return event->type() == QEvent::Paint || event->type() == QEvent::UpdateRequest ||
               event->type() == QEvent::Expose;
    }
};

class Killed : public testing::Test {
  protected:
    // In memory, where there is such a disk: nothing is lost from it by a kill, and no time by
    // flushing.
    QTemporaryDir temporary{
        (QFileInfo("/dev/shm").isWritable() ? QString("/dev/shm") : QDir::tempPath()) +
        "/pollarix-XXXXXX"};
    const QString start = temporary.filePath("start");
    const QString directory = temporary.filePath("work");
    Session session{directory};

    void SetUp() override {
        session.state.SurveyConnection.Close(); // each process opens it for itself
        CopyFiles(directory, start);
    }

    // What survey and target hold.
    std::pair<QByteArray, QByteArray> Look() const {
        return {ContentOf(session.survey), ContentOf(session.target)};
    }

    // Does the action on the survey in a process of its own, a copy of this one, which is killed
    // before the n-th change; 0 is never. False if it came to its end.
    bool Do(Action action, const QString& survey, long killAt) {
        const pid_t child = fork();
        if (child == 0) {
            Unpainted unpainted;
            qApp->installEventFilter(&unpainted);
            session.Open(survey);
            // So that pages reach the file before the commit, as in a large import.
            session.state.SurveyConnection.Execute("PRAGMA cache_size = 5");
            session.Around(action, [&] {
                SystemCalls::killAt = killAt;
                session.Act(action);
                SystemCalls::killAt = 0;
            });
            EXPECT_EQ(session.dialogs.TakeTexts(), Session::Told(action));
            std::cout.flush();
            _exit(HasFailure() ? 1 : 0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        const bool killed = WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
        EXPECT_TRUE(killed || status == 0) << "status " << status;
        return killed;
    }
};

class BeforeEachChange : public Killed, public testing::WithParamInterface<Action> {};

} // namespace

TEST_P(BeforeEachChange, TheActionIsThereWholeOrNotAtAll) {
    const Action action = GetParam();
    const auto before = Look();
    Do(action, session.survey, 0);
    const auto after = Look();
    ASSERT_NE(before, after);
    bool killed = true;
    int changes = 0;
    while (killed && !HasFailure()) {
        CopyFiles(start, directory);
        killed = Do(action, session.survey, ++changes);
        const auto found = Look();
        EXPECT_TRUE(found == after || (killed && found == before)) << "before change " << changes;
    }
    EXPECT_GT(changes, WritesTheSurvey(action) ? 5 : 2);
    std::cout << changes - 1 << " kills" << std::endl;
}

INSTANTIATE_TEST_SUITE_P(, BeforeEachChange, testing::ValuesIn(Actions),
                         [](const auto& info) { return NameOf(info.param); });

// What the killed program left beside a survey is not taken for a part of the one that replaces it.
TEST_F(Killed, ASurveyThatWasCutOffIsReplacedBySaveAs) {
    ASSERT_TRUE(QFile::remove(start + "/target"));
    ASSERT_TRUE(QFile::copy(session.survey, start + "/target"));
    Do(Action::SaveAs, session.survey, 0);
    const auto expected = Look();
    bool killed = true;
    for (int changes = 1; killed && !HasFailure(); ++changes) {
        CopyFiles(start, directory);
        killed = Do(Action::Save, session.target, changes);
        Do(Action::SaveAs, session.survey, 0);
        EXPECT_EQ(Look(), expected) << "killed before change " << changes;
    }
}
