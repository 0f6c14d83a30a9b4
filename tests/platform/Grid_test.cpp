// The grid: what it keeps and drops, what the user's clicks and keys do, and that rows nobody sees
// cost nothing.
#include "platform/controls/Grid.h"

#include <QHeaderView>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include "platform/base/Failure.h"
#include "platform/base/Handlers.h"
#include "support/NumberOf.h"

using namespace pollarix;
using pollarix::test::NumberOf;

namespace {

class GridTest : public testing::Test {
  protected:
    struct Window : QWidget {
        QStringList keys;
        void keyPressEvent(QKeyEvent* event) override {
            keys << QKeySequence(event->key()).toString();
        }
    } window_;
    Grid grid_{&window_};
    QStringList log_;

    // Five body rows "r1c0", ... of three columns.
    void SetUp() override {
        auto* layout = new QVBoxLayout(&window_);
        layout->addWidget(&grid_);
        window_.resize(420, 260);
        grid_.SetCols(3);
        grid_.SetRows(6);
        for (int row = 0; row < 6; ++row) {
            for (int col = 0; col < 3; ++col)
                grid_.SetTextMatrix(row, col, QString("r%1c%2").arg(row).arg(col));
        }
        grid_.Click = [this] { log_ << "click " + Where(); };
        grid_.DblClick = [this] { log_ << "double " + Where(); };
        window_.show();
        window_.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window_));
        grid_.setFocus();
    }

    QString Where() const {
        return QString("%1,%2-%3").arg(grid_.Row()).arg(grid_.Col()).arg(grid_.ColSel());
    }
    // The cells shown as selected, in the grid's rows.
    QString Marked() const {
        QStringList cells;
        for (const QModelIndex& cell : grid_.selectionModel()->selectedIndexes())
            cells << QString("%1,%2").arg(cell.row() + 1).arg(cell.column());
        cells.sort();
        return cells.join(' ');
    }
    QPoint At(int row, int col) const {
        return grid_.visualRect(grid_.model()->index(row - 1, col)).center();
    }
    void ClickCell(int row, int col, Qt::MouseButton button = Qt::LeftButton) {
        QTest::mouseClick(grid_.viewport(), button, {}, At(row, col));
    }
    void DoubleClickCell(int row, int col) {
        QTest::mouseDClick(grid_.viewport(), Qt::LeftButton, {}, At(row, col));
    }
    void Press(std::initializer_list<Qt::Key> keys) {
        for (Qt::Key key : keys)
            QTest::keyClick(&grid_, key);
    }
    QStringList Log() { return std::exchange(log_, {}); }
};

} // namespace

TEST_F(GridTest, CodeSelectsAndShrinkingClampsAndDropsWhatLiesBeyond) {
    EXPECT_EQ(Marked(), "") << "the focus selects nothing";
    grid_.SetRow(2);
    grid_.SetColSel(2);
    EXPECT_EQ(Marked(), "2,0 2,1 2,2");
    grid_.SetRow(3);
    EXPECT_EQ(Where(), "3,0-0");
    grid_.SetColSel(1);
    grid_.SetCol(2);
    EXPECT_EQ(Marked(), "3,2");
    grid_.SetRow(5);
    grid_.SetRowData(5, 55);
    grid_.SetColWidth(2, 2400);
    grid_.SetRows(4);
    grid_.SetCols(2);
    EXPECT_EQ(Where(), "3,1-1");
    for (const std::function<void()>& beyond : std::vector<std::function<void()>>{
             [&] { grid_.SetRow(4); }, [&] { grid_.SetCol(-1); }, [&] { grid_.TextMatrix(4, 0); },
             [&] { grid_.SetRowData(4, 1); }, [&] { grid_.ColData(2); }})
        EXPECT_EQ(NumberOf(beyond), failure::InvalidArgument);
    grid_.SetRows(6);
    grid_.SetCols(3);
    EXPECT_EQ(grid_.TextMatrix(3, 1), "r3c1");
    EXPECT_EQ(grid_.TextMatrix(5, 0) + grid_.TextMatrix(0, 2), "");
    EXPECT_EQ(grid_.RowData(5), 0);
    EXPECT_EQ(grid_.ColWidth(2), 2400) << "widths outlive their columns";
    EXPECT_EQ(Log(), QStringList()) << "code raises nothing";
}

