// The publish wizard through its real pages, against the test server and a real FTP server.
#include "web/WebPublishWizard.h"

#include <QClipboard>
#include <QPointer>

#include "WebWizard.h"
#include "platform/network/FtpConnection.h"
#include "support/Bytes.h"
#include "support/FtpServer.h"
#include "web/frmWizWebPublish_Complete.h"

using namespace pollarix;
using namespace pollarix::test;

namespace {

enum class Ftp { Works, NoSession, WrongPassword, Full };

// What differs from a first publish that goes well.
struct PublishCase {
    const char* name;
    int told;            // so many of its messages come first,
    QStringList further; // and these behind them
    QString box;
    const char* calls; // which of its calls are made
    Ftp ftp = Ftp::Works;
    const char* function = "Nothing"; // that is answered otherwise
    ServerReply reply{};
    friend void PrintTo(const PublishCase& run, std::ostream* out) { *out << run.name; }
};

const QStringList Told = {"Creating local survey.",
                          "Created local survey.",
                          "Logging anna into Town hall.",
                          "anna logged into Town hall.",
                          "Checking for status of My survey.",
                          "Creating new survey My survey.",
                          "Survey successfully transfered.",
                          "Asking server to accept new public survey.",
                          "Server has published new survey at http://x.example/s?a=1&b=2.",
                          "Success."};
const QStringList Asked = {"GetWebUserID&param1=anna&param2=Sesame-93",
                           "GetSurveyID&param1=My%20survey&param2=17",
                           "CreateSurvey&param1=17&param2=My%20survey",
                           "MoveNewSurvey&param1=17-8.xml&param2=8&param3=True&param4=17"};
const QString Exists = "This survey already exists. Do you want to update it?";
const QString NoLogin = "Unable to login. Error <b>No</b>";
const QString WrongPassword =
    "FTP Connection error Request to connect and login to an FTP server could not be completed "
    "because the supplied password is incorrect. ";

ServerReply Plain(const char* body) {
    return {.body = body};
}
QStringList Failed(const QString& why) {
    return {why, "Failed."};
}
const QStringList Cancelled = Failed("Cancelled survey update.");

const PublishCase Cases[] = {
    {"AFirstSurvey", 10, {}, "", "0123"},
    {"AnUpdate", 5, QStringList("Updating existing survey My survey.") + Told.mid(6), Exists, "013",
     Ftp::Works, "GetSurveyID", ServerReply::Success("8")},
    {"AnUpdateAnsweredNo", 5, Cancelled, Exists, "01", Ftp::Works, "GetSurveyID",
     ServerReply::Success("8")},
    {"ARefusedLogin", 3, Failed(NoLogin), NoLogin, "0", Ftp::Works, "GetWebUserID",
     Plain("<b>No</b>")},
    {"ARefusedCreation", 6, QStringList("Failed."), "Unable to create survey. Error Too many",
     "012", Ftp::Works, "CreateSurvey", Plain("Too many")},
    {"NoSessionIsNotTold", 6, Told.mid(7), "", "0123", Ftp::NoSession},
    {"AWrongFtpPassword", 6, Failed(WrongPassword), WrongPassword, "012", Ftp::WrongPassword},
    {"AFullDiskThere", 6, Failed("Error (FtpPutFile) 12003"), "", "012", Ftp::Full},
    {"ARefusedSurvey", 8, QStringList("Error - server did not accept new survey. Not today"), "",
     "0123", Ftp::Works, "MoveNewSurvey", Plain("Not today")},
};

class Publish : public WebWizard, public testing::WithParamInterface<PublishCase> {
  protected:
    void AddTestServer(const QString& ftpHost, const QString& ftpPassword = FtpServer::Password()) {
        AddServer({"Town hall", server.Url(), ftpHost, FtpServer::User(), ftpPassword},
                  program.settings);
    }
    // Replies that come after those a test has given.
    void AnswerTheRest() {
        server.Answer("GetWebUserID", ServerReply::Success("17"));
        server.Answer("GetSurveyID", {.body = "No such survey"});
        server.Answer("CreateSurvey", ServerReply::Success("8"));
        server.Answer("MoveNewSurvey", ServerReply::Success("http://x.example/s?a=1&b=2"));
    }
    // The pages up to the upload; by keyboard, as far as there is something to type.
    void GoToUpload() {
        On("frmWizWebPublish_Welcome", [](QDialog& page) {
            for (int press = 0; press < 2; ++press) // the second one is one too many
                page.findChild<QPushButton*>("cmdNext")->click();
        });
        Press("frmWizWebPublish_ServerType");
        On("frmWizWebPublish_Login", [](QDialog& page) {
            QTest::keyClicks(page.focusWidget(), "anna\t");
            QTest::keyClicks(page.focusWidget(), Password);
            ASSERT_TRUE(QTest::qWaitForWindowActive(&page));
            QTest::keyClick(&page, Qt::Key_N, Qt::AltModifier);
            EXPECT_FALSE(page.isVisible()); // at once
        });
        On("frmWizWebPublish_SurveyName", [](QDialog& page) {
            QTest::keyClicks(page.focusWidget(), "My survey\t");
            QTest::keyClick(page.focusWidget(), Qt::Key_Space);
            QTest::keyClick(page.focusWidget(), Qt::Key_Return);
        });
    }
    void RunWizard() {
        Run([this] { wizard.mnuDataPublishWeb_Click(&window); });
    }
    QStringList Texts() { return dialogs.TakeTexts(); }

