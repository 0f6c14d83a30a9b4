// The Analyze screen: totals, the summary grid and the graph of its current row.
#pragma once

#include <QWidget>

#include <functional>

#include "analysis/SummaryReport.h"
#include "document/ApplicationState.h"
#include "platform/controls/ColumnWidths.h"

class QGroupBox;
class QLabel;
class QPushButton;

namespace pollarix {

class Chart;
class ComboBox;
class Grid;
class LongWork;

class picAnalyse : public QWidget {
    Q_OBJECT
  public:
    // The graph's picture is not saved while the long work runs.
    picAnalyse(ApplicationState& state, const LongWork& work, QWidget* parent);

    // Steps of the start-up, in their order.
    void AddFirstSummaryEntry();
    void WriteHeads(); // columns, head row, widths
    void WidenGrid();  // column 1 fills what the other leaves
    void SelectFirstGraphStyle();

    // Rebuilds grid and totals. Row is the grid row to select, overridden by that of the response
    // with ResponseID. On the hidden screen nothing is counted, only what would fail is told: the
    // screen is shown by a refresh alone, so nobody sees the grid before the next one. Does not
    // redraw the graph. Throws what the counts and ReadSummary throw; the screen then shows what
    // was read until then, and behind it nothing or, without totals or rows, what it showed before.
    void RefreshRespondeSummaryReportList(std::int64_t Row, std::int64_t ResponseID);

    // Selects the first row of a response, or, for -1, of the question, and draws its graph. False
    // when the list has no such row.
    bool ShowRow(std::int64_t ResponseID, const clsQ& question);

    void mnuAnalyseTotRespondents_Click();

    void LayOut(int windowWidth, int windowHeight); // pixels

    // Lays out the whole window; set by it.
    std::function<void()> Form_Resize;

  private:
    void BuildTotals();
    void ShowTotals();
    void FillGrid();
    void LeaveRoomForButton();
    void FitInstructions();
    void RefreshGraph();
    void ShowGraph(bool on);
    void cmdExpand_Click();
    void SavePicture(const QImage& picture);
    void PlaceGraph();

    ApplicationState& state_;
    const LongWork& work_;
    SummaryReport summary_;
    AnswerCounts counts_;
    bool isExpanded_ = false; // the graph covers the rest of the screen

    QLabel* picTitleAnalyse_;
    QLabel* lblInstructions_;
    QWidget* picSummaryReport_;
    QLabel* lblSummary_;
    Grid* gSummaryReport_;
    ColumnWidths widths_;
    QGroupBox* fraTotals_;
    QLabel* lblTotalRespondents_ = nullptr;
    QLabel* lblTotalManualEntry_ = nullptr;
    QLabel* lblTotalWebBased_ = nullptr;
    QLabel* lblTotalImported_ = nullptr;
    QLabel* lblLabels_;
    ComboBox* cboGraphStyle_;
    QLabel* lblGraph_;
    Chart* c_;
    QPushButton* cmdExpand_;
};

} // namespace pollarix
