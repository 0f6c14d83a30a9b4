// A sheet of an .xlsx workbook as a table. Formulas are not worked out: what counts is the value
// that the file holds beside them.
#pragma once

#include <memory>

#include "tables/Table.h"
#include "tables/ZipFile.h"

namespace pollarix::tables {

class XlsxTable : public Table {
  public:
    // Reads the sheets' names, the shared texts, which stay in memory, and the head of the sheet:
    // its first row that has a text. Throws InvalidArgument, with the path.
    XlsxTable(const QString& path, const std::optional<TableShape>& shape);
    ~XlsxTable() override;

    const std::vector<TableColumn>& Columns() const override { return columns_; }
    void Read(const RowSink& sink) override;
    const TableShape& Shape() const override { return shape_; }

    struct Book; // what all sheets share

  private:
    void ReadAll(const RowSink& sink);

    ZipFile file_;
    std::unique_ptr<Book> book_;
    TableShape shape_;
    std::vector<TableColumn> columns_;
};

} // namespace pollarix::tables
