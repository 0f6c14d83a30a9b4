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
    const QString values[] = {
        "",           "False",  "a, b,c", "  blanks  ",       "\"quoted\"; # \\ = [x]",
        "@Invalid()", "100%20", "0x41",   "zwei\r\nZeilen\t", QString::fromUtf8("Ωμέγα 日本語 👍")};
    for (const QString& value : values) {
        Settings(dir.path()).SaveSetting("Quillmark", "Options", "Show Tips at Startup", value);
        const Settings again(dir.path());
        EXPECT_EQ(again.GetSetting("Quillmark", "Options", "Show Tips at Startup", "none"), value);
        EXPECT_EQ(again.GetSetting("pollarix", "Options", "Show Tips at Startup", "none"), "none");
    }
    WriteWholeFile(dir.filePath("Quillmark.ini"), "[Config]\nname=edited, by hand\n\x01[[broken\n");
    Settings store(dir.path());
    EXPECT_EQ(store.GetSetting("Quillmark", "Config", "name", ""), "edited,by hand");
    store.SaveSetting("Quillmark", "Config", "FirstRun", "False");
    EXPECT_EQ(store.GetSetting("Quillmark", "Config", "FirstRun", ""), "False");
}

TEST(Settings, ASectionIsListedInNaturalOrderWithKeysAsTheyWereWritten) {
    QTemporaryDir dir;
    Settings store(dir.path());
    for (const char* key :
         {"ServerName10", "ServerName9", "ServerURL1", "ServerName1", "FTPServer2", "FTPServer",
          "ServerNameX", "ServerName123456789012345678901"})
        store.SaveSetting("Quillmark", "ServerList", key, QString("of ") + key);
    store.SaveSetting("Quillmark", "Config", "TotalServers", "10");
    QStringList keys;
    for (const auto& [key, value] : store.GetAllSettings("Quillmark", "ServerList")) {
        keys << key;
        EXPECT_EQ(value, "of " + key);
    }
    EXPECT_EQ(keys,
              QStringList({"FTPServer", "FTPServer2", "ServerName1", "ServerName9", "ServerName10",
                           "ServerName123456789012345678901", "ServerNameX", "ServerURL1"}));
    EXPECT_TRUE(store.GetAllSettings("Quillmark", "Other").isEmpty());
}

TEST(Settings, TheFileIsItsOwnersAloneAndSaysWhenItCannotBeWritten) {
    QTemporaryDir dir;
    Settings store(dir.filePath("new/pollarix"));
    EXPECT_EQ(ModeOf(dir.filePath("new/pollarix")), 0700);
    const QString file = dir.filePath("new/pollarix/Quillmark.ini");
    store.SaveSetting("Quillmark", "ServerList", "FTPPassword1", "secret");
    EXPECT_EQ(ModeOf(file), 0600);
    QFile::setPermissions(file, QFile::ReadOwner | QFile::ReadOther);
    store.SaveSetting("Quillmark", "ServerList", "FTPPassword1", "secret");
    EXPECT_EQ(ModeOf(file), 0600);

    QDir(dir.filePath("new/pollarix")).removeRecursively();
    WriteWholeFile(dir.filePath("new/pollarix"), "in the way");
    const Failure failure =
        FailureOf([&] { store.SaveSetting("Quillmark", "Config", "FirstRun", "False"); });
    EXPECT_EQ(failure.Number(), failure::PathOrFileAccess);
    EXPECT_TRUE(failure.Description().contains(file)) << failure.what();
    EXPECT_THROW(Settings(dir.filePath("new/pollarix/below")), Failure);
}
