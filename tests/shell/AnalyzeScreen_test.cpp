// One walk over the Analyze screen of the real main window: every row of two matrices and what is
// around them, all styles, the graph at both sizes, its picture as a file.
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QImageReader>
#include <QLabel>
#include <QMenu>
#include <QPushButton>

#include "platform/charts/Chart.h"
#include "platform/controls/ComboBox.h"
#include "platform/controls/Grid.h"
#include "platform/controls/Twips.h"
#include "shell/MainWindow.h"

using namespace pollarix;
using namespace pollarix::test;

namespace {

// Eight respondents. What counts nowhere: the constant 1 of an open ended answer, an answer to
// another question with a response of this one. A point counts whatever its question.
constexpr const char* Survey[] = {
    "INSERT INTO question (id, question, questionno, qtype, pos) VALUES "
    "(6, 'Say', NULL, 0, 1), (1, '{\\rtf1 Tea or \\b coffee?}', '1', 2, 2), (2, 'Rate', '2', 3, 3),"
    " (3, 'Rate again', '3', 3, 4), (5, 'Last', '4', 2, 5), (4, 'Which', '10', 1, 6), "
    "(7, 'Thanks', '', 4, 7), (8, 'No rows', '5', 3, 8), (9, 'No points', '6', 3, 9), "
    "(10, 'End', '7', 2, 10)",
    "INSERT INTO response (id, questionid, name, pos, responseMatrixGroupID) VALUES "
    "(1, 1, 'Tea', 2, 1), (12, 1, 'Coffee', 1, 1), (41, 4, 'Sugar', 1, 1), (42, 4, 'Milk', 2, 1), "
    "(21, 2, 'Taste', 1, 100), (22, 2, 'Price', 2, 100), (31, 3, 'Staff', 1, 100), "
    "(32, 3, 'Room', 2, 101), (51, 5, 'Again', 1, 1), (91, 9, 'This', 1, 999), (92, 9, 'That', 2, "
    "999), (101, 10, 'Bye', 1, 1)",
    "INSERT INTO responsematrix (id, name, ResponseMatrixGroupID, pos) VALUES (201, 'good', 100, "
    "0), (203, 'bad', 100, 2), (202, 'fair', 100, 1), (211, 'yes', 101, 0), (212, 'no', 101, 1)",
    "INSERT INTO respondent (source) VALUES ('Web'), ('manual entry'), ('Manual Entry'), "
    "('Manual Entry'), ('Web Based'), ('Web Based'), ('Imported'), (NULL)",
    "INSERT INTO respondent_responses (RespondentID, QuestionID, ResponseID, SimpleResponse, "
    "ResponseMatrixID) VALUES (1, 6, 1, 'x', NULL), (2, 6, 1, '', NULL), (1, 1, 12, '', NULL), "
    "(2, 1, 12, '', NULL), (3, 1, 1, '', NULL), (4, 99, 1, '', NULL), (1, 4, 41, '', NULL), "
    "(2, 4, 41, '', NULL), (3, 4, 41, '', NULL), (1, 4, 42, '', NULL), (1, 2, 21, '', 201), "
    "(2, 77, 21, '', 201), (3, 2, 21, '', 203), (1, 2, 22, '', 202), (1, 3, 31, '', 202), "
    "(1, 3, 32, '', 212), (2, 3, 32, '', 212), (1, 5, 51, '', NULL)"};

// A row of the list, and what the graph shows after a click on it.
struct Row {
    const char* text;
    const char* graph;
};

// In the order of the numbers' texts. A matrix loses its last row to the question behind it; from
// there on the upper rows of a sub question draw what stands one entry before.
constexpr Row Rows[] = {{"n/a|. Say", "hidden"},
                        {"|1. Tea or coffee?", "hidden"},
                        {"25%|     Coffee", " Coffee=2, Tea=1"},
                        {"12.5%|     Tea", " Coffee=2, Tea=1"},
                        {"|10. Which", "hidden"},
                        {"37.5%|     Sugar", " Sugar=3, Milk=1"},
                        {"12.5%|     Milk", " Sugar=3, Milk=1"},
                        {"|2. Rate", "hidden"},
                        {"|     Taste", " good=2, fair=0, bad=1"},
                        {"25%|          good", " good=2, fair=0, bad=1"},
                        {"0.0%|          fair", " good=2, fair=0, bad=1"},
                        {"12.5%|          bad", " good=2, fair=0, bad=1"},
                        {"|     Price", " good=0, fair=1, bad=0"},
                        {"0.0%|          good", " good=0, fair=1, bad=0"},
                        {"12.5%|          fair", " good=0, fair=1, bad=0"},
                        {"|3. Rate again", "hidden"},
                        {"|     Staff", "=0,=0,=0"},
                        {"0.0%|          good", " good=0, fair=1, bad=0"},
                        {"12.5%|          fair", " good=0, fair=1, bad=0"},
                        {"0.0%|          bad", " good=0, fair=1, bad=0"},
                        {"|     Room", " good=0, fair=1, bad=0"},
                        {"0.0%|          yes", " yes=0, no=2,=0"},
                        {"|4. Last", "hidden"},
                        {"12.5%|     Again", " Again=1"},
                        {"|6. No points", "hidden"}, // over the matrix without rows
                        {"|     This", ""},
                        {"|", "hidden"},
                        {"|     That", ""},
                        {"|7. End", "hidden"},
                        {"0.0%|     Bye", " Bye=0"}};

constexpr std::pair<const char*, ChartType> Styles[] = {
    {"3D Bar", ChartType::Bar3D},
    {"2D Bar", ChartType::Bar2D},
    {"3D Line", ChartType::Line3D},
    {"2D Line", ChartType::Line2D},
    {"3D Area", ChartType::Area3D},
    {"2D Area", ChartType::Area2D},
    {"3D Step", ChartType::Step3D},
    {"2D Step", ChartType::Step2D},
    {"3D Combination", ChartType::Combination3D},
    {"2D Combination", ChartType::Combination2D},
    {"Pie", ChartType::Pie2D},
    {"2D X-Y", ChartType::XY2D}};

class AnalyzeScreen : public MainWindow {
  protected:
    QString path = program.BlankSurvey("answers.plxs");
    Grid* grid = nullptr;
    Chart* chart = nullptr;

