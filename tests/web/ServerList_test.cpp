#include "web/ServerList.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

#include "document/ApplicationState.h"
#include "platform/Handlers.h"
#include "support/PrintQt.h"
#include "support/QueuedDialogs.h"
#include "web/frmAddServer.h"

using namespace pollarix;
using namespace pollarix::test;

namespace {

class Servers : public testing::Test {
  protected:
    void Store(const QString& key, const QString& value) {
        settings.SaveSetting(SettingsApplication, "ServerList", key, value);
    }
    QString Stored(const QString& key) const {
        return settings.GetSetting(SettingsApplication, "ServerList", key, "(none)");
    }
    QString TotalServers() const {
        return settings.GetSetting(SettingsApplication, "Config", "TotalServers", "(none)");
    }

    QTemporaryDir directory;
    Settings settings{directory.filePath("settings")};
    QueuedDialogs dialogs;
};

} // namespace

TEST_F(Servers, TheBuiltInOneIsAlwaysThereAndNothingElseIsAtFirst) {
    ComboBox box;
    RefreshServerList(box, settings);
    ASSERT_EQ(box.ListCount(), 1);
    EXPECT_EQ(box.Text(), "Kelvane Server");
    EXPECT_EQ(box.ItemData(0), -1);
    Store("ServerName-1", "not this one");
    const auto entry = GetServerEntry(-1, settings);
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->name, "Kelvane");
    EXPECT_TRUE(entry->url.endsWith('/'));
    for (int index : {0, 1, -2})
        EXPECT_FALSE(GetServerEntry(index, settings)) << index;
}

TEST_F(Servers, AddedOnesAreListedByNumberAndTheLastIsSelected) {
    for (int i = 1; i <= 11; ++i)
        AddServer({QString("Server %1").arg(i), "u", "f", "", ""}, settings);
    ComboBox box;
    RefreshServerList(box, settings);
    RefreshServerList(box, settings);
    ASSERT_EQ(box.ListCount(), 12);
    for (int i = 1; i <= 11; ++i) {
        EXPECT_EQ(box.List(i), QString("Server %1").arg(i));
        EXPECT_EQ(box.ItemData(i), i);
    }
    EXPECT_EQ(box.ListIndex(), 11);

    Store("ServerNameX", "Broken");
    try {
        RefreshServerList(box, settings);
        FAIL();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.Number(), failure::TypeMismatch);
    }
    EXPECT_EQ(box.ListIndex(), -1);
}

TEST_F(Servers, AnEntryIsMendedOnReadingAndOnlyItsNameDecides) {
    Store("ServerName4", "Four");
    for (const auto& [stored, read] : {std::pair{"http://x.example", "http://x.example/"},
                                       {"http://x.example/", "http://x.example/"},
                                       {"x", "x"},
                                       {"", ""}}) {
        Store("ServerURL4", stored);
        const auto entry = GetServerEntry(4, settings);
        ASSERT_TRUE(entry);
        EXPECT_EQ(entry->url, read);
        EXPECT_EQ(Stored("ServerURL4"), stored);
    }
    Store("ServerName4", "");
    EXPECT_FALSE(GetServerEntry(4, settings));
}

namespace {

class AddServerDialog : public Servers {
  protected:
    QLineEdit& Box(const char* name) { return *dialog.findChild<QLineEdit*>(name); }

    frmAddServer dialog{settings, dialogs, nullptr};
};

} // namespace

TEST_F(AddServerDialog, AsksForEachMissingFieldInTurnAndStoresWhatWasTyped) {
    dialog.show();
    const std::pair<const char*, const char*> typed[] = {{"txtServerName", "Server Name"},
                                                         {"txtServerURL", "Server URL"},
                                                         {"txtFTPServer", "FTP Server"}};
    for (const auto& [box, what] : typed) {
        QTest::keyClick(&dialog, Qt::Key_Return);
        EXPECT_EQ(dialogs.TakeTexts(),
                  QStringList(
                      QString("No %1 has been entered. Please enter a %1 to continue.").arg(what)));
        EXPECT_EQ(dialog.focusWidget(), &Box(box));
        QTest::keyClicks(&Box(box), QString("http://%1").arg(what));
    }
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_EQ(TotalServers(), "(none)");
    // Tab leads on in the order the boxes stand in.
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(dialog.focusWidget(), &Box("txtFTPUsername"));
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(dialog.focusWidget(), &Box("txtFTPPassword"));
    Box("txtFTPPassword").insert(u"p\u00e4ss, \"word\" "_qs);
    EXPECT_FALSE(Box("txtFTPPassword").displayText().contains("word"));
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(TotalServers(), "1");
    EXPECT_EQ(Stored("ServerURL1"), "http://Server URL");
    const auto entry = GetServerEntry(1, settings);
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->ftpServer, "http://FTP Server");
    EXPECT_EQ(entry->ftpUser, "");
    EXPECT_EQ(entry->ftpPassword, u"p\u00e4ss, \"word\" "_qs);
    EXPECT_TRUE(dialogs.shown.empty());
}

TEST_F(AddServerDialog, StoresNothingWhenCancelledOrWhenTheCountIsNoNumber) {
    std::vector<int> failures;
    SetFailureReporter([&](const Failure& failure) { failures.push_back(failure.Number()); });
    settings.SaveSetting(SettingsApplication, "Config", "TotalServers", "many");
    dialog.show();
    for (const char* box : {"txtServerName", "txtServerURL", "txtFTPServer"})
        Box(box).setText("x");
    dialog.findChild<QPushButton*>("cmdOK")->click();
    SetFailureReporter({});
    EXPECT_EQ(failures, std::vector<int>{failure::TypeMismatch});
    EXPECT_TRUE(dialog.isVisible());
    QTest::keyClick(&dialog, Qt::Key_Escape);
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(TotalServers(), "many");
    EXPECT_TRUE(settings.GetAllSettings(SettingsApplication, "ServerList").isEmpty());
}
