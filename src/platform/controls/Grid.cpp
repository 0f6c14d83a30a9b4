#include "platform/controls/Grid.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>

#include <algorithm>
#include <optional>
#include <utility>

#include "platform/base/Failure.h"
#include "platform/base/Handlers.h"
#include "platform/controls/GridColumns.h"
#include "platform/controls/GridHead.h"
#include "platform/controls/GridModel.h"
#include "platform/controls/OneLineDelegate.h"

namespace pollarix {

namespace {

constexpr int RowPadding = 8; // pixels

int CheckedAlignment(int alignment) {
    if (alignment != 1 && alignment != 3 && alignment != 4 && alignment != 7)
        throw Failure(failure::InvalidArgument);
    return alignment;
}

// In a row that is selected as a whole, no single cell is marked as the current one.
class GridDelegate : public OneLineDelegate {
  public:
    GridDelegate(QObject* parent, const bool& wholeRow)
        : OneLineDelegate(parent), wholeRow_(wholeRow) {}

  protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        OneLineDelegate::initStyleOption(option, index);
        if (wholeRow_)
            option->state &= ~QStyle::State_HasFocus;
    }

  private:
    const bool& wholeRow_;
};

} // namespace

struct Grid::State {
    GridModel model;
    std::optional<GridColumns> columns; // once there are headers
    int row = 0;
    int col = 0;
    int colSel = 0;
    bool selectRows = false;
    bool wholeRow = false; // as it is shown
    bool redraw = true;
    int pressedRow = 0; // where the mouse was pressed last
    int pressedCol = 0;
};

Grid::Grid(QWidget* parent) : QTableView(parent), state_(std::make_unique<State>()) {
    setModel(&state_->model);
    setItemDelegate(new GridDelegate(this, state_->wholeRow));
    // The grid moves its current cell itself; Qt's selection only shows it.
    setSelectionMode(SingleSelection);
    setSelectionBehavior(SelectItems);
    setEditTriggers(NoEditTriggers);
    setTabKeyNavigation(false);
    setAutoScroll(false);
    setCornerButtonEnabled(false);
    setAlternatingRowColors(true);
    setWordWrap(false);
    setTextElideMode(Qt::ElideRight);
    setHorizontalScrollMode(ScrollPerPixel);

    auto& heads = *new GridHead(Qt::Horizontal, this);
    auto& rows = *new GridHead(Qt::Vertical, this);
    setHorizontalHeader(&heads);
    setVerticalHeader(&rows);
    heads.Click = rows.Click = [this] {
        if (state_->redraw && Click)
            Click();
    };
    heads.setResizeContentsPrecision(0); // the rows on the screen; all would ask for each text
    state_->columns.emplace(*this, [this] { updateGeometries(); });
    rows.setSectionResizeMode(QHeaderView::Fixed);
    rows.hide();
    FitRowHeight();
    state_->columns->Show();
}

Grid::~Grid() {
    // The view must not look at a model that goes before it.
    setModel(nullptr);
}

void Grid::RequireRow(int row) const {
    if (row < 0 || row >= Rows())
        throw Failure(failure::InvalidArgument);
}

void Grid::RequireCol(int col) const {
    if (col < 0 || col >= Cols())
        throw Failure(failure::InvalidArgument);
}

void Grid::RequireCell(int row, int col) const {
    RequireRow(row);
    RequireCol(col);
}

void Grid::SetFixedCols(int count) {
    if (count < 0 || count > 1)
        throw Failure(failure::InvalidArgument);
    state_->model.SetHeadColumn(count == 1);
    state_->columns->SetFixed(count);
    ShowSelection();
}

int Grid::Rows() const {
    return state_->model.Cells().Rows();
}

int Grid::Cols() const {
    return state_->model.Cells().Cols();
}

void Grid::SetRows(int count) {
    if (count < 0)
        throw Failure(failure::InvalidArgument);
    if (count == Rows())
        return;
    const bool shrinks = count < Rows();
    state_->model.SetRows(count);
    if (shrinks) {
        state_->row = std::clamp(state_->row, 0, std::max(0, count - 1));
        ShowSelection();
    }
}

void Grid::SetCols(int count) {
    if (count < 0)
        throw Failure(failure::InvalidArgument);
    if (count == Cols())
        return;
    const int last = std::max(0, count - 1);
    state_->col = std::min(state_->col, last);
    state_->colSel = std::min(state_->colSel, last);
    state_->columns->SetCount(count);
    state_->columns->WhileModelChanges([&] { state_->model.SetCols(count); });
    ShowSelection();
}

int Grid::Row() const {
    return state_->row;
}

int Grid::Col() const {
    return state_->col;
}

int Grid::ColSel() const {
    return state_->colSel;
}

