#include "web/ServerList.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "document/ApplicationState.h"
#include "support/NumberOf.h"
#include "support/PrintQt.h"

using namespace pollarix;
using namespace pollarix::test;

TEST(ServerList, AddedOnesAreListedByNumberBehindTheBuiltInOneAndTheLastIsSelected) {
    const QTemporaryDir directory;
    Settings settings(directory.path());
    for (int i = 1; i <= 11; ++i)
        AddServer({QString("Server %1").arg(i), "u", "f", "", ""}, settings);
    ComboBox box;
    RefreshServerList(box, settings);
    RefreshServerList(box, settings);
    ASSERT_EQ(box.ListCount(), 12);
    EXPECT_EQ(box.ItemData(0), -1);
    for (int i = 1; i <= 11; ++i) {
        EXPECT_EQ(box.List(i), QString("Server %1").arg(i));
        EXPECT_EQ(box.ItemData(i), i);
    }
    EXPECT_EQ(box.ListIndex(), 11);

    for (const char* number : {"-1", "X"})
        settings.SaveSetting(SettingsApplication, "ServerList", QString("ServerName") + number,
                             "n");
    EXPECT_EQ(GetServerEntry(-1, settings)->name, "Kelvane") << "whatever is stored";
    EXPECT_FALSE(GetServerEntry(12, settings));
    EXPECT_EQ(NumberOf([&] { RefreshServerList(box, settings); }), failure::TypeMismatch);
    EXPECT_EQ(box.ListIndex(), -1);
}
