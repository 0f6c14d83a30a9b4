#include "web/ServerList.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

#include "document/ApplicationState.h"
#include "support/NumberOf.h"
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

    QTemporaryDir directory;
    Settings settings{directory.filePath("settings")};
    QueuedDialogs dialogs;
};

class AddServerDialog : public Servers {
  protected:
    QLineEdit& Box(const char* name) { return *dialog.findChild<QLineEdit*>(name); }

    frmAddServer dialog{settings, dialogs, nullptr};
};

} // namespace

TEST_F(Servers, TheBuiltInOneIsAlwaysThereAndNothingElseIsAtFirst) {
    ComboBox box;
    RefreshServerList(box, settings);
    ASSERT_EQ(box.ListCount(), 1);
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
    EXPECT_EQ(NumberOf([&] { RefreshServerList(box, settings); }), failure::TypeMismatch);
    EXPECT_EQ(box.ListIndex(), -1);
}

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
    EXPECT_EQ(Stored("ServerURL1"), "(none)");
    Box("txtFTPPassword").setFocus();
    Box("txtFTPPassword").insert(u"p\u00e4ss, \"word\" "_qs);
    EXPECT_FALSE(Box("txtFTPPassword").displayText().contains("word"));
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(Stored("ServerURL1"), "http://Server URL");
    const auto entry = GetServerEntry(1, settings);
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->ftpServer, "http://FTP Server");
    EXPECT_EQ(entry->ftpUser, "");
    EXPECT_EQ(entry->ftpPassword, u"p\u00e4ss, \"word\" "_qs);
    EXPECT_TRUE(dialogs.shown.empty());
}
