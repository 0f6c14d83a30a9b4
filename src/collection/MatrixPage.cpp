#include "collection/MatrixPage.h"

#include <QKeyEvent>

#include "collection/MatrixDelegate.h"
#include "collection/MatrixHead.h"
#include "platform/base/Failure.h"
#include "platform/base/ShownText.h"
#include "platform/controls/Grid.h"
#include "platform/controls/RedrawOff.h"
#include "platform/controls/Twips.h"

namespace pollarix {

namespace {

constexpr qsizetype LongestHead = 1000; // characters that are shown of it
// Widening of a column beyond its text, in twips.
constexpr int LeastBesideText = 150;
constexpr int RoomBesideText = 200;

// Shows or hides the grid at the end, however that is reached. While its updates are off, hiding it
// would leave its picture on the screen.
struct ShowAtEnd {
    Grid& grid;
    bool shows;
    ~ShowAtEnd() { grid.setVisible(shows); }
};

} // namespace

MatrixPage::MatrixPage(QWidget* parent)
    : AnswerPage("picDCResponseMatrix", parent), gMatrix_(new Grid) {
    gMatrix_->setObjectName("gMatrix");
    gMatrix_->setAccessibleName("Answers");
    auto* head = new MatrixHead(gMatrix_);
    head->Click = [this] { gMatrix_Click(); };
    gMatrix_->setVerticalHeader(head);
    gMatrix_->SetFixedCols(1);
    gMatrix_->setItemDelegate(new MatrixDelegate(gMatrix_));
    gMatrix_->Click = [this] { gMatrix_Click(); };
    gMatrix_->KeyDown = [this](QKeyEvent& event) { gMatrix_KeyDown(event); };
    Fill(*gMatrix_);
}

bool MatrixPage::HasAnswers() const {
    return !gMatrix_->isHidden();
}

void MatrixPage::TakeFocus() {
    gMatrix_->setFocus();
}

void MatrixPage::ShowAnswer(const AnswerPlace& place) {
    ShowAtEnd end{*gMatrix_, HasAnswers()};
    const RedrawOff redrawOff(*gMatrix_);
    FillGrid(place, end.shows);
}

void MatrixPage::FillGrid(const AnswerPlace& place, bool& shows) {
    std::int16_t group = -1;
    const bool rows = LoadRows(place, group, shows);
    shows = LoadPoints(place, group);
    if (rows && shows)
        LoadAnswers(place);
    ChooseFirstPoints();
    if (gMatrix_->Rows() > 1) { // the keys start at the top
        gMatrix_->SetRow(1);
        gMatrix_->SetCol(ChosenCol(1));
    }
}

bool MatrixPage::LoadRows(const AnswerPlace& place, std::int16_t& group, bool& shows) {
    Recordset row = place.file.Execute(
        "SELECT id, name, responsematrixgroupid FROM response WHERE questionid = ? ORDER BY pos",
        {place.question});
    const bool any = !row.AtEnd();
    // A scale that can't be read leaves the grid as the page before had it.
    if (any)
        group = Narrow16(row.Integer("responsematrixgroupid"));
    shows = any;
    gMatrix_->SetRows(1);
    gMatrix_->SetCols(1);
    for (; !row.AtEnd(); row.MoveNext()) {
        const int at = gMatrix_->Rows();
        gMatrix_->SetRows(at + 1);
        AddHead(at, 0, row.NullToString("name") + ' ');
        gMatrix_->SetRowData(at, row.Integer("id"));
        gMatrix_->SetCellAlignment(at, 0, 7);
    }
    return any;
}

bool MatrixPage::LoadPoints(const AnswerPlace& place, std::int16_t group) {
    Recordset point = place.file.Execute(
        "SELECT id, name FROM responsematrix WHERE responsematrixgroupid = ? ORDER BY pos",
        {group});
    const bool any = !point.AtEnd();
    for (; !point.AtEnd(); point.MoveNext()) {
        const int at = gMatrix_->Cols();
        gMatrix_->SetCols(at + 1);
        AddHead(0, at, point.NullToString("name"));
        gMatrix_->SetColData(at, point.Integer("id"));
        gMatrix_->SetCellAlignment(0, at, 3);
    }
    return any;
}

void MatrixPage::LoadAnswers(const AnswerPlace& place) {
    for (int row = 1; row < gMatrix_->Rows(); ++row) {
        const Recordset answer = place.file.Execute(
            "SELECT id, ResponseMatrixID FROM Respondent_Responses WHERE questionid = ? AND "
            "responseid = ? AND respondentid = ? ORDER BY id",
            {place.question, gMatrix_->RowData(row), place.respondent});
        if (answer.AtEnd())
            continue;
        for (int col = 1; col < gMatrix_->Cols(); ++col) {
            const bool chosen = !answer.IsNull(1) && answer.Integer(1) == gMatrix_->ColData(col);
            gMatrix_->SetTextMatrix(row, col, chosen ? MatrixDelegate::Chosen : "");
            gMatrix_->SetCellAlignment(row, col, 4);
        }
    }
}

// Every sub question starts answered with the scale's first point, on purpose. On a scale without
// points the grid has no column 1, and choosing it fails.
void MatrixPage::ChooseFirstPoints() {
    for (int row = 1; row < gMatrix_->Rows(); ++row) {
        if (ChosenCol(row) > 0)
            continue;
        gMatrix_->SetRow(row);
        gMatrix_->SetCol(1);
        gMatrix_->SetText(MatrixDelegate::Chosen);
        gMatrix_->SetCellAlignment(row, 1, 4);
    }
}

void MatrixPage::AddHead(int row, int col, const QString& text) {
    const QString shown = Shortened(text, LongestHead);
    gMatrix_->SetTextMatrix(row, col, shown);
    const int width = ToTwips(fontMetrics().horizontalAdvance(shown));
    if (width + LeastBesideText > gMatrix_->ColWidth(col))
        gMatrix_->SetColWidth(col, width + RoomBesideText);
}

int MatrixPage::ChosenCol(int row) const {
    for (int col = 1; col < gMatrix_->Cols(); ++col)
        if (gMatrix_->TextMatrix(row, col) == MatrixDelegate::Chosen)
            return col;
    return 0;
}

void MatrixPage::gMatrix_Click() {
    const int row = gMatrix_->Row();
    const int chosen = gMatrix_->Col();
    if (row < 1 || chosen < 1)
        return;
    for (int col = 1; col < gMatrix_->Cols(); ++col)
        gMatrix_->SetTextMatrix(row, col, {});
    gMatrix_->SetTextMatrix(row, chosen, MatrixDelegate::Chosen);
    gMatrix_->SetCellAlignment(row, chosen, 4);
}

void MatrixPage::gMatrix_KeyDown(QKeyEvent& event) {
    const bool enter = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
    // A default button takes Enter before any control sees it.
    if (event.key() != Qt::Key_Space && (!enter || EnterTurnsPage()))
        return;
    gMatrix_Click();
    event.accept();
}

bool MatrixPage::ChooseByDigit(int digit) {
    const int row = gMatrix_->Row();
    if (!HasAnswers() || row < 1 || digit >= gMatrix_->Cols())
        return false;
    gMatrix_->SetCol(digit);
    gMatrix_Click();
    if (row + 1 < gMatrix_->Rows()) {
        gMatrix_->SetRow(row + 1);
        gMatrix_->SetCol(ChosenCol(row + 1));
        TakeFocus();
    } else if (AnsweredLast) {
        AnsweredLast();
    }
    return true;
}

std::int16_t MatrixPage::Store(const AnswerPlace& place) {
    TableInsert insert(
        place.file, "Respondent_Responses",
        {"QuestionID", "RespondentID", "ResponseID", "SimpleResponse", "ResponseMatrixID"});
    for (int col = 1; col < gMatrix_->Cols(); ++col)
        for (int row = 1; row < gMatrix_->Rows(); ++row)
            if (gMatrix_->TextMatrix(row, col) == MatrixDelegate::Chosen)
                insert.Add({place.question, place.respondent, gMatrix_->RowData(row), "",
                            gMatrix_->ColData(col)});
    return NoJump;
}

} // namespace pollarix
