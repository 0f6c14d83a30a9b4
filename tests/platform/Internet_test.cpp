#include "platform/network/Internet.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "platform/files/Files.h"
#include "platform/network/FtpConnection.h"
#include "platform/network/FtpReply.h"
#include "support/Bytes.h"
#include "support/FtpServer.h"
#include "support/Loopback.h"
#include "support/PrintQt.h"
#include "support/SurveyServer.h"

using namespace pollarix;
using namespace pollarix::test;

namespace {

// For peers that never answer; the others may take their time on a busy machine.
constexpr TransferPatience Impatient{.connectSeconds = 1, .stallSeconds = 1};

class Download : public testing::Test {
  protected:
    std::int32_t Fetch(const QString& url) {
        return internet.UrlDownloadToFile(url, directory.filePath("reply"));
    }
    // What the server saw of the path and query.
    QString SentFor(const QString& rest) {
        server.Forget();
        EXPECT_EQ(Fetch(server.Url() + rest), 0);
        return server.Targets().value(0);
    }
    QByteArray Reply() const { return BytesOf(directory.filePath("reply")); }
    void KeepOldReply() const { WriteWholeFile(directory.filePath("reply"), "old"); }
    // The old reply is as it was, and nothing lies beside it.
    void ExpectUntouched() const {
        EXPECT_EQ(Reply(), "old");
        EXPECT_EQ(QDir(directory.path()).entryList(QDir::Files), QStringList("reply"));
    }

    QTemporaryDir directory;
    SurveyServer server;
    Internet internet;
};

} // namespace

TEST_F(Download, TheRequestLineHasTheUrlAsItStandsButForWhatCannotStandThere) {
    EXPECT_EQ(SentFor("a?x=1&y=#2#&z=%41\"<>\\^`{|}'+?;"), "/a?x=1&y=#2#&z=%41\"<>\\^`{|}'+?;");
    EXPECT_EQ(SentFor("../a/./b?c=../d"), "/../a/./b?c=../d");
    EXPECT_EQ(SentFor("a b?x= \t\r\n\x7f"), "/a%20b?x=%20%09%0D%0A%7F");
    EXPECT_EQ(SentFor(u"a?x=\u00e9\u20ac&y=\u043f\u00e9&z=\u00e9"_qs),
              "/a?x=%E9%80&y=%D0%BF%C3%A9&z=%E9");
    // One line, the host, and no header that tells of this program or of an earlier call.
    const QByteArray head = server.Heads().at(0).toLower();
    for (const char* header : {"user-agent", "cookie", "referer", "accept-encoding"})
        EXPECT_FALSE(head.contains(header)) << head.toStdString();
}

TEST_F(Download, RedirectsAreFollowedOnTheWebAndNowhereElse) {
    server.Answer("/answer", {.body = "here"});
    server.Answer("/a/relative", ServerReply::Redirect("../answer?x=1#part", 307));
    server.Answer("/absolute", ServerReply::Redirect(server.Url().toUtf8() + "a/relative", 301));
    EXPECT_EQ(Fetch(server.Url() + "absolute#raw"), 0);
    EXPECT_EQ(Reply(), "here");
    EXPECT_EQ(server.Targets(), QStringList({"/absolute#raw", "/a/relative", "/answer?x=1"}));

    KeepOldReply();
    const FtpServer ftp;
    server.Answer("/ftp", ServerReply::Redirect("ftp://" + ftp.Host().toUtf8() + "/passwords"));
    server.Answer("/file", ServerReply::Redirect("file:///etc/passwd"));
    server.Answer("/again", ServerReply::Redirect("/again"));
    EXPECT_EQ(Fetch(server.Url() + "ftp"), internet::UnknownScheme);
    EXPECT_EQ(Fetch(server.Url() + "file"), internet::UnknownScheme);
    server.Forget();
    EXPECT_NE(Fetch(server.Url() + "again"), 0);
    EXPECT_LT(server.Targets().size(), 50);
    EXPECT_TRUE(ftp.Commands().isEmpty());
    ExpectUntouched();
}

