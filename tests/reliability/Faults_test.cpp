// What the user does in the main window while something is wrong with the disk: one message that
// names the file, everything as it was before, in the window and in the file, and the same action
// succeeds once the fault is gone.
#include <QAction>
#include <QCryptographicHash>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "platform/base/Handlers.h"
#include "platform/controls/Grid.h"
#include "platform/controls/ListBox.h"
#include "platform/controls/RichTextBox.h"
#include "platform/controls/TreeView.h"
#include "platform/files/Files.h"
#include "reliability/SystemCalls.h"
#include "shell/Attendant.h"
#include "shell/MainBas.h"
#include "shell/frmMain.h"
#include "support/FakeViews.h"
#include "support/PrintQt.h"
#include "support/SurveyFiles.h"
#include "web/ResultsReader.h"

using namespace pollarix;
using namespace pollarix::test;

namespace {

enum class Operation {
    Save,
    SaveAs,
    Import,
    TurnPage,
    ApplyScale,
    DeleteRespondent,
    Export,
    Table,
    Report,
    Form
};

enum class Fault { DiskFull, FileVanished, DirectoryVanished, PermissionGone, Locked };

std::string NameOf(Operation operation) {
    constexpr const char* names[] = {
        "Save",   "SaveAs", "Import", "TurnPage", "ApplyScale", "DeleteRespondent",
        "Export", "Table",  "Report", "Form"};
    return names[static_cast<int>(operation)];
}

// Another program that has the database for itself until it is ended.
class Locker {
  public:
    explicit Locker(const QString& path) {
        int ready[2];
        EXPECT_EQ(pipe(ready), 0);
        child_ = fork();
        if (child_ == 0) {
            const int file = open(qPrintable(path), O_RDWR);
            // The bytes of the file that stand for the database's locks.
            struct flock all {};
            all.l_type = F_WRLCK;
            all.l_start = 0x40000000;
            all.l_len = 512;
            const bool locked = fcntl(file, F_SETLK, &all) == 0;
            if (write(ready[1], locked ? "y" : "n", 1) == 1)
                pause();
            _exit(1);
        }
        char answer = 'n';
        EXPECT_EQ(read(ready[0], &answer, 1), 1);
        EXPECT_EQ(answer, 'y');
        close(ready[0]);
        close(ready[1]);
    }
    ~Locker() {
        kill(child_, SIGKILL);
        waitpid(child_, nullptr, 0);
    }
    Locker(const Locker&) = delete;
    Locker& operator=(const Locker&) = delete;

  private:
    pid_t child_ = -1;
};

QByteArray Content(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return "none";
    return QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha1).toHex();
}

class FaultTest : public testing::Test {
  protected:
    // What the user sees, and what lies on the disk.
    struct Seen {
        QString name, path;
        bool changed, open;
        int questions;
        QStringList tree;
        int respondents; // listed
        QByteArray survey, target;
        bool operator==(const Seen&) const = default;
    };

    TestState program;
    ApplicationState& state = program.state;
    QueuedDialogs& dialogs = program.dialogs;
    const QString directory = program.Path("work");
    QString target = directory + "/target";
    std::unique_ptr<frmMain> window;
    Attendant user;
    int acts = 0;

    FaultTest() {
        SetFailureReporter([this](const Failure& failure) {
            dialogs.MsgBox(FailureText(failure, state.CurrentFilename), MsgIcon::Critical,
                           MsgButtons::Ok);
        });
        SystemCalls::hurry = true;
        QDir().mkpath(directory);
        // Another user may have to come by here.
        chmod(qPrintable(program.directory.path()), 0755);
        const QString path = program.BlankSurvey("work/survey.plxs");
        RunSql(path,
               {"INSERT INTO question (question, questionno, qtype, pos) VALUES ('Why?', '1', 0, "
                "1), ('Which?', '2', 1, 2), ('How?', '3', 3, 3)",
                "INSERT INTO response (questionid, name, pos, responseMatrixGroupID) VALUES "
                "(2, 'these', 1, 2), (2, 'those', 2, 2), (3, 'fast', 1, 11)"});
        WriteWholeFile(program.Path("results.txt"),
                       "<userresponse>\r\n<r><DatabaseID>1</DatabaseID><QuestionNo>1</QuestionNo>"
                       "<QType>0</QType><text>because</text></r>\r\n</userresponse>\r\n");
        window = std::make_unique<frmMain>(state);
        window->Form_Load({});
        window->resize(1024, 740);
        window->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
        dialogs.fileNames = {{path, 0}};
        Menu("mnuFileOpen");
        for (int i = 0; i < 8; ++i)
            DoLoadXML(state, program.Path("results.txt"));
        dialogs.TakeTexts();
    }
    ~FaultTest() override {
        DoEvents(); // a repaint that failed is told a little later
        SystemCalls::hurry = false;
        SetFailureReporter({});
    }

