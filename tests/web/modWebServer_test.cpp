#include "web/modWebServer.h"

#include <gtest/gtest.h>

#include <QDate>
#include <QTemporaryDir>

#include "platform/files/Files.h"
#include "support/NumberOf.h"
#include "support/PrintQt.h"
#include "support/SurveyServer.h"

using namespace pollarix;
using namespace pollarix::test;

namespace {

class Client : public testing::Test {
  protected:
    QString ReplyFile() const { return directory.filePath("result.htm"); }

    QTemporaryDir directory;
    SurveyServer server;
    Internet internet;
    wininet net{internet};
    modWebServer client{net, Directories{"/nowhere", directory.path()}};
    QString base = server.Url();
};

} // namespace

TEST_F(Client, TheDateGoesOutOnceBehindTheUrlUnlessTheUrlIsUniqueAlready) {
    server.Answer("/x", {.body = "reply"});
    EXPECT_TRUE(net.DownloadToFile(base + "x?a=1", ReplyFile(), false));
    EXPECT_TRUE(net.DownloadToFile(base + "x?a=1", ReplyFile(), true));
    const QStringList targets = server.Targets();
    EXPECT_TRUE(targets.at(0).startsWith("/x?a=1&refreshme="));
    EXPECT_TRUE(targets[0].contains(QDate::currentDate().toString("yyyy")))
        << qPrintable(targets[0]);
    EXPECT_EQ(targets.at(1), "/x?a=1");
}

TEST_F(Client, ARefusedReplyIsTheErrorAndAnEarlierOneIsNoAnswer) {
    server.Answer("GetWebUserID", {.body = "success<br>17<br>"});
    EXPECT_EQ(client.GetWebUserID("a", "b", base), -1);
    EXPECT_EQ(client.LastServerError, "success<br>17<br>");
    EXPECT_EQ(client.GetSurveyName("9", base), ""); // has no reply: an error page
    EXPECT_EQ(client.LastServerError, "Nothing here");
    WriteWholeFile(ReplyFile(),
                   QByteArray(5 << 20, 'x')); // of an endless one, what a value could take
    QString value;
    EXPECT_FALSE(client.ServerGetValue(value));
    EXPECT_EQ(client.LastServerError.size(), 1 << 16);
    server.Answer("DeleteSurveyResultsFile", ServerReply::Success(""));
    EXPECT_FALSE(client.DeleteSurveyResultsFile("1", 2, base));

    // What an earlier call left in the reply file is never taken for the answer.
    server.Answer("GetSurveyName", ServerReply::Success("early"));
    server.Answer("GetSurveyName", {.body = "Success<br>late<br>" + QByteArray(5000, ' '),
                                    .ending = ServerReply::Ending::CutOff});
    EXPECT_EQ(client.GetSurveyName("9", base), "early");
    EXPECT_EQ(client.GetSurveyName("9", base), "");
    EXPECT_EQ(client.LastServerError, "");
}

TEST_F(Client, AnIdThatIsNoSmallNumberIsAFailure) {
    const std::pair<const char*, int> replies[] = {
        {" -1 ", 0}, {"32768", failure::Overflow}, {"17 users", failure::TypeMismatch}};
    for (const auto& [value, number] : replies)
        server.Answer("GetSurveyID", ServerReply::Success(value));
    for (const auto& [value, number] : replies) {
        EXPECT_EQ(NumberOf([&] { client.GetSurveyID("x", 1, base); }), number) << value;
        EXPECT_EQ(client.LastServerError, "Success");
    }
}

TEST_F(Client, AValueStandsBetweenTheTwelfthCharacterAndTheNextMark) {
    struct {
        QByteArray body;
        int failure;
        QString value;
    } const cases[] = {
        {"Success....17<br>", 0, "17"},
        {"Success<br>" + QByteArray(32755, 'x') + "<br>", 0, QString(32755, 'x')},
        {"Success<br>" + QByteArray(32756, 'x') + "<br>", failure::Overflow, {}},
        {"Success<br>" + QByteArray(5 << 20, 'x') + "<br>", failure::Overflow, {}},
        {"Success<br>17<BR>", failure::InvalidArgument, {}},
        {"Success123<br>", failure::InvalidArgument, {}}, // the mark is one too early
    };
    for (const auto& [body, failure, expected] : cases) {
        WriteWholeFile(ReplyFile(), body);
        QString value;
        EXPECT_EQ(NumberOf([&] { EXPECT_TRUE(client.ServerGetValue(value)); }), failure)
            << body.left(40).toStdString();
        EXPECT_EQ(value, expected);
        EXPECT_EQ(client.LastServerError, "Success");
    }
}
