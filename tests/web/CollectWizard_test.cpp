// The collection wizard through its real pages, against the test server; rows worked out by hand.
#include "web/WebCollectWizard.h"

#include "WebWizard.h"
#include "platform/base/Handlers.h"
#include "platform/controls/ListBox.h"
#include "support/Bytes.h"

using namespace pollarix;
using namespace pollarix::test;

namespace {

const QByteArray TwoRespondents =
    "<userresponse>\r\n<r>\r\n<DatabaseID>1</DatabaseID>\r\n<QuestionNo>5</QuestionNo>\r\n"
    "<QType>0</QType>\r\n<text>Caf\xe9 \x80</text>\r\n</r>\r\n"
    "<r>\r\n<DatabaseID>1</DatabaseID>\r\n<QuestionNo>6</QuestionNo>\r\n<QType>1</QType>\r\n"
    "<Response>61</Response>\r\n<Response>63</Response>\r\n</r>\r\n</userresponse>\r\n"
    "<userresponse>\r\n<r>\r\n<DatabaseID>1</DatabaseID>\r\n<QuestionNo>8</QuestionNo>\r\n"
    "<QType>3</QType>\r\n<Response>7,41</Response>\r\n</r>\r\n</userresponse>\r\n";
const QStringList TheirRows = {"1|Web|5|1|Caf\u00e9 \u20ac|NULL", "1|Web|6|61||NULL",
                               "1|Web|6|63||NULL", "2|Web|8|41||7"};
const QStringList LogIn = {"GetWebUserID&param1=anna&param2=Sesame-93"};
const QStringList Listed =
    LogIn + QStringList{"GetSurveyListForUser&param1=17", "GetSurveyName&param1=3",
                        "GetSurveyName&param1=9", "GetSurveyName&param1= 12"};
const QString Results = "GetSurveyResults&param1=17-12.txt";
const QString Delete = "DeleteSurveyResultsFile&param1=17&param2=12";
const QString Question = "Survey results file has been imported. Do you want to delete the old "
                         "copy so it is not imported again?";

// {0} stands for the web address of the results.
struct CollectCase {
    const char* name;
    QByteArray body;
    QStringList messages;
    QStringList boxes;
    QStringList rows{};
    std::optional<MsgAnswer> answer{};
    ServerReply deletion{};
    friend void PrintTo(const CollectCase& run, std::ostream* out) { *out << run.name; }
};

const QStringList Got = {"Downloading survey results 17-12.txt.", "Downloaded results file.",
                         "Importing results file 17-12.txt.", "Imported results file."};
const QStringList GotNone = {Got[0], "Unable to download results file. Error {0}", " - Failed."};
const QStringList TwoImported = {"Successfully imported 2 respondent(s).", Question};

const CollectCase Cases[] = {
    {"WithDeletion", TwoRespondents,
     Got + QStringList{"Deleted old results file on server.", "Finished."}, TwoImported, TheirRows,
     MsgAnswer::Yes, ServerReply::Success("ok")},
    {"WithoutRespondents", "<p>", Got + QStringList{"Finished."},
     QStringList{"Successfully imported 0 respondent(s).", Question}, QStringList(), MsgAnswer::No},
    {"OfAFailure", "Failure: none yet", GotNone, {"Unable to download results file.{0}"}},
    {"ThatFailsHalfWay",
     TwoRespondents + QByteArray(TwoRespondents).replace("7,41", "41"),
     Got.mid(0, 3) + QStringList{"Subscript out of range - Failed."},
     {},
     TheirRows + QStringList{"3|Web|5|1|Caf\u00e9 \u20ac|NULL", "3|Web|6|61||NULL",
                             "3|Web|6|63||NULL", "4|Web|NULL|NULL|NULL|NULL"}},
};

class Collect : public WebWizard, public testing::WithParamInterface<CollectCase> {
  protected:
    Collect() {
        AddServer({"Town hall", server.Url(), "127.0.0.1:1", "", ""}, program.settings);
        SetFailureReporter([this](const Failure& failure) { failures << failure.Number(); });
    }
    ~Collect() override { SetFailureReporter({}); }

    void RunWizard() {
        Run([this] { wizard.mnuDataCollectWeb_Click(nullptr); });
    }
    void GoToLogin() {
        Press("frmWizWebCollect_Welcome");
        Press("frmWizWebCollect_ServerType");
    }
    static void LogInOn(QDialog& page) {
        Type(page, "txtName", "anna");
        Type(page, "txtPassword", Password);
        QTest::keyClick(page.focusWidget(), Qt::Key_Return);
    }
    QStringList Rows() {
        return SqlRows(path,
                       "SELECT respondent.id, source, QuestionID, ResponseID, SimpleResponse, "
                       "ResponseMatrixID FROM respondent LEFT JOIN respondent_responses AS answer "
                       "ON RespondentID = respondent.id ORDER BY respondent.id, answer.id",
                       6);
    }

    WebCollectWizard wizard{services};
    QList<int> failures;
};

} // namespace