    template <typename Control> Control* Find(const char* name, const QWidget* in = nullptr) {
        Control* control = (in ? in : window.get())->findChild<Control*>(name);
        EXPECT_NE(control, nullptr) << name;
        return control;
    }
    void Menu(const char* name) { Find<QAction>(name)->trigger(); }
    std::int64_t Count(const char* sql) { return state.SurveyConnection.Count(sql); }

    Seen Look() {
        QStringList tree;
        for (int i = 1; i <= Find<TreeView>("tvTreeView")->Count(); ++i)
            tree << Find<TreeView>("tvTreeView")->Item(i).Text();
        return {state.CurrentFilename,
                Find<QLabel>("StatusBar")->text(),
                state.FileChanged,
                state.SurveyConnection.IsOpen(),
                state.CurrentSurvey.QCount,
                tree,
                Find<Grid>("gRespondents")->Rows() - 1,
                Content(state.CurrentFilename),
                Content(target)};
    }

    // Does something about the disk, runs the action and puts all right again. False if that could
    // not be done here.
    bool During(Fault fault, const std::function<void()>& action) {
        const QString path = state.CurrentFilename;
        const QString away = fault == Fault::FileVanished ? path : directory;
        switch (fault) {
        case Fault::FileVanished:
        case Fault::DirectoryVanished:
            EXPECT_EQ(rename(qPrintable(away), qPrintable(program.Path("away"))), 0);
            action();
            EXPECT_EQ(rename(qPrintable(program.Path("away")), qPrintable(away)), 0);
            return true;
        case Fault::PermissionGone: {
            // The system's administrator may write everywhere, so another user tries.
            const bool administrator = geteuid() == 0;
            if (administrator && seteuid(65534) != 0) {
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
            return true;
        }
        case Fault::Locked: {
            const Locker locker(path);
            action();
            return true;
        }
        default:
            return false;
        }
    }
};

class Faults : public FaultTest, public testing::WithParamInterface<Operation> {
  protected:
    QWidget* dialog = nullptr; // in which the action is done

    // Leads the user to where the action can be done.
    void Around(const std::function<void()>& body) {
        const auto in = [&](QWidget& shown) {
            dialog = &shown;
            body();
        };
        switch (GetParam()) {
        case Operation::Save:
        case Operation::SaveAs: {
            auto* txtQ = Find<RichTextBox>("txtQ");
            txtQ->setFocus();
            QTest::keyClicks(txtQ, "x");
            body();
            break;
        }
        case Operation::TurnPage:
            Menu("mnuViewDataCollection");
            user.tasks["frmManualResponse"] = in;
            Find<QPushButton>("cmdEditResponse")->click();
            break;
        case Operation::ApplyScale:
            user.tasks["frmMatrixDefine"] = [&](QWidget& define) {
                QTimer::singleShot(0, &define, [&] {
                    QWidget* const add = QApplication::activeModalWidget();
                    QTest::keyClicks(add->findChild<QLineEdit*>("txtName"), "Seldom");
                    Find<QPushButton>("cmdAdd", add)->click();
                    in(*add);
                    add->close();
                });
                Find<QPushButton>("cmdOK", &define)->click();
            };
            Find<QPushButton>("cmdMatrixDefine")->click();
            break;
        case Operation::DeleteRespondent:
            Menu("mnuViewDataCollection");
            body();
            break;
        default:
            body();
        }
    }

    void Act() {
        dialogs.fileNames = {{target, GetParam() == Operation::Table ? 1 : 0}};
        dialogs.answers = {GetParam() == Operation::DeleteRespondent ? MsgAnswer::Yes
                                                                     : MsgAnswer::No};
        switch (GetParam()) {
        case Operation::Save:
            Menu("mnuFileSave");
            break;
        case Operation::SaveAs:
            Menu("mnuFileSaveAs");
            break;
        case Operation::Import:
            RunHandler([this] { DoLoadXML(state, program.Path("results.txt")); });
            break;
        case Operation::TurnPage:
            Find<QPlainTextEdit>("txtDCSimpleResponse", dialog)
                ->setPlainText(QString("typed %1").arg(++acts));
            Find<QPushButton>("cmdDCAnswersNext", dialog)->click();
            break;
        case Operation::ApplyScale:
            Find<QPushButton>("cmdOK", dialog)->click();
            break;
        case Operation::DeleteRespondent:
            Find<QPushButton>("cmdDeleteResponse")->click();
            break;
        case Operation::Export:
        case Operation::Table:
            Menu("mnuFileExport");
            break;
        case Operation::Report:
            Menu("mnuAnalyseDetail");
            break;
        case Operation::Form:
            Menu("mnuDataCollectionPaperSurvey");
            break;
        }
    }

