#include "analysis/picAnalyse.h"

#include <QBuffer>
#include <QFileInfo>
#include <QFormLayout>
#include <QGroupBox>
#include <QImage>
#include <QImageWriter>
#include <QLabel>
#include <QPushButton>

#include "analysis/ResponseGraph.h"
#include "analysis/SaveCommand.h"
#include "platform/base/Failure.h"
#include "platform/base/Handlers.h"
#include "platform/charts/Chart.h"
#include "platform/controls/ComboBox.h"
#include "platform/controls/Grid.h"
#include "platform/controls/RedrawOff.h"
#include "platform/controls/ScreenTitle.h"
#include "platform/controls/Twips.h"
#include "platform/files/Files.h"
#include "platform/richtext/RichText.h"

namespace pollarix {

namespace {

constexpr const char* Styles[] = {"3D Bar",         "2D Bar",         "3D Line", "2D Line",
                                  "3D Area",        "2D Area",        "3D Step", "2D Step",
                                  "3D Combination", "2D Combination", "Pie",     "2D X-Y"};

// The graph's place while the grid stands above it.
constexpr int GraphLeft = ToPixels(3150);
constexpr int GraphTop = ToPixels(2430);
constexpr int Margin = ToPixels(120);
constexpr int SmallestText = 6; // points
constexpr int CellPadding = 12;

// The picture as the bytes of its file, whose kind the name tells; PNG where it tells none.
QByteArray BytesOf(const QImage& picture, const QString& path) {
    QByteArray suffix = QFileInfo(path).suffix().toLatin1().toLower();
    if (!QImageWriter::supportedImageFormats().contains(suffix))
        suffix = "png";
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QImageWriter writer(&buffer, suffix);
    if (!writer.write(picture))
        throw Failure(failure::PathOrFileAccess, path + ": " + writer.errorString());
    return bytes;
}

} // namespace

picAnalyse::picAnalyse(ApplicationState& state, const LongWork& work, QWidget* parent)
    : QWidget(parent), state_(state), work_(work) {
    setObjectName("picAnalyse");
    picSummaryReport_ = new QWidget(this);
    picSummaryReport_->setObjectName("picSummaryReport");
    picTitleAnalyse_ = NewScreenTitle("picTitleAnalyse", "Analyze", this);
    lblInstructions_ = NewInstructions(
        "Instructions - You are currently viewing a list of responses. To view a graph select the "
        "response below. For more help press F1.",
        this);
    // The graph's fixed place leaves little room above it, so the text stands in the title strip.
    lblInstructions_->setForegroundRole(QPalette::HighlightedText);
    lblInstructions_->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);

    lblSummary_ = NewHeading("Response Summary", picSummaryReport_);
    gSummaryReport_ = new Grid(picSummaryReport_);
    gSummaryReport_->setObjectName("gSummaryReport");
    gSummaryReport_->setAccessibleName("Response Summary");
    gSummaryReport_->SetSelectRows(true);
    gSummaryReport_->SetCols(2); // the first survey is opened before the start-up lays the grid out
    gSummaryReport_->SetStretchCol(1);
    gSummaryReport_->Click = [this] { RefreshGraph(); };
    // The selection hasn't moved yet: the graph follows the row being left. Required.
    gSummaryReport_->KeyDown = [this](QKeyEvent&) { RefreshGraph(); };
    BuildTotals();

    lblLabels_ = new QLabel("Graph Style:", picSummaryReport_);
    lblLabels_->setObjectName("lblLabels");
    cboGraphStyle_ = new ComboBox(picSummaryReport_);
    cboGraphStyle_->setObjectName("cboGraphStyle");
    cboGraphStyle_->setAccessibleName("Graph Style");
    for (const char* style : Styles)
        cboGraphStyle_->AddItem(style);
    cboGraphStyle_->Click = [this] { RefreshGraph(); };
    lblLabels_->setBuddy(cboGraphStyle_);

    // A text of the window's design that nothing updates.
    lblGraph_ = NewHeading("Graph for 1. What is your favorite soup?", this);
    c_ = new Chart(this);
    c_->setObjectName("c");
    c_->setAccessibleName("Graph");
    c_->SavePicture = [this](const QImage& picture) { SavePicture(picture); };
    cmdExpand_ = new QPushButton(this);
    cmdExpand_->setObjectName("cmdExpand");
    cmdExpand_->setAutoDefault(false);
    connect(cmdExpand_, &QPushButton::clicked, this,
            [this] { RunHandler([this] { cmdExpand_Click(); }); });
    PlaceGraph();
    ShowGraph(false);
}

void picAnalyse::BuildTotals() {
    fraTotals_ = new QGroupBox("Totals", picSummaryReport_);
    fraTotals_->setObjectName("fraTotals");
    auto* form = new QFormLayout(fraTotals_);
    form->setRowWrapPolicy(QFormLayout::WrapLongRows); // for a large font the column is narrow
    const auto total = [&](const char* name, const QString& caption) {
        auto* value = new QLabel("0", fraTotals_);
        value->setObjectName(name);
        value->setAlignment(Qt::AlignRight);
        value->setAccessibleName(QString(caption).remove(':'));
        form->addRow(caption, value);
        return value;
    };
    lblTotalRespondents_ = total("lblTotalRespondents", "Total Respondents:");
    lblTotalImported_ = total("lblTotalImported", "Imported:");
    lblTotalWebBased_ = total("lblTotalWebBased", "Web Based:");
    lblTotalManualEntry_ = total("lblTotalManualEntry", "Manual Entry:");
}

