// The program and the server together: the program's own wizards publish to the real server and
// collect from it.
#include <QFile>

#include "server/RawSocket.h"
#include "server/ServerProcess.h"
#include "server/store/Store.h"
#include "web/WebCollectWizard.h"
#include "web/WebPublishWizard.h"
#include "web/WebWizard.h"

using namespace pollarix;
using namespace pollarix::test;

namespace {

constexpr server::Time Now = 1'800'000'000;
const QString Name = u"50% of \u201cus\u201d & you #1 = caf\u00e9"_qs;
const QString Secret = u"p&ram+ 100%25 \u20ac\u00e9"_qs;

class Together : public WebWizard {
  protected:
    Together() {
        EXPECT_EQ(running.Run({"user", "add", "anna"}, Secret.toUtf8() + '\n'), "");
        AddServer({"Here", running.Url(), running.FtpHost(), "", ""}, program.settings);
        clsSurvey& survey = program.state.CurrentSurvey;
        Add("What's new?", kind::OpenEnded, 11, 1);
        clsQ& check = Add("Which?", kind::Check, 12, 1);
        check.AddResponse("Yes", 41, -1, "");
        check.AddResponse("a < b", 42, -1, "");
        Add("Read this", kind::Text, 13, 1);
        Add("Rate", kind::Matrix, 14, 2).AddResponse("Food", 51, -1, "");
        EXPECT_EQ(survey.QCount(), 4);
        RunSql(path, {"DELETE FROM responsematrix WHERE ResponseMatrixGroupID = 2",
                      "INSERT INTO responsematrix (id, name, ResponseMatrixGroupID, pos) VALUES"
                      "(301, 'Good', 2, 1), (302, 'Bad', 2, 2)"});
    }
    clsQ& Add(const QString& text, std::int32_t kind, int id, int scale) {
        clsSurvey& survey = program.state.CurrentSurvey;
        return *survey.GetQ(survey.AddQ(text, kind, id, scale));
    }

    // Any letters, which keys alone can't give.
    static void Put(QDialog& page, const char* box, const QString& text) {
        page.findChild<QLineEdit*>(box)->setText(text);
    }

    // Gives the survey's URL, or the last message of a run that failed.
    QString Publish(const QString& password = Secret) {
        QString result;
        Press("frmWizWebPublish_Welcome");
        Press("frmWizWebPublish_ServerType");
        On("frmWizWebPublish_Login", [&](QDialog& page) {
            Put(page, "txtName", "anna");
            Put(page, "txtPassword", password);
            Click(page, "cmdNext");
        });
        On("frmWizWebPublish_SurveyName", [](QDialog& page) {
            Put(page, "txtName", Name);
            Click(page, "cmdNext");
        });
        On("frmWizWebPublish_Upload", [&](QDialog& page) {
            const QStringList messages = Messages(page);
            const bool done = messages.last() == "Success.";
            result = done ? messages[messages.size() - 2].section(' ', -1).chopped(1)
                          : messages.join('/');
            Click(page, "cmdCancel");
        });
        WebPublishWizard wizard(services);
        Run([&] { wizard.mnuDataPublishWeb_Click(nullptr); });
        return result;
    }

    // Gives the messages of the run.
    QStringList Collect() {
        QStringList told;
        Press("frmWizWebCollect_Welcome");
        Press("frmWizWebCollect_ServerType");
        On("frmWizWebCollect_Login", [&](QDialog& page) {
            Put(page, "txtName", "anna");
            Put(page, "txtPassword", Secret);
            Click(page, "cmdNext");
        });
        Press("frmWizWebCollect_SelectSurvey");
        On("frmWizWebCollect_Download", [&](QDialog& page) {
            told = Messages(page);
            Click(page, "cmdCancel");
        });
        WebCollectWizard wizard(services);
        Run([&] { wizard.mnuDataCollectWeb_Click(nullptr); });
        return told;
    }

    QStringList Rows() const {
        return SqlRows(path,
                       "SELECT RespondentID, QuestionID, ResponseID, SimpleResponse, "
                       "ResponseMatrixID FROM Respondent_Responses ORDER BY id",
                       5);
    }

    ServerProcess running;
};

} // namespace

