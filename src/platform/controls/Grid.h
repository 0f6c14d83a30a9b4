// A grid of texts with a real head row 0 (and a head column, if asked for). Virtual: a cell costs
// nothing until it is set or shown, so a grid holds a million rows. A new grid is its head alone,
// of one column.
#pragma once

#include <QTableView>

#include <functional>
#include <memory>

namespace pollarix {

class Grid : public QTableView {
    Q_OBJECT
  public:
    // Alignments: 1 left centred (where none is set), 3 centred top, 4 centred, 7 right centred;
    // others throw InvalidArgument.
    explicit Grid(QWidget* parent = nullptr);
    ~Grid() override;

    // Row 0 is always the head. FixedCols columns (0 or 1) at the left are heads as well: they stay
    // in view, and neither mouse nor keys enter them. The cell where both meet shows no text.
    // To Qt's side of the view, the grid's row r is the model's row r - 1.
    void SetFixedCols(int count);
    int Rows() const;
    int Cols() const;
    // Growing adds empty cells with RowData or ColData 0; shrinking drops cells and data beyond and
    // clamps Row and Col. Throws InvalidArgument below 0. Column widths survive.
    void SetRows(int count);
    void SetCols(int count);

    // The current cell; with Row 0 nothing is selected. Setting them out of range throws
    // InvalidArgument. Setting Row or Col drops a wider selection to the one cell.
    int Row() const;
    int Col() const;
    void SetRow(int row);
    void SetCol(int col);
    int ColSel() const;
    void SetColSel(int col); // the selection reaches from Col to this column
    // The user selects whole rows: a click or key leaves Col at the first column and ColSel at the
    // last.
    void SetSelectRows(bool on);

    QString TextMatrix(int row, int col) const; // InvalidArgument beyond the grid, as the others
    void SetTextMatrix(int row, int col, const QString& text);
    QString Text() const { return TextMatrix(Row(), Col()); }
    void SetText(const QString& text) { SetTextMatrix(Row(), Col(), text); }
    int CellAlignment(int row, int col) const;
    void SetCellAlignment(int row, int col, int alignment);
    void SetColAlignment(int col, int alignment); // of all cells that have none of their own

    std::int64_t RowData(int row) const; // InvalidArgument beyond the rows
    void SetRowData(int row, std::int64_t data);
    std::int64_t ColData(int col) const;
    void SetColData(int col, std::int64_t data);

    // Twips, as code or the user's mouse has set it last; 0 hides the column. A head column takes
    // no more than part of the grid on the screen.
    int ColWidth(int col) const;
    void SetColWidth(int col, int twips);
    // The column that fills what the others leave free, -1 for none. Its ColWidth is then its least
    // width.
    void SetStretchCol(int col);

    // Off while the grid is filled, on again when it stands. While it is off the grid shows what it
    // showed, and the user's mouse and keys do nothing.
    void SetRedraw(bool on);

    // Texts of body cells that were never set: asked when a cell is shown or read, and remembered
    // for the rows last asked. An empty provider gives "". Setting it forgets what was remembered.
    using CellProvider = std::function<QString(int row, int col)>;
    void SetProvider(CellProvider provider);

    // The user clicked a body cell (Row and Col are set before) - or a head, which leaves Row and
    // Col as they were.
    std::function<void()> Click;
    std::function<void()> DblClick; // on a body cell only; its first click has raised Click
    // A key, before the grid acts on it: Row and Col are those being left. A key that the grid has
    // no use for, as Enter, goes on to the window unless the handler accepts the event.
    std::function<void(QKeyEvent&)> KeyDown;

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;
    QItemSelectionModel::SelectionFlags
    selectionCommand(const QModelIndex& index, const QEvent* event = nullptr) const override;

  private:
    void RequireRow(int row) const;
    void RequireCol(int col) const;
    void RequireCell(int row, int col) const;
    bool SelectsRow() const;
    void MoveByUser(int row, int col, int colSel);
    bool ActOnKey(const QKeyEvent& event);
    void Copy() const;
    void ShowSelection();
    void ScrollToSelection();
    void FitRowHeight();

    struct State;
    std::unique_ptr<State> state_;
};

} // namespace pollarix
