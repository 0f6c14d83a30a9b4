#include "web/wininet.h"

#include <gtest/gtest.h>

#include <QDateTime>
#include <QFile>
#include <QTemporaryDir>

#include "platform/Formats.h"
#include "support/FtpServer.h"
#include "support/PrintQt.h"
#include "support/SurveyServer.h"

using namespace pollarix;
using namespace pollarix::test;

TEST(wininet, TheDateGoesOutOnceBehindTheUrlUnlessTheUrlIsUniqueAlready) {
    const QTemporaryDir directory;
    SurveyServer server;
    Internet internet;
    const wininet net(internet);
    server.Answer("/x", {.body = "reply"});
    const QDateTime before = QDateTime::currentDateTime();
    EXPECT_TRUE(net.DownloadToFile(server.Url() + "x?a=1", directory.filePath("x"), false));
    EXPECT_TRUE(net.DownloadToFile(server.Url() + "x?a=1", directory.filePath("x"), true));
    const QStringList targets = server.Targets();
    ASSERT_EQ(targets.size(), 2);
    EXPECT_EQ(targets[1], "/x?a=1");
    bool isNow = false;
    for (QDateTime when = before; when <= QDateTime::currentDateTime(); when = when.addSecs(1))
        isNow |= targets[0] == "/x?a=1&refreshme=" + GeneralDate(when).replace(' ', "%20");
    EXPECT_TRUE(isNow) << testing::PrintToString(targets);
    EXPECT_FALSE(net.DownloadToFile("nowhere", directory.filePath("x"), false));
}

TEST(wininet, ErrorTextsStandAsTheyAre) {
    Internet internet;
    const wininet net(internet);
    EXPECT_EQ(net.FtpErrorText(12013), "Request to connect and login to an FTP server could notbe "
                                       "completed because the supplied user name is incorrect.");
    EXPECT_EQ(net.FtpErrorText(12014), "Request to connect and login to an FTP server could not be "
                                       "completed because the supplied password is incorrect. ");
    EXPECT_EQ(net.FtpErrorText(12029), "The attempt to connect to the server failed.");
    EXPECT_EQ(net.FtpErrorText(12036), "The request failed because the handle already exists.");
    EXPECT_EQ(net.FtpErrorText(12003), "Extended error returned from server.");
    for (const std::int32_t unknown : {0, 2, -1, 12000, 12032, 12035, 12037})
        EXPECT_EQ(net.FtpErrorText(unknown), "Error details not available.") << unknown;
}

TEST(wininet, AnUploadEndsWithBothHandlesClosedAndAFailedOneKeepsThem) {
    const FtpServer ftp;
    ASSERT_TRUE(ftp.IsRunning());
    const QTemporaryDir directory;
    QFile document(directory.filePath("test.xml"));
    ASSERT_TRUE(document.open(QIODevice::WriteOnly) && document.write("<survey>") == 8);
    document.close();
    Internet internet;
    wininet net(internet);

    ASSERT_TRUE(net.Open() && net.Connect(ftp.Host(), FtpServer::User(), FtpServer::Password()));
    EXPECT_FALSE(net.SetCurrentDirectory("elsewhere"));
    EXPECT_EQ(net.FtpErrorText(net.LastError()), "550 Failed to change directory.");
    EXPECT_NE(net.InternetHandle, 0);
    EXPECT_NE(net.FtpHandle, 0);

    ASSERT_TRUE(net.Open() && net.Connect(ftp.Host(), FtpServer::User(), FtpServer::Password()));
    EXPECT_TRUE(net.SetCurrentDirectory("incoming"));
    EXPECT_TRUE(net.PutFile(document.fileName(), "3-7.xml"));
    net.Close();
    EXPECT_EQ(net.InternetHandle, 0);
    EXPECT_EQ(net.FtpHandle, 0);
    EXPECT_EQ(ftp.File("incoming/3-7.xml"), "<survey>");
    // The session that the failed upload left open ended when the next one began.
    EXPECT_EQ(ftp.Commands().filter("QUIT").size(), 2);

    ASSERT_TRUE(net.Open());
    EXPECT_FALSE(net.Connect(ftp.Host(), FtpServer::User(), "wrong"));
    EXPECT_EQ(net.LastError(), 12014);
    EXPECT_EQ(net.FtpHandle, 0);
    EXPECT_NE(net.InternetHandle, 0);
}