void Grid::SetRow(int row) {
    RequireRow(row);
    state_->row = row;
    state_->colSel = state_->col;
    ShowSelection();
    ScrollToSelection();
}

void Grid::SetCol(int col) {
    RequireCol(col);
    state_->col = state_->colSel = col;
    ShowSelection();
    ScrollToSelection();
}

void Grid::SetColSel(int col) {
    RequireCol(col);
    state_->colSel = col;
    ShowSelection();
    ScrollToSelection();
}

void Grid::SetSelectRows(bool on) {
    state_->selectRows = on;
    ShowSelection();
}

QString Grid::TextMatrix(int row, int col) const {
    RequireCell(row, col);
    return state_->model.Text(row, col);
}

void Grid::SetTextMatrix(int row, int col, const QString& text) {
    RequireCell(row, col);
    state_->model.SetText(row, col, text);
}

int Grid::CellAlignment(int row, int col) const {
    RequireCell(row, col);
    return state_->model.Cells().Alignment(row, col);
}

void Grid::SetCellAlignment(int row, int col, int alignment) {
    RequireCell(row, col);
    state_->model.SetAlignment(row, col, CheckedAlignment(alignment));
}

void Grid::SetColAlignment(int col, int alignment) {
    RequireCol(col);
    state_->model.SetColAlignment(col, CheckedAlignment(alignment));
}

std::int64_t Grid::RowData(int row) const {
    RequireRow(row);
    return state_->model.Cells().RowData(row);
}

void Grid::SetRowData(int row, std::int64_t data) {
    RequireRow(row);
    state_->model.Cells().SetRowData(row, data);
}

std::int64_t Grid::ColData(int col) const {
    RequireCol(col);
    return state_->model.Cells().ColData(col);
}

void Grid::SetColData(int col, std::int64_t data) {
    RequireCol(col);
    state_->model.Cells().SetColData(col, data);
}

int Grid::ColWidth(int col) const {
    RequireCol(col);
    return state_->columns->Width(col);
}

void Grid::SetColWidth(int col, int twips) {
    RequireCol(col);
    if (twips < 0)
        throw Failure(failure::InvalidArgument);
    state_->columns->SetWidth(col, twips);
}

void Grid::SetStretchCol(int col) {
    if (col != -1)
        RequireCol(col);
    state_->columns->SetStretch(col);
}

void Grid::SetProvider(CellProvider provider) {
    state_->model.SetProvider(std::move(provider));
}

void Grid::SetRedraw(bool on) {
    if (on == state_->redraw)
        return;
    state_->redraw = on;
    if (!on) {
        setUpdatesEnabled(false);
        state_->model.BeSilent();
        return;
    }
    state_->columns->WhileModelChanges([this] { state_->model.Speak(); });
    ShowSelection();
    ScrollToSelection();
    setUpdatesEnabled(true);
}

bool Grid::SelectsRow() const {
    return state_->selectRows || state_->colSel != state_->col;
}

void Grid::ShowSelection() {
    if (!state_->redraw)
        return;
    state_->wholeRow = SelectsRow();
    int left = std::min(state_->col, state_->colSel);
    int right = std::max(state_->col, state_->colSel);
    if (state_->selectRows) {
        left = 0;
        right = Cols() - 1;
    }
    left = std::max(left, state_->columns->Fixed());
    if (state_->row == 0 || left > right) {
        selectionModel()->clear();
        return;
    }
    const auto at = [this](int col) { return model()->index(state_->row - 1, col); };
    selectionModel()->select(QItemSelection(at(left), at(right)),
                             QItemSelectionModel::ClearAndSelect);
    selectionModel()->setCurrentIndex(at(std::clamp(state_->col, left, right)),
                                      QItemSelectionModel::NoUpdate);
}

void Grid::ScrollToSelection() {
    if (!state_->redraw || !currentIndex().isValid())
        return;
    executeDelayedItemsLayout();
    const int left = horizontalScrollBar()->value();
    scrollTo(currentIndex());
    if (state_->wholeRow)
        horizontalScrollBar()->setValue(left);
}

void Grid::FitRowHeight() {
    const int height = fontMetrics().height() + RowPadding;
    verticalHeader()->setMinimumSectionSize(height);
    verticalHeader()->setDefaultSectionSize(height);
    horizontalHeader()->setMinimumHeight(height);
}

void Grid::MoveByUser(int row, int col, int colSel) {
    state_->row = row;
    state_->col = state_->selectRows ? 0 : col;
    state_->colSel = state_->selectRows ? Cols() - 1 : colSel;
    ShowSelection();
}

