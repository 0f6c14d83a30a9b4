// What the user does in the main window while something is wrong with the disk: one message that
// names the file, everything as it was before, in the window and in the file, and the same action
// succeeds once the fault is gone.
#include <QAbstractButton>
#include <QCryptographicHash>
#include <QDir>
#include <QLabel>
#include <QPlainTextEdit>

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include "platform/base/Failure.h"
#include "platform/controls/Grid.h"
#include "platform/controls/ListBox.h"
#include "platform/controls/TreeView.h"
#include "platform/files/Files.h"
#include "reliability/Session.h"
#include "reliability/SystemCalls.h"

using namespace pollarix;
using namespace pollarix::test;

namespace {

enum class Fault { FileVanished, DirectoryVanished, PermissionGone, Locked };

// Somebody else who has the database alone until it is closed.
std::unique_ptr<Connection> Locked(const QString& path) {
    auto other = std::make_unique<Connection>();
    other->Open(path);
    other->Execute("BEGIN EXCLUSIVE");
    return other;
}

// What the user sees, and what lies on the disk.
struct Seen {
    QString name, path;
    bool changed, open;
    QStringList tree, files;
    int respondents; // listed
    QByteArray survey, target;
    bool operator==(const Seen&) const = default;
};

class FaultTest : public testing::Test {
  protected:
    QTemporaryDir temporary;
    const QString directory = temporary.filePath("work");
    Session session{directory};
    QueuedDialogs& dialogs = session.dialogs;

    FaultTest() {
        SystemCalls::hurry = true;
        // Another user may have to come by here.
        chmod(qPrintable(temporary.path()), 0755);
        chmod(qPrintable(session.program.directory.path()), 0755);
    }
    ~FaultTest() override { SystemCalls::hurry = false; }

    static QByteArray Content(const QString& path) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            return "none";
        return QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha1).toHex();
    }
    Seen Look() const {
        const auto* nodes = session.Find<TreeView>("tvTreeView");
        QStringList tree;
        for (int i = 1; i <= nodes->Count(); ++i)
            tree << nodes->Item(i).Text();
        const QString& open = session.state.CurrentFilename();
        return {open,
                session.Find<QLabel>("StatusBar")->text(),
                session.state.FileChanged(),
                session.state.SurveyConnection.IsOpen(),
                tree,
                QDir(directory).entryList(QDir::Files | QDir::Hidden),
                session.Find<Grid>("gRespondents")->Rows() - 1,
                Content(open),
                Content(session.target)};
    }

    // Does something about the disk, runs the action and puts all right again. False if that could
    // not be done here.
    bool During(Fault fault, const std::function<void()>& action) {
        const QString path = session.state.CurrentFilename();
        switch (fault) {
        case Fault::FileVanished:
        case Fault::DirectoryVanished: {
            const QString gone = fault == Fault::FileVanished ? path : directory;
            const QString elsewhere = temporary.filePath("away");
            EXPECT_EQ(rename(qPrintable(gone), qPrintable(elsewhere)), 0);
            action();
            EXPECT_EQ(rename(qPrintable(elsewhere), qPrintable(gone)), 0);
            break;
        }
        case Fault::PermissionGone: {
            // The system's administrator may write everywhere, so another user tries.
            if (geteuid() == 0 && seteuid(65534) != 0) {
                std::cout << "Permission was not tried: there is no other user to be\n";
                return false;
            }
            const auto allow = [&](mode_t ofDirectory, mode_t ofFile) {
                const uid_t self = geteuid();
                EXPECT_EQ(seteuid(getuid()), 0);
                EXPECT_EQ(chmod(qPrintable(directory), ofDirectory), 0);
                EXPECT_EQ(chmod(qPrintable(path), ofFile), 0);
                EXPECT_EQ(seteuid(self), 0);
            };
            allow(0555, 0444);
            action();
            allow(0755, 0644);
            EXPECT_EQ(seteuid(getuid()), 0);
            break;
        }
        case Fault::Locked: {
            const auto locked = Locked(path);
            action();
            break;
        }
        }
        return true;
    }
};

class Faults : public FaultTest, public testing::WithParamInterface<Action> {
  protected:
    const Action action = GetParam();