TEST_F(Download, WhatFailsLeavesTheOldReplyAndSaysWhy) {
    KeepOldReply();
    using Ending = ServerReply::Ending;
    server.Answer("/cut", {.body = QByteArray(100000, 'x'), .ending = Ending::CutOff});
    server.Answer("/dropped", {.ending = Ending::Dropped});
    server.Answer("/silent", {.body = "late", .delayMs = 60000});
    const QString closed = QString("http://127.0.0.1:%1/").arg(FreePort());
    const std::pair<QString, std::int32_t> cases[] = {
        {server.Url() + "cut", internet::ConnectionEnded},
        {server.Url() + "dropped", internet::ConnectionEnded},
        {closed, internet::CannotConnect},
        {"http://" + QString(80, 'a') + ".example/", internet::NameNotResolved},
        {"http://two words/", internet::InvalidUrl},
        {"file:///etc/passwd", internet::UnknownScheme},
        {"", internet::UnknownScheme},
    };
    for (const auto& [url, code] : cases) {
        EXPECT_EQ(Fetch(url), code) << url.toStdString();
        ExpectUntouched();
    }
    server.Answer("/dripping", {.ending = Ending::Dripping});
    for (const char* slow : {"silent", "dripping"}) {
        EXPECT_EQ(
            Internet(Impatient).UrlDownloadToFile(server.Url() + slow, directory.filePath("reply")),
            internet::TimedOut);
        ExpectUntouched();
        server.Forget();
    }
    EXPECT_EQ(internet.UrlDownloadToFile(server.Url(), directory.filePath("no/such/directory")),
              internet::LocalFileAccess);
}

namespace {

class Upload : public testing::Test {
  protected:
    // What connecting to the server ends in, with the password at hand.
    std::int32_t CodeOfConnecting(const QString& server, const QString& user = FtpServer::User(),
                                  const QString& password = FtpServer::Password()) {
        const auto connection =
            internet.InternetConnect(*internet.InternetOpen(), server, user, password);
        EXPECT_EQ(connection == nullptr, internet.LastError() != 0);
        EXPECT_FALSE(internet.LastResponse().contains(FtpServer::Password()));
        return internet.LastError();
    }
    std::unique_ptr<FtpConnection> Connect(const FtpServer& ftp) {
        return internet.InternetConnect(*internet.InternetOpen(), ftp.Host(), FtpServer::User(),
                                        FtpServer::Password());
    }
    QString LocalFile(const QByteArray& bytes) const {
        WriteWholeFile(directory.filePath("local.xml"), bytes);
        return directory.filePath("local.xml");
    }

    QTemporaryDir directory;
    Internet internet;
};

} // namespace

TEST_F(Upload, OneSessionLogsInChangesDirectoryAndStoresBytesAsTheyAre) {
    const FtpServer ftp;
    const std::unique_ptr<FtpConnection> connection = Connect(ftp);
    ASSERT_TRUE(connection);
    EXPECT_TRUE(internet.FtpSetCurrentDirectory(*connection, "incoming"));
    QByteArray bytes("\r\n\n\xff");
    bytes.append(500000, '\n');
    EXPECT_TRUE(internet.FtpPutFile(*connection, LocalFile(bytes), "3-7.xml"));
    EXPECT_EQ(ftp.File("incoming/3-7.xml"), bytes);
    // The same name may come again, shorter, and a name is only a name.
    EXPECT_TRUE(internet.FtpPutFile(*connection, LocalFile("x"), "3-7.xml"));
    EXPECT_TRUE(internet.FtpPutFile(*connection, LocalFile(""), "a ;type=a%41#?.xml"));
    EXPECT_EQ(ftp.File("incoming/3-7.xml"), "x");
    EXPECT_EQ(ftp.Incoming(), QStringList({"3-7.xml", "a ;type=a%41#?.xml"}));
    const QStringList login = {"USER anonymous", "PASS <password>", "PWD", "CWD incoming"};
    const QStringList first = {"EPSV", "TYPE I", "STOR 3-7.xml"};
    EXPECT_EQ(ftp.Commands().mid(0, 7), login + first);
    EXPECT_EQ(ftp.Commands().filter("USER").size(), 1);
}