    QWidget window;
    WebPublishWizard wizard{services};
};

} // namespace

TEST_P(Publish, TellsWhatHappensAndAsksTheServerNothingElse) {
    const PublishCase& run = GetParam();
    const FtpServer ftp({.largestFile = run.ftp == Ftp::Full ? qint64(20000) : qint64(-1)});
    AddTestServer(ftp.Host(), run.ftp == Ftp::WrongPassword ? "Rosebud-41" : FtpServer::Password());
    internet.hasSessions = run.ftp != Ftp::NoSession;
    server.Answer(run.function, run.reply);
    AnswerTheRest();
    if (run.box == Exists)
        dialogs.answers = {run.further == Cancelled ? MsgAnswer::No : MsgAnswer::Yes};
    program.state.CurrentSurvey.AddQ(QString(30000, 'x'), kind::OpenEnded, 1, 1);
    net.FtpHandle = std::make_unique<FtpConnection>(TransferPatience{}); // of a run that failed
    QStringList calls;
    for (const char* call = run.calls; *call; ++call)
        calls << Asked[*call - '0'];
    const QStringList messages = Told.mid(0, run.told) + run.further;
    const bool done = messages.last() == "Success.";

    GoToUpload();
    On("frmWizWebPublish_Upload", [&](QDialog& page) {
        ExpectTold(page, messages, 9, done);
        Click(page, done ? "cmdNext" : "cmdCancel");
    });
    if (done)
        Press("frmWizWebPublish_Complete");
    RunWizard();

    EXPECT_EQ(server.Calls(), calls);
    EXPECT_EQ(Texts(), run.box.isEmpty() ? QStringList() : QStringList(run.box));
    EXPECT_EQ(ftp.File("incoming/17-8.xml") == BytesOf(program.Path("test.xml")),
              messages.contains(Told[6]));
    // An upload that is refused on its way never closes its handles.
    const bool asked = calls.contains(Asked[3]);
    if (asked || run.ftp == Ftp::Full) {
        EXPECT_EQ(!net.FtpHandle, asked);
        EXPECT_EQ(!net.InternetHandle, asked);
    }
    EXPECT_FALSE((run.box + messages.join(' ')).contains(QRegularExpression("Sesame|Rosebud")));
}

INSTANTIATE_TEST_SUITE_P(Runs, Publish, testing::ValuesIn(Cases),
                         [](const auto& run) { return run.param.name; });

TEST_F(Publish, APageKeepsTheUserUntilItHasWhatItNeeds) {
    Press("frmWizWebPublish_Welcome");
    // Another server from the dialog, which asks for what is missing and then comes up selected.
    Press("frmWizWebPublish_ServerType", "cmdAdd");
    On("frmAddServer", [&](QDialog& form) {
        const std::pair<const char*, QString> fields[] = {{"txtServerName", "Here"},
                                                          {"txtServerURL", server.Url().chopped(1)},
                                                          {"txtFTPServer", "127.0.0.1"}};
        for (const auto& [box, text] : fields) {
            QTest::keyClick(&form, Qt::Key_Return);
            EXPECT_TRUE(Texts().value(0).endsWith(" has been entered. Please enter a " +
                                                  form.focusWidget()->accessibleName() +
                                                  " to continue."));
            EXPECT_EQ(form.focusWidget()->objectName(), box);
            Type(form, box, text);
        }
        Type(form, "txtFTPPassword", "p\"word\" ");
        Click(form, "cmdOK");
        EXPECT_EQ(GetServerEntry(1, program.settings)->ftpPassword, "p\"word\" ");
    });
    Press("frmWizWebPublish_ServerType");
    On("frmWizWebPublish_Login", [&](QDialog& page) {
        Click(page, "cmdCreate");
        EXPECT_EQ(dialogs.openedUrls, QStringList(server.Url() + "CreateAccount.php"));
        Type(page, "txtName", "anna");
        Click(page, "cmdNext");
        EXPECT_EQ(dialogs.shown.at(0).icon, MsgIcon::Critical);
        EXPECT_EQ(Texts(), QStringList("No username/password has been entered. Please enter your "
                                       "username and password, or press Create New Account to "
                                       "continue."));
        EXPECT_EQ(page.focusWidget()->objectName(), "txtName");
        Type(page, "txtPassword", Password);
        Click(page, "cmdNext");
    });
    On("frmWizWebPublish_SurveyName", [&](QDialog& page) {
        Click(page, "cmdNext");
        EXPECT_EQ(Texts(), QStringList("No survey name has been entered. Please enter a name for "
                                       "your survey to continue."));
        Type(page, "txtName", "x");
        Click(page, "cmdNext");
        views.selected.reset(); // without a selected node there is no document
    });
    On("frmWizWebPublish_Upload", [&](QDialog& page) {
        EXPECT_EQ(Messages(page), QStringList({Told[0], "Failed."}));
        page.close(); // the window's X is Cancel
    });
    RunWizard();
    EXPECT_EQ(server.Calls(), QStringList());
}