TEST_F(GridTest, ClicksMoveToTheirCellOrToTheWholeRow) {
    ClickCell(2, 1);
    ClickCell(2, 1);
    ClickCell(4, 2, Qt::RightButton);
    EXPECT_EQ(Log(), QStringList({"click 2,1-1", "click 2,1-1"}));
    DoubleClickCell(3, 0);
    EXPECT_EQ(Log(), QStringList({"click 3,0-0"})) << "the first click was on another cell";
    DoubleClickCell(3, 0);
    EXPECT_EQ(Log().last(), "double 3,0-0");
    QWidget* heads = grid_.horizontalHeader()->viewport();
    const QPoint head(grid_.columnViewportPosition(2) + 20, heads->height() / 2);
    QTest::mouseClick(heads, Qt::LeftButton, {}, head);
    EXPECT_EQ(Log(), QStringList("click 3,0-0")) << "one on a head moves nothing";
    QTest::mouseClick(grid_.viewport(), Qt::LeftButton, {}, grid_.viewport()->rect().bottomRight());
    EXPECT_EQ(Log(), QStringList()) << "beside all cells";

    grid_.SetSelectRows(true);
    ClickCell(2, 1);
    EXPECT_EQ(Log(), QStringList("click 2,0-2"));
    Press({Qt::Key_Right, Qt::Key_Down, Qt::Key_Left});
    EXPECT_EQ(Where(), "3,0-2");
    DoubleClickCell(4, 0);
    DoubleClickCell(4, 2);
    EXPECT_EQ(Log().last(), "double 4,0-2") << "anywhere on the row";
}

TEST_F(GridTest, KeysMoveTheCellAndAreHeardBeforeTheyMoveIt) {
    grid_.KeyDown = [this](QKeyEvent& event) {
        log_ << Where();
        if (event.key() == Qt::Key_Space)
            event.accept();
    };
    Press({Qt::Key_Down, Qt::Key_Right, Qt::Key_End, Qt::Key_PageDown, Qt::Key_Right, Qt::Key_Home,
           Qt::Key_Left, Qt::Key_Up});
    EXPECT_EQ(Log(),
              QStringList({"0,0-0", "1,0-0", "1,1-1", "1,2-2", "5,2-2", "5,2-2", "5,0-0", "5,0-0"}))
        << "each as it was when the key came; no clicks";
    EXPECT_EQ(Where(), "4,0-0");
    grid_.SetFixedCols(1);
    grid_.SetCol(2);
    Press({Qt::Key_Left, Qt::Key_Left});
    EXPECT_EQ(Where(), "4,1-1") << "keys do not enter the head column";
    grid_.SetColWidth(2, 0);
    EXPECT_TRUE(grid_.isColumnHidden(0) && grid_.isColumnHidden(2) && !grid_.isColumnHidden(1));
    EXPECT_TRUE(grid_.verticalHeader()->isVisible());
    window_.keys.clear();
    Press({Qt::Key_Down, Qt::Key_Return, Qt::Key_Space});
    EXPECT_EQ(window_.keys, QStringList({"Return"})) << "moves and accepted keys stay in the grid";
}

TEST_F(GridTest, AMillionRowsAskOnlyForTheTextsOnTheScreen) {
    int asked = 0;
    QSignalSpy resets(grid_.model(), &QAbstractItemModel::modelReset);
    grid_.SetRedraw(false);
    grid_.SetProvider([&](int row, int col) {
        ++asked;
        return QString("%1/%2").arg(row).arg(col);
    });
    grid_.SetRows(1);
    grid_.SetRows(1'000'001);
    grid_.SetRow(900'000);
    ClickCell(2, 1);
    Press({Qt::Key_Down});
    EXPECT_EQ(Where(), "900000,0-0") << "the user waits";
    EXPECT_EQ(asked + resets.count(), 0);
    grid_.SetRedraw(true);
    grid_.grab();
    EXPECT_EQ(resets.count(), 1);
    EXPECT_GT(asked, 0);
    EXPECT_LE(asked, 3 * (grid_.viewport()->height() / grid_.rowHeight(0) + 2));
    EXPECT_TRUE(grid_.viewport()->rect().contains(At(900'000, 0))) << "the row set is in view";

    asked = 0;
    grid_.grab();
    EXPECT_EQ(grid_.Text(), "900000/0");
    EXPECT_EQ(asked, 0) << "texts on the screen are remembered";
    for (int row = 1; row <= 1200; ++row)
        grid_.TextMatrix(row > 600 ? 1201 - row : row, 0);
    EXPECT_GE(asked, 600 + 600 - 512) << "what is remembered has a bound";
    EXPECT_LE(asked, 700);
}

TEST_F(GridTest, AFailingProviderFailsTheReaderAndIsShownOnceForAScreen) {
    std::vector<int> shown;
    SetFailureReporter([&](const Failure& failure) { shown.push_back(failure.Number()); });
    grid_.SetRows(1);
    grid_.SetRows(1000);
    int waits = 0;
    grid_.SetProvider([&](int, int) -> QString {
        ++waits;
        QTest::qSleep(250); // such as waiting for another program
        throw Failure(failure::NoCurrentRecord);
    });
    EXPECT_EQ(NumberOf([&] { grid_.TextMatrix(1, 0); }), failure::NoCurrentRecord);
    EXPECT_TRUE(shown.empty());
    waits = 0;
    grid_.grab();
    grid_.grab();
    EXPECT_EQ(waits, 1) << "not for each cell";
    QTest::qWait(1);
    SetFailureReporter({});
    EXPECT_EQ(shown, std::vector<int>{failure::NoCurrentRecord});
}