TEST_F(Upload, AConnectionThatFailsSaysWhy) {
    const FtpServer ftp;
    EXPECT_EQ(CodeOfConnecting(ftp.Host()), 0);
    EXPECT_EQ(CodeOfConnecting(ftp.Host(), "", FtpServer::Password()), 0);
    EXPECT_EQ(CodeOfConnecting(ftp.Host(), FtpServer::User(), "wrong"), internet::WrongPassword);
    EXPECT_EQ(CodeOfConnecting(ftp.Host(), "somebody"), internet::LoginFailed);
    EXPECT_EQ(CodeOfConnecting(ftp.Host(), "anonymous\r\nDELE x"), internet::LoginFailed);
    EXPECT_EQ(CodeOfConnecting(QString("127.0.0.1:%1").arg(FreePort())), internet::CannotConnect);
    EXPECT_EQ(CodeOfConnecting(QString(80, 'a') + ".example"), internet::NameNotResolved);
    for (const char* server : {"", "ftp://host", "host/dir", "user@host", "host:ftp", "host:0",
                               "host:70000", "two words"})
        EXPECT_EQ(CodeOfConnecting(server), internet::InvalidUrl) << server;
    const SurveyServer silent; // waits for a request and never greets
    Internet impatient(Impatient);
    EXPECT_FALSE(impatient.InternetConnect(*impatient.InternetOpen(),
                                           QString("127.0.0.1:%1").arg(silent.Port()), "", ""));
    EXPECT_EQ(impatient.LastError(), internet::TimedOut);
}

TEST_F(Upload, ARefusalBringsTheServersOwnWords) {
    const FtpServer readOnly({.furtherLines = "anon_upload_enable=NO\n"});
    const std::unique_ptr<FtpConnection> connection = Connect(readOnly);
    EXPECT_FALSE(internet.FtpSetCurrentDirectory(*connection, "no such"));
    EXPECT_EQ(internet.LastResponse(), "550 Failed to change directory.");
    EXPECT_FALSE(internet.FtpPutFile(*connection, LocalFile("x"), "x.xml"));
    EXPECT_EQ(internet.LastError(), internet::ServersOwnWords);
    EXPECT_EQ(internet.LastResponse(), "550 Permission denied.");
    EXPECT_FALSE(internet.FtpPutFile(*connection, directory.filePath("missing"), "x.xml"));
    EXPECT_EQ(internet.LastError(), internet::LocalFileNotFound);

    // A small file is sent before the server can refuse it, a large one is cut off on its way.
    const FtpServer full({.largestFile = 20000});
    for (int size : {25000, 8000000}) {
        EXPECT_FALSE(
            internet.FtpPutFile(*Connect(full), LocalFile(QByteArray(size, 'x')), "x.xml"));
        EXPECT_EQ(internet.LastError(), internet::ServersOwnWords);
        EXPECT_EQ(internet.LastResponse(), "451 Failure writing to local file.");
    }
}

TEST(FtpReply, GoesOnToTheLineWithItsCodeAndABlank) {
    FtpReply reply;
    for (const char* line : {"noise\r\n", "550-No\r\n", "250 not yet\r\n", "550 end\r\n"})
        reply.AddLine(line);
    EXPECT_EQ(reply.Code(), 550);
    EXPECT_EQ(reply.Shown(), "550-No\r\n250 not yet\r\n550 end");
}

TEST_F(Upload, ASessionThatTheServerEndsIsNotQuietlyTakenUpAgain) {
    FtpServer ftp;
    const std::unique_ptr<FtpConnection> connection = Connect(ftp);
    ASSERT_TRUE(connection);
    ftp.Stop();
    EXPECT_FALSE(internet.FtpPutFile(*connection, LocalFile("x"), "x.xml"));
    EXPECT_EQ(internet.LastError(), internet::ConnectionEnded);
}
