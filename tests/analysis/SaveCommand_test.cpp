// What the three commands that write files have in common: cancelling, failing, and being left
// alone while they run.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>

#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

#include "analysis/AnsweredSurvey.h"
#include "analysis/DetailedReport.h"
#include "analysis/PaperSurvey.h"
#include "analysis/SurveyExport.h"
#include "support/PrintQt.h"

namespace pollarix::test {
namespace {

enum class Command { Report, Paper, Export, Table };

class SaveCommandTest : public testing::TestWithParam<Command>, protected AnsweredSurvey {
  protected:
    void Start() {
        switch (GetParam()) {
        case Command::Report:
            return DetailedReport(state, work).mnuAnalyseDetail_Click();
        case Command::Paper:
            return PaperSurvey(state, work).mnuDataCollectionPaperSurvey_Click();
        case Command::Export:
        case Command::Table:
            return SurveyExport(state, work).mnuFileExport_Click();
        }
    }
    void StartWith(const QString& path) {
        Choose(path, GetParam() == Command::Table ? 1 : 0);
        Start();
    }
    // The one message shown, without the file's name that has to stand in its front.
    QString WhyNot(const QString& path) {
        const QStringList texts = dialogs.TakeTexts();
        const QString front = "Unable to write to file " + path + ' ';
        EXPECT_EQ(texts.size(), 1);
        EXPECT_TRUE(texts.join('|').startsWith(front)) << texts.join('|').toStdString();
        return texts.join('|').mid(front.size());
    }
    void ExpectOnly(const QString& path, const QByteArray& old) {
        EXPECT_EQ(Read(path), old);
        EXPECT_EQ(QFileInfo(path).dir().entryList(QDir::Files | QDir::Hidden),
                  QStringList(QFileInfo(path).fileName()));
    }
};

QString OldFile(const QString& directory) {
    QDir().mkpath(directory);
    QFile file(directory + "/old.txt");
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("old");
    return file.fileName();
}

// Room for 64 KB at the directory; only the administrator can have one.
struct SmallDisk {
    explicit SmallDisk(const QString& directory)
        : path(directory.toLocal8Bit()),
          isThere(mount("tmpfs", path, "tmpfs", 0, "size=64k") == 0) {}
    ~SmallDisk() {
        if (isThere)
            umount2(path, MNT_DETACH);
    }
    const QByteArray path;
    const bool isThere;
};

TEST_P(SaveCommandTest, CancellingSaysAndChangesNothing) {
    StartWith("");
    EXPECT_EQ(dialogs.TakeTexts(), QStringList());
    EXPECT_TRUE(progress.shown.isEmpty());
}

TEST_P(SaveCommandTest, NamesTheFileThatCannotBeWritten) {
    const QString directory = Path("directory");
    QDir().mkpath(directory);
    StartWith(directory);
    EXPECT_EQ(WhyNot(directory), directory + ": it is a directory 75 Pollarix");
    EXPECT_TRUE(QDir(directory).isEmpty());

    StartWith(Path("missing/file"));
    EXPECT_EQ(WhyNot(Path("missing/file")),
              Path("missing/file") + ": No such file or directory 75 Pollarix");

    const QString old = OldFile(Path("d"));
    QFile::setPermissions(old, QFile::ReadOwner);
    StartWith(old);
    EXPECT_EQ(WhyNot(old), old + ": it is read-only 75 Pollarix");
    ExpectOnly(old, "old");
}

TEST_P(SaveCommandTest, ADirectoryWithoutPermissionKeepsTheOldFile) {
    const QString old = OldFile(Path("d"));
    ASSERT_EQ(chmod(qPrintable(old), 0666), 0);
    ASSERT_EQ(chmod(qPrintable(Path("")), 0755), 0);
    ASSERT_EQ(chmod(qPrintable(Path("d")), 0555), 0);
    // The system's administrator may write everywhere, so another user tries.
    const bool administrator = geteuid() == 0;
    if (administrator && setresuid(65534, 65534, 0) != 0)
        GTEST_SKIP() << "no other user to be: " << std::strerror(errno);
    StartWith(old);
    ASSERT_TRUE(!administrator || setresuid(0, 0, 0) == 0);
    EXPECT_EQ(WhyNot(old), old + ": Permission denied 75 Pollarix");
    ExpectOnly(old, "old");
    chmod(qPrintable(Path("d")), 0755);
}

TEST_P(SaveCommandTest, AFullDiskKeepsTheOldFile) {
    const QString disk = Path("disk");
    QDir().mkpath(disk);
    const SmallDisk mounted(disk);
    if (!mounted.isThere)
        GTEST_SKIP() << "no small disk to fill: " << std::strerror(errno);
    const QString old = OldFile(disk);
    AddRespondents(500, QString(300, 'x'));
    Sql("UPDATE question SET question = printf('%.*c', 200000, 'x') WHERE id = 11");
    StartWith(old);
    EXPECT_EQ(WhyNot(old), old + ": No space left on device 75 Pollarix");
    ExpectOnly(old, "old");
}

TEST_P(SaveCommandTest, AFailureInTheMiddleKeepsTheOldFile) {
    AddRespondents(3000, QString(100, 'x'));
    Sql("UPDATE question SET question = NULL WHERE id = 16;\n"
        "UPDATE respondent_responses SET SimpleResponse = NULL "
        "WHERE id = (SELECT max(id) FROM respondent_responses)");
    const QString old = OldFile(Path("d"));
    if (GetParam() == Command::Table) { // takes a Null for an empty cell
        Sql("UPDATE respondent SET submitteddate = 'never' WHERE id = 3000");
        StartWith(old);
        EXPECT_EQ(WhyNot(old), "\"never\" is not a date 13 Pollarix");
    } else {
        StartWith(old);
        EXPECT_EQ(WhyNot(old), "Invalid use of Null 94 Pollarix");
    }
    ExpectOnly(old, "old");
    EXPECT_FALSE(work.IsRunning());
    EXPECT_FALSE(QGuiApplication::overrideCursor());
}

TEST_P(SaveCommandTest, CannotBeStartedAgainWhileItRuns) {
    bool wasRunning = false;
    bool hadHourglass = false;
    progress.meanwhile = [&] {
        wasRunning = work.IsRunning();
        hadHourglass = QGuiApplication::overrideCursor();
        Start(); // would ask for a second file name
    };
    dialogs.answers.push_back(MsgAnswer::No);
    StartWith(Path("file"));
    EXPECT_TRUE(wasRunning);
    EXPECT_TRUE(hadHourglass);
    EXPECT_EQ(dialogs.fileRequests.size(), 1u);
    EXPECT_FALSE(work.IsRunning());
    EXPECT_FALSE(QGuiApplication::overrideCursor());
    EXPECT_EQ(progress.cleared, 1);
    ASSERT_FALSE(progress.shown.isEmpty());
    EXPECT_TRUE(progress.shown.front().contains(" of ")) << progress.shown.front().toStdString();
}

std::string NameOf(const testing::TestParamInfo<Command>& info) {
    constexpr std::array<const char*, 4> names = {"Report", "Paper", "Export", "Table"};
    return names[static_cast<std::size_t>(info.param)];
}

INSTANTIATE_TEST_SUITE_P(, SaveCommandTest,
                         testing::Values(Command::Report, Command::Paper, Command::Export,
                                         Command::Table),
                         NameOf);

} // namespace
} // namespace pollarix::test
