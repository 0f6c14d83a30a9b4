// A grid of texts with a real head row 0 (and head columns, if asked for). Virtual: a cell costs
// nothing until it is set or shown, so a grid holds a million rows.
#pragma once

#include <QTableView>

#include <functional>
#include <memory>

namespace pollarix {

class Grid : public QTableView {
    Q_OBJECT
  public:
    // Alignments: 1 left centred, 3 centred top, 4 centred, 7 right centred.
    explicit Grid(QWidget* parent = nullptr);
    ~Grid() override;

    // Row 0 is always the head. FixedCols columns (0 or 1) at the left are heads as well.
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

    QString TextMatrix(int row, int col) const;
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

    int ColWidth(int col) const; // twips
    void SetColWidth(int col, int twips);

    // Off while the grid is filled, on again when it stands.
    void SetRedraw(bool on);

    // Texts of cells that were never set: asked when a cell is shown or read, and remembered for
    // the rows last asked. An empty provider gives "". Setting it forgets what was remembered.
    using CellProvider = std::function<QString(int row, int col)>;
    void SetProvider(CellProvider provider);

    // The user clicked a body cell (Row and Col are set before) - or a head, which leaves Row and
    // Col as they were.
    std::function<void()> Click;
    std::function<void()> DblClick;
    // A key, before the grid acts on it: Row and Col are those being left.
    std::function<void(QKeyEvent&)> KeyDown;

  private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace pollarix