    bool WritesTheSurvey() const { return GetParam() < Operation::Export; }

    // What is shown when all is well.
    QStringList Told() const {
        switch (GetParam()) {
        case Operation::Import:
            return {"Successfully imported 1 respondent(s)."};
        case Operation::DeleteRespondent:
            return {"Delete Respondent? This will delete all responses provided by this "
                    "Respondent."};
        case Operation::Report:
            return {"View detailed report now?"};
        case Operation::Form:
            return {"View paper based survey now?"};
        default:
            return {};
        }
    }

    void ExpectRefusal(const Seen& before, QStringList told) {
        if (GetParam() == Operation::DeleteRespondent) {
            EXPECT_EQ(told.takeFirst(), Told().front());
        }
        // When the copy can be made but not changed, opening the old file again is told as well.
        if (GetParam() == Operation::SaveAs && told.size() == 2) {
            EXPECT_TRUE(told.takeLast().contains("is open already"));
        }
        ASSERT_EQ(told.size(), 1) << told.join("\n").toStdString();
        const bool namesTarget = !WritesTheSurvey() || GetParam() == Operation::SaveAs;
        EXPECT_TRUE(told[0].contains(namesTarget ? target : state.CurrentFilename))
            << told[0].toStdString();
        if (qEnvironmentVariableIsSet("POLLARIX_SHOW"))
            std::cout << told[0].toStdString() << std::endl;
        const Seen now = Look();
        EXPECT_TRUE(now == before) << "after: " << told[0].toStdString();
        EXPECT_EQ(QDir(directory).entryList(QDir::Files | QDir::Hidden), files_);
        if (GetParam() == Operation::TurnPage) {
            EXPECT_EQ(Find<QLabel>("lblDCQuestion", dialog)->text(), "1. Why?");
        } else if (GetParam() == Operation::ApplyScale) {
            EXPECT_EQ(Find<ListBox>("lstList", dialog)->ListCount(), 1);
        }
    }

    void ExpectDone(const Seen& before, const QStringList& told) {
        EXPECT_EQ(told, Told());
        const Seen now = Look();
        switch (GetParam()) {
        case Operation::Save:
            EXPECT_FALSE(now.changed);
            EXPECT_NE(now.survey, before.survey);
            EXPECT_EQ(now.tree, before.tree);
            break;
        case Operation::SaveAs:
            EXPECT_FALSE(now.changed);
            EXPECT_EQ(now.name, target);
            EXPECT_EQ(now.path, target);
            EXPECT_EQ(Content(before.name), before.survey);
            break;
        case Operation::TurnPage:
            EXPECT_EQ(Find<QLabel>("lblDCQuestion", dialog)->text(), "2. Which?");
            EXPECT_EQ(SqlRows(state.CurrentFilename,
                              "SELECT simpleresponse FROM respondent_responses ORDER BY id DESC", 1)
                          .front(),
                      QString("typed %1").arg(acts));
            break;
        case Operation::ApplyScale:
            EXPECT_FALSE(dialog->isVisible());
            EXPECT_NE(now.survey, before.survey);
            break;
        case Operation::DeleteRespondent:
            EXPECT_EQ(now.respondents, before.respondents - 1);
            EXPECT_EQ(now.respondents, Count("SELECT count(*) FROM respondent"));
            break;
        case Operation::Import:
            EXPECT_NE(now.survey, before.survey);
            break;
        default:
            EXPECT_NE(now.target, before.target);
            EXPECT_EQ(now.survey, before.survey);
        }
    }

    QStringList files_; // of the directory, before the fault
};

} // namespace