    void ExpectRefusal(const Seen& before, QStringList told) {
        if (action == Action::DeleteRespondent) {
            EXPECT_EQ(told.takeFirst(), Session::Told(action).front());
        }
        ASSERT_EQ(told.size(), 1) << told.join("\n").toStdString();
        const bool namesTarget = !WritesTheSurvey(action) || action == Action::SaveAs;
        EXPECT_TRUE(
            told[0].contains(namesTarget ? session.target : session.state.CurrentFilename()))
            << told[0].toStdString();
        EXPECT_TRUE(Look() == before) << "after: " << told[0].toStdString();
        if (action == Action::TurnPage) {
            EXPECT_EQ(session.Find<QLabel>("lblDCQuestion", session.dialog)->text(), "1. Why?");
        } else if (action == Action::AddScale) {
            EXPECT_EQ(session.Find<ListBox>("lstList", session.dialog)->ListCount(), 1);
        }
    }

    void ExpectDone(const Seen& before, const QStringList& told) {
        EXPECT_EQ(told, Session::Told(action));
        const Seen now = Look();
        EXPECT_EQ(now.survey == before.survey, !WritesTheSurvey(action));
        EXPECT_EQ(now.target == before.target, WritesTheSurvey(action) && action != Action::SaveAs);
        switch (action) {
        case Action::Save:
            EXPECT_FALSE(now.changed);
            break;
        case Action::SaveAs:
            EXPECT_FALSE(now.changed);
            EXPECT_EQ(now.name, session.target);
            EXPECT_EQ(now.path, session.target);
            EXPECT_EQ(Content(before.name), before.survey);
            break;
        case Action::TurnPage:
            EXPECT_EQ(session.Find<QLabel>("lblDCQuestion", session.dialog)->text(), "2. Which?");
            EXPECT_EQ(SqlRows(now.name,
                              "SELECT simpleresponse FROM respondent_responses ORDER BY id DESC", 1)
                          .front(),
                      session.typed);
            break;
        case Action::AddScale:
            EXPECT_FALSE(session.dialog->isVisible());
            break;
        case Action::AddRespondent:
        case Action::DeleteRespondent:
            EXPECT_EQ(now.respondents,
                      before.respondents + (action == Action::AddRespondent ? 1 : -1));
            EXPECT_EQ(SqlRows(now.name, "SELECT count(*) FROM respondent", 1),
                      QStringList(QString::number(now.respondents)));
            break;
        default:
            break;
        }
    }
};

} // namespace

TEST_P(Faults, AreToldOnceAndLeaveAllAsItWas) {
    for (const Fault fault :
         {Fault::FileVanished, Fault::DirectoryVanished, Fault::PermissionGone, Fault::Locked}) {
        SCOPED_TRACE(testing::Message() << "fault " << static_cast<int>(fault));
        session.target = directory + QString("/target%1").arg(static_cast<int>(fault));
        WriteWholeFile(session.target, "old");
        session.Around(action, [&] {
            const Seen before = Look();
            if (During(fault, [&] { session.Act(action); })) {
                const QStringList told = dialogs.TakeTexts();
                // An open file whose name is gone can still be read, and saved under another.
                if (fault == Fault::FileVanished &&
                    (!WritesTheSurvey(action) || action == Action::SaveAs)) {
                    ExpectDone(before, told);
                    return;
                }
                ExpectRefusal(before, told);
            }
            session.Act(action);
            ExpectDone(before, dialogs.TakeTexts());
        });
    }
}

// With room for nothing, then for a little more each time, until the action fits.
TEST_P(Faults, AFullDiskIsToldWhereverItIsMet) {
    session.Around(action, [&] {
        const Seen before = Look();
        int refusals = 0;
        for (std::int64_t room = 0;; room += WritesTheSurvey(action) ? 1500 : 200, ++refusals) {
            SystemCalls::room = room;
            session.Act(action);
            SystemCalls::room.reset();
            const QStringList told = dialogs.TakeTexts();
            if (told == Session::Told(action)) {
                ExpectDone(before, told);
                break;
            }
            SCOPED_TRACE(testing::Message() << "room for " << room << " bytes");
            ExpectRefusal(before, told);
            ASSERT_FALSE(HasFailure());
        }
        EXPECT_GE(refusals, 2);
        std::cout << refusals << " refusals\n";
    });
}

INSTANTIATE_TEST_SUITE_P(, Faults, testing::ValuesIn(Actions),
                         [](const auto& info) { return NameOf(info.param); });
