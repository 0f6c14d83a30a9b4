// Tree, list box and combo box, clicked and typed into as a user does. That what had the focus
// loses it before the selection moves, the tests of the Design screen see; there and on the other
// screens nodes and entries come, move and go.
#include <QAbstractItemView>
#include <QApplication>
#include <QScreen>
#include <QScrollBar>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include "platform/base/Failure.h"
#include "platform/base/Handlers.h"
#include "platform/controls/ComboBox.h"
#include "platform/controls/ListBox.h"
#include "platform/controls/TreeView.h"
#include "support/PrintQt.h"

using namespace pollarix;

namespace {

class ListControls : public testing::Test {
  protected:
    QWidget window_;
    TreeView tree_{&window_};
    ListBox list_{&window_};
    ComboBox combo_{&window_};
    QStringList clicks_;

    void SetUp() override {
        auto* layout = new QVBoxLayout(&window_);
        tree_.Add("", TreeView::Root, "S", "Survey").SetExpanded(true);
        for (QWidget* control : std::initializer_list<QWidget*>{&tree_, &list_, &combo_})
            layout->addWidget(control);
        for (const char* text : {"a", "b", "c"}) {
            tree_.Add("S", TreeView::tvwChild, text, text);
            list_.AddItem(text);
            combo_.AddItem(text);
        }
        tree_.NodeClick = [this](TreeNode& node) { clicks_ << node.Key(); };
        list_.Click = [this] { clicks_ << list_.List(list_.ListIndex()); };
        combo_.Click = [this] { clicks_ << combo_.Text(); };
        window_.resize(240, 420);
        window_.show();
        window_.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window_));
    }
    static void Press(QWidget& on, std::initializer_list<Qt::Key> keys) {
        for (const Qt::Key key : keys)
            QTest::keyClick(&on, key);
    }
    QString Clicks() { return std::exchange(clicks_, {}).join(' '); }
};

} // namespace

TEST_F(ListControls, TreeAndListRaiseAClickForEachChoiceOfTheUser) {
    const auto at = [](auto& view, QTreeWidgetItem* node, QListWidgetItem* entry) {
        if constexpr (std::is_same_v<decltype(view), TreeView&>)
            return view.visualItemRect(node).center();
        else
            return view.visualItemRect(entry).center();
    };
    const auto use = [&](auto& view) {
        const QPoint a = at(view, tree_.Find("a"), list_.item(0));
        const QPoint b = at(view, tree_.Find("b"), list_.item(1));
        QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, b);
        QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, b);
        EXPECT_EQ(Clicks(), "b b");
        QTest::mouseClick(view.viewport(), Qt::RightButton, {}, a);
        QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, QPoint(60, view.height() - 9));
        EXPECT_EQ(Clicks(), "") << "no entry was chosen";
        Press(view, {Qt::Key_Down, Qt::Key_Down, Qt::Key_A});
        EXPECT_EQ(Clicks(), "c a") << "no click where the selection can't move";
    };
    use(tree_);
    use(list_);
    const QRect b = tree_.visualItemRect(tree_.Find("b"));
    for (int click = 0; click < 2; ++click) // the first may have given the focus away
        QTest::mouseDClick(tree_.viewport(), Qt::LeftButton, {}, b.center());
    EXPECT_EQ(Clicks(), "b b");
    const QRect root = tree_.visualItemRect(tree_.Find("S"));
    QTest::mouseClick(tree_.viewport(), Qt::LeftButton, {},
                      QPoint(root.left() - tree_.indentation() / 2, root.center().y()));
    EXPECT_FALSE(tree_.Find("S")->isExpanded());
    EXPECT_EQ(Clicks(), "") << "the branch is closed, and no node was clicked";
    list_.RemoveItem(0);
    EXPECT_EQ(list_.ListIndex(), -1);
    Press(list_, {Qt::Key_Down});
    EXPECT_EQ(Clicks(), "b") << "the arrows start afresh at the first entry";
}

TEST_F(ListControls, AUsersPickRaisesTheComboBoxClickAlsoForTheSameEntry) {
    combo_.SetListIndex(1);
    for (int pick = 0; pick < 2; ++pick) {
        combo_.showPopup();
        Press(*combo_.view(), {Qt::Key_Return});
    }
    EXPECT_EQ(Clicks(), "b b b");
    // Its own list does not take the focus away.
    int lost = 0;
    combo_.LostFocus = [&] { ++lost; };
    QTest::mouseClick(&combo_, Qt::LeftButton);
    Press(*combo_.view(), {Qt::Key_Escape});
    combo_.setFocus();
    EXPECT_EQ(lost, 0);
    Press(combo_, {Qt::Key_Down, Qt::Key_Down, Qt::Key_B, Qt::Key_Tab});
    EXPECT_EQ(Clicks(), "c b");
    EXPECT_EQ(lost, 1);
}

TEST_F(ListControls, ALongListHasAScrollBarAndKeepsToHalfTheScreen) {
    QApplication::setStyle("Fusion"); // would show all entries at once
    ComboBox box(&window_);
    for (int i = 0; i < 200; ++i)
        box.AddItem(QString(500, 'x'));
    box.show();
    box.showPopup();
    EXPECT_TRUE(box.view()->verticalScrollBar()->isVisible());
    const QSize screen = box.screen()->availableSize();
    EXPECT_LE(box.view()->window()->width(), screen.width() / 2 + 4);
    EXPECT_LT(box.view()->window()->height(), screen.height());
    box.hidePopup();
}
