#include "web/ServerList.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "document/ApplicationState.h"
#include "support/NumberOf.h"
#include "support/PrintQt.h"

using namespace pollarix;
using namespace pollarix::test;

namespace {

class Servers : public testing::Test {
  protected:
    void Store(const QString& key, const QString& value) {
        settings.SaveSetting(SettingsApplication, "ServerList", key, value);
    }

    QTemporaryDir directory;
    Settings settings{directory.filePath("settings")};
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
