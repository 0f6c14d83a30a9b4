// The tree: its two orders and its clicks. That what had the focus loses it before the selection
// moves, the question panel's tests see.
#include "platform/controls/TreeView.h"

#include <QApplication>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

using namespace pollarix;

namespace {

class TreeViewTest : public testing::Test {
  protected:
    QWidget window_;
    TreeView tree_{&window_};
    QStringList log_;

    void SetUp() override {
        auto* layout = new QVBoxLayout(&window_);
        layout->addWidget(&tree_);
        window_.resize(240, 320);
        tree_.Add("", TreeView::Root, "S", "Survey").SetExpanded(true);
        for (const char* key : {"a", "b", "c"})
            tree_.Add("S", TreeView::tvwChild, key, QString(key).toUpper());
        tree_.NodeClick = [this](TreeNode& node) { log_ << node.Key(); };
        window_.show();
        window_.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window_));
    }

    void Click(const QString& key, Qt::MouseButton button = Qt::LeftButton) {
        QTest::mouseClick(tree_.viewport(), button, {},
                          tree_.visualItemRect(tree_.Find(key)).center());
    }
    QString Selected() const { return tree_.SelectedItem() ? tree_.SelectedItem()->Key() : "-"; }
    QStringList Log() { return std::exchange(log_, {}); }
    QString Collection() const {
        QString keys;
        for (int i = 1; i <= tree_.Count(); ++i)
            keys += tree_.Item(i).Key();
        return keys;
    }
    QString Display() const {
        QString keys;
        for (TreeNode* node = tree_.Find("S"); node;
             node = static_cast<TreeNode*>(tree_.itemBelow(node)))
            keys += node->Key();
        return keys;
    }
};

} // namespace

TEST_F(TreeViewTest, ANodeAddedAgainIsLastInTheCollectionWhereverItStands) {
    EXPECT_EQ(Collection(), "Sabc");
    tree_.Remove("b");
    tree_.Add("a", TreeView::tvwPrevious, "b", "B");
    EXPECT_EQ(Display(), "Sbac");
    EXPECT_EQ(Collection(), "Sacb");
    tree_.Remove("a");
    tree_.Add("c", TreeView::tvwNext, "a", "A");
    EXPECT_EQ(Display(), "Sbca");
    EXPECT_EQ(Collection(), "Scba");
}

TEST_F(TreeViewTest, RemovingABranchForgetsAllBelowIt) {
    tree_.Add("b", TreeView::tvwChild, "x", "X").SetSelected();
    tree_.Add("x", TreeView::tvwChild, "y", "Y");
    tree_.Remove("b");
    EXPECT_EQ(Collection(), "Sac");
    EXPECT_EQ(tree_.Find("y"), nullptr);
    EXPECT_EQ(Selected(), "c");
    tree_.Add("S", TreeView::tvwChild, "y", "Y");
    tree_.Remove("S");
    EXPECT_EQ(tree_.Count(), 0);
    EXPECT_EQ(tree_.SelectedItem(), nullptr);
    EXPECT_EQ(Log(), QStringList());
}

TEST_F(TreeViewTest, ClicksAndKeysOfTheUserRaiseNodeClick) {
    Click("b");
    Click("b");
    Click("S");
    EXPECT_EQ(Log(), QStringList({"b", "b", "S"}));
    const auto clickAgain = [this](const QString& key) { // the second of two quick clicks
        QTest::mouseDClick(tree_.viewport(), Qt::LeftButton, {},
                           tree_.visualItemRect(tree_.Find(key)).center());
    };
    clickAgain("b");
    clickAgain("b");
    EXPECT_EQ(Log(), QStringList({"b", "b"}));
    tree_.Find("S")->SetSelected();
    Click("c", Qt::RightButton);
    QTest::mouseClick(tree_.viewport(), Qt::LeftButton, {}, QPoint(60, tree_.height() - 20));
    const QRect root = tree_.visualItemRect(tree_.Find("S"));
    QTest::mouseClick(tree_.viewport(), Qt::LeftButton, {},
                      QPoint(root.left() - tree_.indentation() / 2, root.center().y()));
    EXPECT_FALSE(tree_.Find("S")->isExpanded());
    tree_.Find("S")->SetExpanded(true);
    EXPECT_EQ(Log(), QStringList()) << "no node was clicked";
    EXPECT_EQ(Selected(), "S");
    for (Qt::Key key : {Qt::Key_Down, Qt::Key_End, Qt::Key_Down, Qt::Key_Up, Qt::Key_Home,
                        Qt::Key_PageDown, Qt::Key_Left, Qt::Key_B})
        QTest::keyClick(&tree_, key);
    EXPECT_EQ(Log(), QStringList({"a", "c", "b", "S", "c", "S", "b"}));
}