    AnalyzeScreen() {
        for (const char* sql : Survey)
            RunSql(path, {sql});
        Start(path);
        grid = Find<Grid>("gSummaryReport");
        chart = Find<Chart>("c");
        Menu("mnuViewAnalyse");
    }

    QString Total(const char* label) { return Find<QLabel>(label)->text(); }
    void Click(int row) {
        const QModelIndex cell = grid->model()->index(row - 1, 1);
        grid->scrollTo(cell);
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, grid->visualRect(cell).center());
    }
    QString Graph() const {
        QStringList rows;
        for (const ChartRow& row : chart->ChartData())
            rows << row.label + '=' + QString::number(row.value);
        return chart->isVisible() ? rows.join(',') : "hidden";
    }
    // Whose place on the window it is, among the screen's controls.
    template <class Control> bool IsOnTop(Control* control) const {
        const QPoint middle = control->mapTo(window.get(), control->rect().center());
        QWidget* at = window->childAt(middle);
        return at && (at == control || control->isAncestorOf(at));
    }
    QImage OnScreen() { return window->screen()->grabWindow(window->winId()).toImage(); }
    // By the graph's menu, into a file of this name.
    void SavePicture(const QString& name) {
        dialogs.fileNames = {{name, 0}};
        const QPoint middle = chart->rect().center();
        QContextMenuEvent event(QContextMenuEvent::Mouse, middle, chart->mapToGlobal(middle));
        QApplication::sendEvent(chart, &event);
        auto* const menu = chart->findChild<QMenu*>();
        menu->actions().first()->trigger();
        delete menu;
    }
};

} // namespace

TEST_F(AnalyzeScreen, EveryRowHasItsShareAndItsGraph) {
    EXPECT_EQ(Total("lblTotalRespondents"), "8");
    EXPECT_EQ(Total("lblTotalManualEntry"), "3"); // without regard to case
    EXPECT_EQ(Total("lblTotalWebBased"), "2");    // "Web" counts in the first alone
    EXPECT_EQ(Total("lblTotalImported"), "1");
    Menu("mnuAnalyseTotRespondents");
    EXPECT_EQ(dialogs.TakeTexts(), QStringList("8 respondents have completed this survey."));
    EXPECT_EQ(grid->Row(), 1);
    EXPECT_TRUE(chart->isHidden());
    const QRect whole = grid->geometry();

    ASSERT_EQ(grid->Rows(), int(std::size(Rows)) + 1);
    for (int row = 1; row < grid->Rows(); ++row) {
        const Row& wanted = Rows[row - 1];
        EXPECT_EQ(grid->TextMatrix(row, 0) + '|' + grid->TextMatrix(row, 1), wanted.text);
        Click(row);
        EXPECT_EQ(Graph(), wanted.graph) << row;
        // What the graph takes of the screen comes back when it goes.
        EXPECT_EQ(grid->geometry() == whole, chart->isHidden()) << row;
    }

    // A column that the user has made narrow is not widened by counting anew.
    grid->horizontalHeader()->resizeSection(0, 20);
    Menu("mnuViewAnalyse");
    EXPECT_EQ(grid->ColWidth(0), ToTwips(20));

    // A key draws the row being left.
    Click(3);
    QTest::keyClick(grid, Qt::Key_Up);
    QTest::keyClick(grid, Qt::Key_Down);
    EXPECT_EQ(Graph(), "hidden");
    QTest::keyClick(grid, Qt::Key_Down);
    EXPECT_EQ(Graph(), " Coffee=2, Tea=1");
    EXPECT_EQ(failures, std::vector<int>());

    // A failure leaves what was counted until then, and the next survey is counted anew.
    RunSql(path, {"ALTER TABLE response RENAME COLUMN pos TO place",
                  "INSERT INTO respondent (source) VALUES ('Imported')"});
    Menu("mnuViewAnalyse");
    EXPECT_EQ(failures.size(), 1u);
    EXPECT_EQ(Total("lblTotalImported"), "2");
    EXPECT_EQ(grid->Rows(), 2);
    dialogs.answers = {MsgAnswer::No};
    Open(program.BlankSurvey("other.plxs"));
    EXPECT_EQ(grid->Rows(), 1);
    EXPECT_EQ(Total("lblTotalRespondents"), "0");
}