bool Grid::ActOnKey(const QKeyEvent& event) {
    const auto modifiers = event.modifiers() & ~(Qt::KeypadModifier | Qt::ShiftModifier);
    const bool ends = event.key() == Qt::Key_Home || event.key() == Qt::Key_End;
    const bool control = ends && modifiers == Qt::ControlModifier;
    if (modifiers != Qt::NoModifier && !control)
        return false;

    const bool wide = SelectsRow();
    const int page = std::max(1, viewport()->height() / verticalHeader()->defaultSectionSize() - 1);
    const int lastRow = Rows() - 1;
    const int lastCol = Cols() - 1;
    const int forward = isRightToLeft() ? -1 : 1;
    int row = state_->row;
    int col = state_->col;
    int step = 0;
    switch (event.key()) {
    case Qt::Key_Up:
        --row;
        break;
    case Qt::Key_Down:
        ++row;
        break;
    case Qt::Key_PageUp:
        row -= page;
        break;
    case Qt::Key_PageDown:
        row += page;
        break;
    case Qt::Key_Left:
        step = -forward;
        break;
    case Qt::Key_Right:
        step = forward;
        break;
    case Qt::Key_Home:
        row = control || wide ? 1 : row;
        col = 0;
        break;
    case Qt::Key_End:
        row = control || wide ? lastRow : row;
        col = lastCol;
        break;
    default:
        return false;
    }
    if (wide && step != 0) {
        QScrollBar& bar = *horizontalScrollBar();
        bar.setValue(bar.value() + step * bar.singleStep());
        return true;
    }
    if (lastRow < 1 || lastCol < state_->columns->Fixed())
        return true; // a head alone
    row = std::clamp(row, 1, lastRow);
    col = std::clamp(col + step, state_->columns->Fixed(), lastCol);
    if (wide)
        MoveByUser(row, state_->col, state_->colSel);
    else
        MoveByUser(row, col, col);
    ScrollToSelection();
    return true;
}

void Grid::Copy() const {
    if (state_->row == 0)
        return;
    QStringList texts;
    QModelIndexList cells = selectionModel()->selectedIndexes();
    std::sort(cells.begin(), cells.end());
    for (const QModelIndex& cell : std::as_const(cells))
        texts << cell.data().toString();
    QGuiApplication::clipboard()->setText(texts.join('\t'));
}

void Grid::keyPressEvent(QKeyEvent* event) {
    event->ignore();
    if (!state_->redraw)
        return;
    if (KeyDown)
        RunHandler([&] { KeyDown(*event); });
    if (ActOnKey(*event)) {
        event->accept();
    } else if (event->matches(QKeySequence::Copy)) {
        Copy();
        event->accept();
    }
}

// No click scrolls the grid, not even one on a row that is cut off at the edge: the second click of
// a double click would meet another row.
void Grid::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    const QModelIndex cell = indexAt(event->position().toPoint());
    if (!cell.isValid() || !state_->redraw)
        return;
    state_->pressedRow = cell.row() + 1;
    state_->pressedCol = cell.column();
    MoveByUser(state_->pressedRow, state_->pressedCol, state_->pressedCol);
    RunHandler(Click);
}

void Grid::mouseReleaseEvent(QMouseEvent*) {}

void Grid::mouseMoveEvent(QMouseEvent* event) {
    if (event->buttons() == Qt::NoButton)
        QTableView::mouseMoveEvent(event);
}

void Grid::mouseDoubleClickEvent(QMouseEvent* event) {
    const QModelIndex cell = indexAt(event->position().toPoint());
    const bool twice = cell.isValid() && cell.row() + 1 == state_->pressedRow &&
                       (state_->selectRows || cell.column() == state_->pressedCol);
    if (!twice || event->button() != Qt::LeftButton)
        mousePressEvent(event); // two clicks in quick succession, on two cells
    else if (state_->redraw)
        RunHandler(DblClick);
}

void Grid::focusInEvent(QFocusEvent* event) {
    QTableView::focusInEvent(event);
    ShowSelection(); // the view has made its first cell current where none was
}

void Grid::resizeEvent(QResizeEvent* event) {
    const QRect current = visualRect(currentIndex());
    const bool inView = current.bottom() < event->oldSize().height() && current.top() >= 0;
    QTableView::resizeEvent(event);
    state_->columns->Show();
    if (inView)
        ScrollToSelection();
}

void Grid::showEvent(QShowEvent* event) {
    QTableView::showEvent(event);
    ScrollToSelection();
}

void Grid::changeEvent(QEvent* event) {
    QTableView::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        FitRowHeight();
}

QItemSelectionModel::SelectionFlags Grid::selectionCommand(const QModelIndex&,
                                                           const QEvent*) const {
    return QItemSelectionModel::NoUpdate;
}

} // namespace pollarix