TEST_F(Together, WhatIsPublishedIsAnsweredCollectedUpdatedAndCollectedAgain) {
    const QString url = Publish();
    ASSERT_TRUE(url.startsWith(running.Url() + "s/")) << url.toStdString();

    server::Store store(running.Data());
    const auto survey = store.FindSurveyByAddress(url.section('/', -1).toStdString());
    ASSERT_TRUE(survey);
    EXPECT_EQ(survey->name, Name.toStdString());
    EXPECT_FALSE(survey->isPublic);
    const auto answer = [&](int version, const char* token, const char* answers) {
        EXPECT_EQ(store.Submit(survey->id, version, token, answers, Now),
                  server::Submitted::Stored);
    };
    answer(1, "1", "11=</text> caf\u00e9\\n\u20ac;12=41,42;14=51:302");
    answer(1, "2", "12=42");

    dialogs.answers = {MsgAnswer::Yes};
    QStringList told = Collect();
    EXPECT_TRUE(told.contains("Deleted old results file on server."))
        << told.join('/').toStdString();
    QStringList rows = {u"1|11|1|< /text> caf\u00e9\n\u20ac|NULL"_qs,
                        "1|12|41||NULL",
                        "1|12|42||NULL",
                        "1|14|51||302",
                        "2|11|1||NULL",
                        "2|12|42||NULL"};
    EXPECT_EQ(Rows(), rows);

    // An update, while somebody still has the first form before him.
    Add("And why?", kind::OpenEnded, 15, 1);
    dialogs.answers = {MsgAnswer::Yes};
    EXPECT_EQ(Publish(), url);
    answer(1, "3", "11=old");
    answer(2, "4", "15=new");
    dialogs.answers = {MsgAnswer::No};
    EXPECT_EQ(Collect().last(), "Finished.");
    rows << "3|11|1|old|NULL"
         << "4|11|1||NULL"
         << "4|15|1|new|NULL";
    EXPECT_EQ(Rows(), rows);
    EXPECT_EQ(store.CountResults(survey->id).waiting, 2); // not deleted, so still there

    // What was deleted after a fetch can be had back.
    EXPECT_EQ(running.Run({"results", "restore", QString::number(survey->id)}),
              "2 results wait to be fetched again.\n");
    const QString log = running.Log();
    for (const QString& secret : {QString("anna"), Name, Secret, QString("127.0.0.1"), url})
        EXPECT_FALSE(log.contains(secret)) << log.toStdString();
}

TEST(ALogin, IsOverWithThePasswordAndNotForOtherSites) {
    ServerProcess running;
    running.Run({"user", "add", "anna"}, "long-enough\n");
    const auto call = [&](const std::string& values, const std::string& header = "") {
        RawSocket client(running.Port());
        client.Send("GET /ws/CallFunc.php?func=" + values + "&refreshme=1 HTTP/1.1\r\nHost: x\r\n" +
                    header + "Connection: close\r\n\r\n");
        const std::string reply = client.Receive();
        return reply.substr(reply.find("\r\n\r\n") + 4);
    };
    const auto ticket = [&](const std::string& password) {
        const std::string reply = call("GetWebUserID&param1=anna&param2=" + password);
        EXPECT_TRUE(reply.starts_with("Success<br>")) << reply;
        return reply.substr(11, reply.find("<br>", 11) - 11);
    };
    const auto isGood = [&](const std::string& user) {
        return call("GetSurveyListForUser&param1=" + user) == "Success<br><br>";
    };
    // Pages elsewhere lock nobody out, with their visitors' browsers.
    for (const std::string header : {"Sec-Fetch-Site: cross-site\r\n", "Origin: http://evil\r\n"})
        for (int i = 0; i < 12; ++i)
            EXPECT_TRUE(call("GetWebUserID&param1=anna&param2=x", header).starts_with("Failure: "));
    const std::string first = ticket("long-enough");
    EXPECT_TRUE(isGood(first));
    running.Run({"user", "password", "anna"}, "another-one\n");
    EXPECT_FALSE(isGood(first));
    const std::string second = ticket("another-one");
    running.Run({"user", "disable", "anna"});
    EXPECT_FALSE(isGood(second));
    running.Run({"user", "enable", "anna"});
    EXPECT_FALSE(isGood(second)); // it doesn't come back
    EXPECT_TRUE(isGood(ticket("another-one")));
}

TEST_F(Together, ARefusalIsShownInTheServersOwnWords) {
    EXPECT_TRUE(Publish("wrong").contains(
        "Unable to login. Error The user name or the password is wrong."));
    dialogs.TakeTexts();
    const QString url = Publish();
    ASSERT_TRUE(url.startsWith("http")) << url.toStdString();
    // A document that isn't fit; what was live stays.
    Add("Twice", kind::OpenEnded, 11, 1);
    dialogs.answers = {MsgAnswer::Yes};
    const QString told = Publish();
    EXPECT_TRUE(told.contains("Error - server did not accept new survey. ")) << told.toStdString();
    server::Store store(running.Data());
    EXPECT_EQ(store.FindSurveyByAddress(url.section('/', -1).toStdString())->version, 1);
}
