// What the cells of a grid hold, without any widget: texts, alignments and the numbers of rows and
// columns. Cells cost memory in pages of 64, from when one of a page is first set. Positions are
// not checked here; that is the grid's.
#pragma once

#include <QString>

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

namespace pollarix {

class GridCells {
  public:
    int Rows() const { return static_cast<int>(rowData_.size()); }
    int Cols() const { return static_cast<int>(columns_.size()); }
    void SetRows(int count);
    void SetCols(int count);

    QString Text(int row, int col) const; // null if it was never set
    void SetText(int row, int col, const QString& text);
    int Alignment(int row, int col) const; // the cell's own, else the column's
    void SetAlignment(int row, int col, int alignment);
    void SetColAlignment(int col, int alignment) { At(col).alignment = alignment; }

    std::int64_t RowData(int row) const { return rowData_[static_cast<std::size_t>(row)]; }
    void SetRowData(int row, std::int64_t data) { rowData_[static_cast<std::size_t>(row)] = data; }
    std::int64_t ColData(int col) const { return At(col).data; }
    void SetColData(int col, std::int64_t data) { At(col).data = data; }

  private:
    static constexpr int PageSize = 64;
    struct Page {
        std::array<QString, PageSize> texts;
        std::array<std::int8_t, PageSize> alignments{}; // 0 for none of its own
    };
    struct Column {
        std::vector<std::unique_ptr<Page>> pages;
        int alignment = 1;
        std::int64_t data = 0;
    };

    const Column& At(int col) const { return columns_[static_cast<std::size_t>(col)]; }
    Column& At(int col) { return columns_[static_cast<std::size_t>(col)]; }
    const Page* Find(int row, int col) const;
    Page& Make(int row, int col);

    std::vector<std::int64_t> rowData_;
    std::vector<Column> columns_;
};

} // namespace pollarix
