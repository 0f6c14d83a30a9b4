#include "platform/files/Settings.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/files/Files.h"
#include "support/NumberOf.h"

using namespace pollarix;
using test::FailureOf;

namespace {

int ModeOf(const QString& path) {
    struct stat status = {};
    stat(QFile::encodeName(path), &status);
    return status.st_mode & 0777;
}

} // namespace

TEST(Settings, ValuesComeBackExactlyAlsoToAnotherRun) {
    QTemporaryDir dir;
    for (const QString& value :
         {QString(), QString("a, b,c"), QString("  blanks  "), QString("\"quoted\"; # \\ = [x]"),
          QString("@Invalid()"), QString("100%20"), u"zwei\r\nZeilen\t日本語 👍"_qs}) {
        Settings(dir.path()).SaveSetting("Quillmark", "Options", "Show Tips at Startup", value);
        const Settings again(dir.path());
        EXPECT_EQ(again.GetSetting("Quillmark", "Options", "Show Tips at Startup", "none"), value);
        EXPECT_EQ(again.GetSetting("pollarix", "Options", "Show Tips at Startup", "none"), "none");
    }
    WriteWholeFile(dir.filePath("Quillmark.ini"), "[Config]\nname=edited, by hand\n\x01[[broken\n");
    Settings store(dir.path());
    EXPECT_EQ(store.GetSetting("Quillmark", "Config", "name", ""), "edited,by hand");
    QStringList keys;
    for (const char* key :
         {"ServerName10", "ServerName9", "FTPServer2", "FTPServer", "ServerNameX"})
        store.SaveSetting("Quillmark", "ServerList", key, QString("of ") + key);
    for (const auto& [key, value] : store.GetAllSettings("Quillmark", "ServerList")) {
        keys << key;
        EXPECT_EQ(value, "of " + key);
    }
    EXPECT_EQ(keys, QStringList(
                        {"FTPServer", "FTPServer2", "ServerName9", "ServerName10", "ServerNameX"}));
}

TEST(Settings, TheFileIsItsOwnersAloneAndSaysWhenItCannotBeWritten) {
    QTemporaryDir dir;
    const QString place = dir.filePath("new/pollarix"), file = place + "/Quillmark.ini";
    Settings store(place);
    EXPECT_EQ(ModeOf(place), 0700);
    for (int time = 0; time < 2; ++time) {
        store.SaveSetting("Quillmark", "ServerList", "FTPPassword1", "secret");
        EXPECT_EQ(ModeOf(file), 0600);
        QFile::setPermissions(file, QFile::ReadOwner | QFile::ReadOther);
    }
    QDir(place).removeRecursively();
    WriteWholeFile(place, "in the way");
    const Failure failure =
        FailureOf([&] { store.SaveSetting("Quillmark", "Config", "FirstRun", "False"); });
    EXPECT_EQ(failure.Number(), failure::PathOrFileAccess);
    EXPECT_TRUE(failure.Description().contains(file)) << failure.what();
}
