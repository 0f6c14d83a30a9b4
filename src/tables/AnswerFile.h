// The file that a questionnaire as a page leaves: one respondent's answers, under the ids of the
// survey. As a table it has one row, or one for each such file in its directory.
#pragma once

#include "tables/Table.h"

namespace pollarix::tables {

class AnswerFile : public Table {
  public:
    // Whether a file that begins like this is one.
    static bool IsOne(QByteArrayView begin);

    // Throws InvalidArgument, with the path, for a damaged file.
    AnswerFile(const QString& path, const std::optional<TableShape>& shape);

    const std::vector<TableColumn>& Columns() const override { return columns_; }
    // The files in the order of their names. One that was saved twice comes once.
    void Read(const RowSink& sink) override;
    const TableShape& Shape() const override { return shape_; }

  private:
    QStringList paths_;
    TableShape shape_;
    std::vector<TableColumn> columns_;
};

} // namespace pollarix::tables
