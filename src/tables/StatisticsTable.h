// A file of SPSS (.sav) or Stata (.dta) as a table. Values with labels come as both; values that
// the file calls missing are empty cells.
#pragma once

#include <QHash>

#include "tables/Table.h"

namespace pollarix::tables {

class StatisticsTable : public Table {
  public:
    enum class Format { Sav, Dta };
    // Reads the variables and labels. Throws InvalidArgument with the path for a damaged file.
    StatisticsTable(const QString& path, Format format);

    const std::vector<TableColumn>& Columns() const override { return columns_; }
    void Read(const RowSink& sink) override;
    const TableShape& Shape() const override { return shape_; }

    struct Run; // one pass through the file

  private:
    void Parse(Run& run) const;

    QString path_;
    Format format_;
    TableShape shape_;
    std::vector<TableColumn> columns_;
    QHash<QString, QHash<double, QString>> labels_; // by set and value
};

} // namespace pollarix::tables