TEST_F(Publish, ARunThatIsLeftGoesOnToItsEndBehindClosedDoors) {
    const FtpServer ftp;
    AddTestServer(ftp.Host());
    AnswerTheRest();
    QPushButton button(&window);
    int presses = 0;
    QObject::connect(&button, &QPushButton::clicked, [&] { ++presses; });
    window.show();
    // In the midst of the run, and then whatever else one may press meanwhile.
    const auto leave = [&](QDialog& page, auto press) {
        press();
        EXPECT_FALSE(page.isVisible());
        EXPECT_LT(server.Calls().size(), Asked.size());
        press();
        QTest::mouseClick(&button, Qt::LeftButton);
        QTest::keyClick(&button, Qt::Key_Space);
        EXPECT_FALSE(window.close());
    };
    const char* upload = "frmWizWebPublish_Upload";
    GoToUpload();
    On(
        upload, [&](QDialog& page) { leave(page, [&] { Click(page, "cmdBack"); }); }, Told[2]);
    On("frmWizWebPublish_SurveyName", [&](QDialog& page) { // one step back, not two
        EXPECT_EQ(server.Calls(), Asked);                  // the run had ended before
        server.Forget();
        Click(page, "cmdNext");
    });
    const auto escape = [](QDialog& page) { QTest::keyClick(&page, Qt::Key_Escape); };
    On(
        upload, [&](QDialog& page) { leave(page, [&] { escape(page); }); }, Told[5]);
    RunWizard();
    EXPECT_EQ(server.Calls(), Asked);
    EXPECT_EQ(presses, 0);
    QTest::mouseClick(&button, Qt::LeftButton); // the door is open again
    EXPECT_EQ(presses, 1);
    EXPECT_TRUE(window.close());
}

TEST_F(Publish, WhatIsPressedWhileACallWaitsActsBeforeTheNextBox) {
    const QByteArray endless(1 << 20, 'x');
    AddTestServer("127.0.0.1");
    server.Answer("GetWebUserID", {.body = endless, .delayMs = 300});
    GoToUpload();
    int ticks = 0; // what happens while the call waits, as a repaint does
    QTimer clock;
    QObject::connect(&clock, &QTimer::timeout, [&] { ++ticks; });
    QPointer<QDialog> upload;
    On(
        "frmWizWebPublish_Upload",
        [&](QDialog& page) {
            upload = &page;
            clock.start(20);
            for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) // waits its turn
                qt_handleKeyEvent(page.windowHandle(), type, Qt::Key_C, Qt::AltModifier, "c");
        },
        Told[2]);
    dialogs.onBox = [&] {
        EXPECT_FALSE(upload->isVisible());
        EXPECT_GT(ticks, 3);
    };
    RunWizard();
    EXPECT_EQ(dialogs.shown.size(), 1u);
}

TEST_F(Publish, TheLastPageOffersTheAddressAsALinkOnlyIfItIsOne) {
    for (const auto& [address, isLink] : {std::pair("HTTPS://x.example/s?a=1&b=2", true),
                                          {"javascript:alert(1)", false},
                                          {"http://x.example/\r\nreboot\n", false}}) {
        WizardRun run;
        PublishState publish;
        publish.PublishedURL = address;
        frmWizWebPublish_Complete page(run, dialogs, publish, nullptr);
        page.show();
        EXPECT_EQ(page.findChild<QPushButton*>("Label6")->text(), address);
        Click(page, "Label6");
        EXPECT_EQ(dialogs.openedUrls, isLink ? QStringList(address) : QStringList());
        dialogs.openedUrls.clear();
        Click(page, "cmdCopy");
        EXPECT_EQ(QApplication::clipboard()->text(), QString(address).remove('\r').remove('\n'));
        EXPECT_EQ(Texts(), QStringList("URL copied to clipboard."));
    }
}