TEST_F(AnalyzeScreen, TheGraphHasTwelveStylesTwoSizesAndAPicture) {
    Click(10);
    auto* const style = window->findChild<ComboBox*>("cboGraphStyle");
    style->setFocus();
    QSet<QByteArray> seen;
    for (const auto& [text, type] : Styles) {
        EXPECT_EQ(style->currentText(), text);
        EXPECT_EQ(chart->chartType(), type) << text;
        QTest::qWait(1); // painted
        const QImage picture =
            OnScreen().copy(QRect(chart->mapTo(window.get(), QPoint()), chart->size()));
        seen << QByteArray(reinterpret_cast<const char*>(picture.constBits()),
                           picture.sizeInBytes());
        QTest::keyClick(style, Qt::Key_Down);
    }
    EXPECT_EQ(seen.size(), qsizetype(std::size(Styles))); // no two look alike

    auto* const expand = window->findChild<QPushButton*>("cmdExpand");
    const QRect small = chart->geometry();
    EXPECT_TRUE(IsOnTop(grid) && IsOnTop(chart) && IsOnTop(expand));
    EXPECT_EQ(expand->text(), "Expand Graph");
    QTest::mouseClick(expand, Qt::LeftButton);
    EXPECT_EQ(expand->text(), "Shrink Graph");
    EXPECT_EQ(chart->pos(), QPoint(ToPixels(50), 0));
    EXPECT_EQ(chart->geometry().right(), small.right());
    EXPECT_EQ(chart->geometry().bottom(), small.bottom() + ToPixels(2700) - ToPixels(2500));
    EXPECT_TRUE(!IsOnTop(grid) && !IsOnTop(style) && IsOnTop(chart) && IsOnTop(expand));
    QTest::mouseClick(expand, Qt::LeftButton);
    EXPECT_EQ(expand->text(), "Expand Graph");
    EXPECT_EQ(chart->geometry(), small);
    EXPECT_TRUE(IsOnTop(grid) && IsOnTop(style) && IsOnTop(chart) && IsOnTop(expand));

    // The name tells the kind of the file; one that tells none makes a PNG.
    chart->setFocus();
    QTest::keyClick(chart, Qt::Key_C, Qt::ControlModifier);
    DoEvents();
    const QImage copied = QApplication::clipboard()->image();
    for (const auto& [name, format] : {std::pair("graph.png", "png"),
                                       {"graph.jpg", "jpeg"},
                                       {"graph", "png"},
                                       {"g.2024", "png"}}) {
        SavePicture(program.Path(name));
        EXPECT_EQ(QImageReader::imageFormat(program.Path(name)), format) << name;
        EXPECT_EQ(QImage(program.Path(name)).size(), copied.size());
    }
    EXPECT_EQ(QImage(program.Path("graph")).convertToFormat(copied.format()), copied);
    SavePicture(""); // cancelled
    EXPECT_EQ(dialogs.TakeTexts(), QStringList());
    SavePicture(path);
    EXPECT_EQ(dialogs.TakeTexts(), QStringList("Unable to write to file " + path + ' ' + path +
                                               ": it is the open survey 75 Pollarix"));
    EXPECT_EQ(SqlRows(path, "SELECT count(*) FROM question", 1), QStringList("10"));
    EXPECT_EQ(failures, std::vector<int>());
}