TEST_P(Faults, AreToldOnceAndLeaveAllAsItWas) {
    for (const Fault fault :
         {Fault::FileVanished, Fault::DirectoryVanished, Fault::PermissionGone, Fault::Locked}) {
        SCOPED_TRACE(testing::Message() << "fault " << static_cast<int>(fault));
        target = directory + QString("/target%1").arg(static_cast<int>(fault));
        WriteWholeFile(target, "old");
        Around([&] {
            files_ = QDir(directory).entryList(QDir::Files | QDir::Hidden);
            const Seen before = Look();
            if (During(fault, [&] { Act(); })) {
                const QStringList told = dialogs.TakeTexts();
                // An open file whose name is gone can still be read.
                if (fault == Fault::FileVanished && !WritesTheSurvey()) {
                    ExpectDone(before, told);
                    return;
                }
                ExpectRefusal(before, told);
            }
            Act();
            ExpectDone(before, dialogs.TakeTexts());
        });
    }
}

// With room for nothing, then for a little more each time, until the action fits.
TEST_P(Faults, AFullDiskIsToldWhereverItIsMet) {
    WriteWholeFile(target, "old");
    Around([&] {
        files_ = QDir(directory).entryList(QDir::Files | QDir::Hidden);
        const Seen before = Look();
        int refusals = 0;
        for (std::int64_t room = 0;; room += WritesTheSurvey() ? 1500 : 200, ++refusals) {
            SystemCalls::room = room;
            Act();
            SystemCalls::room.reset();
            const QStringList told = dialogs.TakeTexts();
            if (told == Told()) {
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

INSTANTIATE_TEST_SUITE_P(, Faults,
                         testing::Values(Operation::Save, Operation::SaveAs, Operation::Import,
                                         Operation::TurnPage, Operation::ApplyScale,
                                         Operation::DeleteRespondent, Operation::Export,
                                         Operation::Table, Operation::Report, Operation::Form),
                         [](const auto& info) { return NameOf(info.param); });

// The page that is on the screen is the one whose answer is stored.
TEST_F(FaultTest, APageThatCannotBeReadTakesNoAnswer) {
    Menu("mnuViewDataCollection");
    const auto answers = [this] {
        return SqlRows(state.CurrentFilename,
                       "SELECT questionid, simpleresponse FROM respondent_responses WHERE "
                       "respondentid = 8 ORDER BY id",
                       2);
    };
    auto locker = std::make_unique<Locker>(state.CurrentFilename);
    user.tasks["frmManualResponse"] = [&](QWidget& shown) {
        const auto question = [&] { return Find<QLabel>("lblDCQuestion", &shown)->text(); };
        auto* answer = Find<QPlainTextEdit>("txtDCSimpleResponse", &shown);
        auto* next = Find<QPushButton>("cmdDCAnswersNext", &shown);
        EXPECT_EQ(dialogs.TakeTexts().size(), 1);
        locker.reset();
        next->click(); // reads the first page anew
        EXPECT_EQ(question(), "1. Why?");
        EXPECT_EQ(answers(), QStringList("1|because"));

        RunSql(state.CurrentFilename, {"ALTER TABLE question RENAME COLUMN questionno TO gone"});
        answer->setPlainText("first");
        next->click();
        EXPECT_EQ(dialogs.TakeTexts().size(), 1);
        EXPECT_EQ(question(), "1. Why?");
        RunSql(state.CurrentFilename, {"ALTER TABLE question RENAME COLUMN gone TO questionno"});
        answer->setPlainText("second");
        next->click();
        EXPECT_EQ(question(), "2. Which?");
        EXPECT_EQ(answers(), QStringList("1|second"));
    };
    // The newest stands in the first row.
    Find<QPushButton>("cmdEditResponse")->click();
    EXPECT_EQ(dialogs.TakeTexts(), QStringList());
}

// A save that failed at its end has given out ids that the file does not know.
TEST(FailedSave, LeavesNoIdBehind) {
    TestState program;
    FakeViews views;
    SurveyDocument document(program.state, views);
    const QString path = program.BlankSurvey("survey.plxs");
    document.DoOpen(path, false, 1);
    clsSurvey& survey = program.state.CurrentSurvey;
    const QString first = survey.AddQ("first", kind::OpenEnded, -1, 2);
    {
        Connection reader;
        reader.Open(path);
        const Recordset reading = reader.Execute("SELECT name FROM sqlite_schema");
        SystemCalls::hurry = true;
        EXPECT_THROW(document.DoSave(), Failure);
        SystemCalls::hurry = false;
    }
    survey.SwapQ(survey.AddQ("second", kind::OpenEnded, -1, 2), first);
    document.DoSave();
    EXPECT_EQ(SqlRows(path, "SELECT question FROM question ORDER BY pos", 1),
              QStringList({"second", "first"}));
}