void picAnalyse::AddFirstSummaryEntry() {
    summary_.AddEntry(-1, -1);
}

void picAnalyse::WriteHeads() {
    gSummaryReport_->SetCols(2);
    gSummaryReport_->SetRows(1);
    gSummaryReport_->SetTextMatrix(0, 0, "%");
    gSummaryReport_->SetColAlignment(0, 7);
    gSummaryReport_->SetTextMatrix(0, 1, "Question");
    gSummaryReport_->SetColAlignment(1, 1);
    widths_.Start(*gSummaryReport_, {600, 6400});
}

void picAnalyse::WidenGrid() {
    widths_.Fill(*gSummaryReport_, 1, 100);
}

void picAnalyse::SelectFirstGraphStyle() {
    cboGraphStyle_->SetListIndex(0);
}

void picAnalyse::RefreshRespondeSummaryReportList(std::int64_t Row, std::int64_t ResponseID) {
    if (!isVisible()) {
        CheckSummary(state_.SurveyConnection);
        return;
    }
    summary_ = {};
    counts_.LookAt(state_.SurveyConnection);
    summary_.totals = counts_.Totals();
    ShowTotals();
    const RedrawOff redrawOff(*gSummaryReport_);
    try {
        ReadSummary(state_.SurveyConnection, counts_, Row, ResponseID, summary_);
    } catch (...) {
        if (summary_.rows.size() > 1) // else the rows of before stand
            FillGrid();
        throw;
    }
    FillGrid();
    gSummaryReport_->SetRow(static_cast<int>(summary_.row));
    gSummaryReport_->SetCol(0);
    gSummaryReport_->SetColSel(1);
}

void picAnalyse::ShowTotals() {
    const SummaryTotals& totals = summary_.totals;
    lblTotalRespondents_->setText(QString::number(totals.all));
    lblTotalManualEntry_->setText(QString::number(totals.manualEntry));
    lblTotalWebBased_->setText(QString::number(totals.webBased));
    lblTotalImported_->setText(QString::number(totals.imported));
}

void picAnalyse::FillGrid() {
    Grid& grid = *gSummaryReport_;
    const int rows = static_cast<int>(summary_.rows.size());
    grid.SetRows(rows);
    for (int row = 1; row < rows; ++row) {
        grid.SetTextMatrix(row, 0, summary_.rows[row].percentage);
        grid.SetTextMatrix(row, 1, summary_.rows[row].text);
        grid.SetRowData(row, summary_.rows[row].rowData);
    }
    summary_.rows.clear();
    summary_.rows.shrink_to_fit();
    // The fixed start width holds no percentage in a larger font.
    int widest = 0;
    for (int row = 1; row < rows; ++row)
        widest = qMax(widest, grid.fontMetrics().horizontalAdvance(grid.TextMatrix(row, 0)));
    widths_.Fit(grid, 0, ToTwips(widest + CellPadding));
}

bool picAnalyse::ShowRow(std::int64_t ResponseID, const clsQ& question) {
    Grid& grid = *gSummaryReport_;
    // As the summary writes it.
    const QString text = question.QuestionNo + ". " + PlainTextOf(question.Question);
    for (int row = 1; row < grid.Rows(); ++row) {
        if (grid.RowData(row) != ResponseID ||
            (ResponseID == -1 && grid.TextMatrix(row, 1) != text))
            continue;
        grid.SetRow(row);
        grid.SetCol(0);
        grid.SetColSel(1);
        RefreshGraph();
        return true;
    }
    return false;
}

void picAnalyse::mnuAnalyseTotRespondents_Click() {
    const std::int64_t count = state_.SurveyConnection.Count("SELECT count(*) FROM respondent");
    state_.dialogs.MsgBox(QString::number(count) + " respondents have completed this survey.",
                          MsgIcon::Information);
}

void picAnalyse::RefreshGraph() {
    const int row = gSummaryReport_->Row();
    std::int16_t key = -1;
    // Read at the grid's row number, without regard to the shift that a matrix leaves.
    if (row > 0 && summary_.SummaryRowCount() > 0) {
        if (row > summary_.SummaryRowCount())
            throw Failure(failure::Subscript);
        key = summary_.SummaryKeys[row];
    }
    Connection& file = state_.SurveyConnection;
    const GraphQuestion question = QuestionOfGraph(file, gSummaryReport_->RowData(row));
    if (question.shows)
        ShowGraph(*question.shows);
    if (!question.id)
        return;
    counts_.LookAt(file);
    const std::optional<std::vector<ChartRow>> table =
        ReadGraph(file, counts_, *question.id, question.qtype, key);
    if (!table)
        return;
    // After a start-up that failed no style is selected: the chart keeps its own.
    if (cboGraphStyle_->ListIndex() != -1)
        c_->SetChartType(ChartTypeOfStyle(cboGraphStyle_->ListIndex()));
    c_->SetChartData(*table);
}

