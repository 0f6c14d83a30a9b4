// The list box and the combo box, clicked and typed into as a user does.
#include <QAbstractItemView>
#include <QApplication>
#include <QLineEdit>
#include <QScreen>
#include <QScrollBar>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include "platform/base/Failure.h"
#include "platform/base/Handlers.h"
#include "platform/controls/ComboBox.h"
#include "platform/controls/Focus.h"
#include "platform/controls/ListBox.h"
#include "support/NumberOf.h"

using namespace pollarix;
using pollarix::test::NumberOf;

namespace {

class ListControls : public testing::Test {
  protected:
    QWidget window_;
    ListBox list_{&window_};
    ComboBox combo_{&window_};
    QLineEdit edit_{&window_};
    std::vector<int> clicks_; // ListIndex at each click
    std::vector<int> shown_;  // failures that reached the top

    void SetUp() override {
        auto* layout = new QVBoxLayout(&window_);
        layout->addWidget(&edit_);
        layout->addWidget(&list_);
        layout->addWidget(&combo_);
        window_.resize(240, 320);
        for (const char* text : {"red", "green", "blue"}) {
            list_.AddItem(text);
            combo_.AddItem(text);
            combo_.SetItemData(combo_.NewIndex(), 10 * combo_.ListCount());
        }
        list_.Click = [this] { clicks_.push_back(list_.ListIndex()); };
        combo_.Click = [this] { clicks_.push_back(combo_.ListIndex()); };
        SetFailureReporter([this](const Failure& failure) { shown_.push_back(failure.Number()); });
        window_.show();
        window_.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window_));
        edit_.setFocus();
    }
    void TearDown() override { SetFailureReporter({}); }

    void ClickEntry(int index) {
        QTest::mouseClick(list_.viewport(), Qt::LeftButton, {},
                          list_.visualItemRect(list_.item(index)).center());
    }
    std::vector<int> Clicks() { return std::exchange(clicks_, {}); }
};

using Indexes = std::vector<int>;

} // namespace

TEST_F(ListControls, AListClickIsRaisedOnceForEachUsersChoiceAlsoOfTheCurrentEntry) {
    ClickEntry(1);
    ClickEntry(1);
    EXPECT_EQ(Clicks(), (Indexes{1, 1}));
    QTest::keyClick(&list_, Qt::Key_Down);
    QTest::keyClick(&list_, Qt::Key_Down);
    QTest::keyClick(&list_, Qt::Key_Home);
    QTest::keyClick(&list_, 'b');
    EXPECT_EQ(Clicks(), (Indexes{2, 0, 2})) << "no click where the selection can't move";
}

TEST_F(ListControls, RemovingAnEntrySelectsNothingAndRaisesNothing) {
    list_.setFocus();
    list_.SetItemData(2, 7);
    for (int removed : {1, 0}) {
        list_.SetListIndex(1);
        Clicks();
        list_.RemoveItem(removed);
        EXPECT_EQ(list_.ListIndex(), -1);
    }
    EXPECT_EQ(Clicks(), Indexes{});
    EXPECT_EQ(list_.List(0), "blue");
    EXPECT_EQ(list_.ItemData(0), 7);
    QTest::keyClick(&list_, Qt::Key_Down);
    EXPECT_EQ(Clicks(), Indexes{0}) << "the arrows start afresh at the first entry";
}

TEST_F(ListControls, AFailingClickReachesTheCodeThatSetTheIndexAndIsShownToTheUser) {
    list_.Click = combo_.Click = [] { throw Failure(failure::Overflow); };
    EXPECT_EQ(NumberOf([&] { list_.SetListIndex(2); }), failure::Overflow);
    EXPECT_EQ(NumberOf([&] { combo_.SetListIndex(-1); }), failure::Overflow);
    EXPECT_EQ(list_.ListIndex(), 2);
    EXPECT_EQ(combo_.ListIndex(), -1);
    EXPECT_EQ(shown_, Indexes{});
    ClickEntry(0);
    combo_.setFocus();
    QTest::keyClick(&combo_, Qt::Key_Down);
    EXPECT_EQ(shown_, (Indexes{failure::Overflow, failure::Overflow}));
}

TEST_F(ListControls, AUsersPickRaisesTheComboBoxClickAlsoForTheSameEntry) {
    combo_.SetListIndex(1);
    Clicks();
    for (int pick = 0; pick < 2; ++pick) {
        combo_.showPopup();
        QTest::keyClick(combo_.view(), Qt::Key_Return);
    }
    EXPECT_EQ(Clicks(), (Indexes{1, 1}));
    combo_.setFocus();
    QTest::keyClick(&combo_, Qt::Key_Down);
    QTest::keyClick(&combo_, Qt::Key_Down);
    QTest::keyClick(&combo_, 'g');
    EXPECT_EQ(Clicks(), (Indexes{2, 1}));
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

TEST_F(ListControls, AnEntryIsSelectedByItsNumber) {
    EXPECT_EQ(combo_.ListIndex(), -1);
    combo_.AddItem("again");
    combo_.SetItemData(3, 20);
    for (const char* data : {"20", " 30 ", "40", "", "x", "10"})
        SelectComboItemByData(combo_, data);
    EXPECT_EQ(Clicks(), (Indexes{1, 2, 0}));
}

TEST_F(ListControls, TheComboBoxFollowsTheColorsOfTheDesktop) {
    const auto background = [this] {
        return combo_.grab().toImage().pixelColor(combo_.width() / 2, 4).lightness();
    };
    const QPalette before = QApplication::palette();
    EXPECT_GT(background(), 128);
    QApplication::setPalette(QPalette(QColor(40, 40, 40)));
    QTest::qWait(1);
    EXPECT_LT(background(), 128);
    QApplication::setPalette(before);
}

TEST_F(ListControls, LeavingTheComboBoxIsRaisedForAnotherControlButNotForItsOwnList) {
    int lost = 0;
    combo_.LostFocus = [&] {
        ++lost;
        throw Failure(failure::TypeMismatch);
    };
    QTest::mouseClick(&combo_, Qt::LeftButton);
    QTest::keyClick(combo_.view(), Qt::Key_Escape);
    EXPECT_EQ(lost, 0);
    combo_.setFocus();
    QTest::mouseClick(&edit_, Qt::LeftButton);
    EXPECT_EQ(lost, 1);
    EXPECT_EQ(shown_, Indexes{failure::TypeMismatch});
    combo_.setFocus();
    MoveFocusQuietly(edit_);
    EXPECT_EQ(lost, 1) << "the program moved the focus";
}
