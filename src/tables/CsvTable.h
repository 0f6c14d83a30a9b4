// A table of text: one line a row, its cells between separators and, where they need it, quotes.
#pragma once

#include "tables/Table.h"

namespace pollarix::tables {

class CsvTable : public Table {
  public:
    // Reads the head. Throws InvalidArgument, naming file and row, for what is no text or has no
    // end of a cell.
    CsvTable(const QString& path, const std::optional<TableShape>& shape);

    const std::vector<TableColumn>& Columns() const override { return columns_; }
    void Read(const RowSink& sink) override;
    const TableShape& Shape() const override { return shape_; }

  private:
    void ReadAll(const RowSink& sink);

    QString path_;
    TableShape shape_;
    std::vector<TableColumn> columns_;
};

} // namespace pollarix::tables