void picAnalyse::ShowGraph(bool on) {
    const bool changes = c_->isHidden() == on;
    c_->setVisible(on);
    cmdExpand_->setVisible(on);
    lblGraph_->setVisible(on);
    if (changes && Form_Resize)
        Form_Resize(); // the grid takes the room that the graph leaves
}

void picAnalyse::PlaceGraph() {
    cmdExpand_->setText(isExpanded_ ? "Shrink Graph" : "Expand Graph");
    c_->move(isExpanded_ ? QPoint(picSummaryReport_->x() + ToPixels(50), 0)
                         : QPoint(GraphLeft, GraphTop));
}

void picAnalyse::cmdExpand_Click() {
    c_->raise();
    cmdExpand_->raise();
    isExpanded_ = !isExpanded_;
    if (!isExpanded_)
        gSummaryReport_->raise();
    PlaceGraph();
    if (Form_Resize)
        Form_Resize();
}

void picAnalyse::SavePicture(const QImage& picture) {
    FileDialogRequest request;
    request.title = "Save Picture";
    request.fileName = "Graph.png";
    request.filter = "Portable Network Graphics (*.png)|*.png";
    request.promptOverwrite = true;
    RunSaveCommand(state_, work_, request, [&](const FileDialogResult& chosen) {
        WriteWholeFile(chosen.fileName, BytesOf(picture, chosen.fileName));
    });
}

// The button stands on the chart's corner, where the last label would be.
void picAnalyse::LeaveRoomForButton() {
    const int covered = c_->geometry().bottom() + 1 - cmdExpand_->y();
    c_->setContentsMargins(0, 0, 0, qMax(0, covered));
}

// The strip is no higher than its title: in a large font the text in it is written smaller.
void picAnalyse::FitInstructions() {
    const int left = qMax(ToPixels(1400), picTitleAnalyse_->sizeHint().width() + Margin);
    const int textWidth = width() - left - ToPixels(150);
    if (textWidth <= 0)
        return;
    lblInstructions_->setGeometry(left, 0, textWidth, ScreenTitleHeight);
    QFont text = font();
    lblInstructions_->setFont(text);
    while (lblInstructions_->heightForWidth(textWidth) > ScreenTitleHeight &&
           text.pointSizeF() > SmallestText) {
        text.setPointSizeF(text.pointSizeF() - 0.5);
        lblInstructions_->setFont(text);
    }
}

void picAnalyse::LayOut(int windowWidth, int windowHeight) {
    const auto place = [](QWidget* control, int left, int top, int width, int height) {
        // Too small for a value: the control stays as it was.
        if (width > 0 && height > 0)
            control->setGeometry(left, top, width, height);
    };
    place(c_, c_->x(), c_->y(), windowWidth - c_->x(),
          windowHeight - c_->y() - ToPixels(isExpanded_ ? 2500 : 2700));
    const QSize button = cmdExpand_->sizeHint();
    place(cmdExpand_, windowWidth - button.width() - ToPixels(350),
          windowHeight - button.height() - ToPixels(isExpanded_ ? 2700 : 2600), button.width(),
          button.height());
    LeaveRoomForButton();

    // The expanded graph doesn't reach to the left edge: a strip of the title would show beside it.
    const bool titleShows = !isExpanded_ || c_->isHidden();
    picTitleAnalyse_->setVisible(titleShows);
    lblInstructions_->setVisible(titleShows);
    place(picTitleAnalyse_, 0, 0, width(), ScreenTitleHeight);
    FitInstructions();
    place(picSummaryReport_, 0, 0, width(), height());

    // Totals and style in the left column, the grid in the right one, above the graph if it shows.
    const int top = ScreenTitleHeight + 2;
    const QSize heading = lblGraph_->sizeHint();
    const int gridTop = top + heading.height();
    place(lblSummary_, GraphLeft, top, heading.width(), heading.height());
    const int gridBottom = c_->isHidden() ? height() - Margin : GraphTop - heading.height() - 2;
    place(gSummaryReport_, GraphLeft, gridTop,
          picSummaryReport_->width() - GraphLeft - ToPixels(200), gridBottom - gridTop);
    gSummaryReport_->scrollTo(gSummaryReport_->currentIndex());
    place(lblGraph_, GraphLeft, GraphTop - heading.height(), heading.width(), heading.height());
    const int columnWidth = GraphLeft - 2 * Margin;
    place(fraTotals_, Margin, top + 4, columnWidth,
          fraTotals_->layout()->totalHeightForWidth(columnWidth));
    const int styleTop = fraTotals_->geometry().bottom() + 2 * Margin;
    place(lblLabels_, Margin, styleTop, columnWidth, heading.height());
    place(cboGraphStyle_, Margin, styleTop + heading.height() + 2, columnWidth,
          cboGraphStyle_->sizeHint().height());
}

} // namespace pollarix