TEST_P(Collect, TellsWhatHappensAndAsksTheServerNothingElse) {
    const CollectCase& run = GetParam();
    server.Answer("GetWebUserID", ServerReply::Success("17"));
    server.Answer("GetSurveyListForUser", ServerReply::Success("3,9, 12"));
    server.Answer("GetSurveyName", ServerReply::Success(" Caf\xe9 \x93x\x94"));
    server.Answer("GetSurveyName", {.body = "Nothing of that number"}); // not listed
    server.Answer("GetSurveyName", ServerReply::Success("Canteen"));
    server.Answer("GetSurveyResults", {.body = run.body});
    server.Answer("DeleteSurveyResultsFile", run.deletion);
    if (run.answer)
        dialogs.answers = {*run.answer};
    const auto here = [&](QStringList texts) {
        return texts.replaceInStrings("{0}", server.Url() + "17-12.txt");
    };

    const bool done = run.messages.last() == "Finished.";
    GoToLogin();
    On("frmWizWebCollect_Login", LogInOn);
    On("frmWizWebCollect_SelectSurvey", [](QDialog& page) {
        auto* list = page.findChild<ListBox*>("lstSurveys");
        ASSERT_EQ(list->ListCount(), 2);
        EXPECT_EQ(list->List(0), u" Caf\u00e9 \u201cx\u201d"_qs);
        EXPECT_EQ(list->ListIndex(), 0);
        EXPECT_EQ(page.focusWidget()->objectName(), "cmdNext");
        QTest::keyClick(list, Qt::Key_Down);
        Click(page, "cmdNext");
    });
    On("frmWizWebCollect_Download", [&](QDialog& page) {
        ExpectTold(page, here(run.messages), 4, done);
        Click(page, done ? "cmdNext" : "cmdCancel");
    });
    if (done)
        On("frmWizWebCollect_Complete", [](QDialog& page) {
            QTest::keyClick(page.focusWidget(), Qt::Key_Return); // Finish
        });
    RunWizard();

    EXPECT_EQ(server.Calls().replaceInStrings("%20", " "),
              Listed + QStringList(run.answer == MsgAnswer::Yes ? QStringList{Results, Delete}
                                                                : QStringList{Results}));
    EXPECT_EQ(dialogs.TakeTexts(), here(run.boxes));
    EXPECT_EQ(Rows(), run.rows);
    EXPECT_EQ(BytesOf(program.Path("17-12.txt")), // kept
              run.messages.contains(Got[1]) ? run.body : QByteArray());
    EXPECT_FALSE(program.state.FileChanged());
    EXPECT_TRUE(failures.isEmpty());
}

INSTANTIATE_TEST_SUITE_P(Runs, Collect, testing::ValuesIn(Cases),
                         [](const auto& run) { return run.param.name; });

TEST_F(Collect, CancelInTheMiddleOfAnImportTakesItBack) {
    server.Answer("GetWebUserID", ServerReply::Success("17"));
    server.Answer("GetSurveyListForUser", ServerReply::Success("12"));
    server.Answer("GetSurveyName", ServerReply::Success("Canteen"));
    server.Answer("GetSurveyResults", {.body = TwoRespondents.repeated(100)});
    GoToLogin();
    On("frmWizWebCollect_Login", LogInOn);
    Press("frmWizWebCollect_SelectSurvey");
    On(
        "frmWizWebCollect_Download", [](QDialog& page) { Click(page, "cmdCancel"); }, Got[2]);
    RunWizard();
    EXPECT_EQ(Rows(), QStringList());
    EXPECT_EQ(dialogs.TakeTexts(), QStringList());
    EXPECT_EQ(server.Calls().filter("GetSurveyResults"), QStringList(Results));
}

TEST_F(Collect, TheLoginIsTriedOnItsPage) {
    server.Answer("GetWebUserID", {.body = "Wrong password"});
    server.Answer("GetWebUserID", {.body = "Success<br>17"}); // cut short: nothing catches it
    server.Answer("GetWebUserID", ServerReply::Success("17"));
    server.Answer("GetSurveyListForUser", {.body = "None"});
    GoToLogin();
    On("frmWizWebCollect_Login", [&](QDialog& page) {
        Click(page, "cmdNext"); // without a name
        EXPECT_EQ(dialogs.TakeTexts().size(), 1);
        LogInOn(page);
        EXPECT_EQ(dialogs.TakeTexts(), QStringList("Unable to login. Error Wrong password"));
        EXPECT_TRUE(page.isVisible());
        Click(page, "cmdNext");
        EXPECT_EQ(failures, QList<int>{failure::InvalidArgument});
        EXPECT_TRUE(page.isVisible());
        EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
        Click(page, "cmdNext");
    });
    // No surveys: an empty list, no message, and no way on.
    On("frmWizWebCollect_SelectSurvey", [&](QDialog& page) {
        EXPECT_EQ(page.findChild<ListBox*>("lstSurveys")->ListCount(), 0);
        EXPECT_FALSE(page.findChild<QPushButton*>("cmdNext")->isEnabled());
        Click(page, "cmdBack");
    });
    Press("frmWizWebCollect_Login", "cmdCancel");
    RunWizard();
    EXPECT_TRUE(dialogs.TakeTexts().isEmpty());
    EXPECT_EQ(server.Calls(),
              LogIn + LogIn + LogIn + QStringList("GetSurveyListForUser&param1=17"));
}
