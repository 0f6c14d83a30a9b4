// Cross tables: how many respondents are in each line of one thing and of another, by layer. Only
// the counting and what follows from it at once; tests are in Association.h.
#pragma once

#include <optional>

#include "statistics/Answers.h"
#include "statistics/Sample.h"

namespace pollarix::statistics {

// What stands at the rows or columns of a table: a variable, each category a line, or a check
// question, each response a line. A respondent can be in several lines of the latter.
struct Axis {
    enum class Kind { Variable, Ticks };
    Kind kind = Kind::Variable;
    std::size_t place = 0; // in SurveyVariables::variables or in ::questions
};

// Plain numbers in rows and columns.
class Cells {
  public:
    Cells() = default;
    Cells(std::size_t rows, std::size_t columns)
        : rows_(rows), columns_(columns), values_(rows * columns) {}

    std::size_t Rows() const { return rows_; }
    std::size_t Columns() const { return columns_; }
    double& operator()(std::size_t row, std::size_t column) {
        return values_[row * columns_ + column];
    }
    double operator()(std::size_t row, std::size_t column) const {
        return values_[row * columns_ + column];
    }

  private:
    std::size_t rows_ = 0;
    std::size_t columns_ = 0;
    std::vector<double> values_;
};

struct CrossTable {
    QString layer; // the category of the layer; "" without one
    std::vector<QString> rows;
    std::vector<QString> columns;
    bool rowsAreTicks = false;
    bool columnsAreTicks = false;
    bool opposed = false; // the numbers of one of the two fall from line to line, the other's rise
    bool weighted = false;

    // Of the respondents who answered both, and were in the layer. With weights, sums of them.
    Cells counts;
    Cells squares;                    // sums of squared weights; empty without weights
    std::vector<double> otherSquares; // the same by line of the axis that has no ticks
    std::vector<double> rowTotals;
    std::vector<double> columnTotals;
    double total = 0;
    std::size_t respondents = 0;
    double missing = 0; // of the sample, without an answer to one of them

    // Shares from 0 to 1; 0 where there is nothing to share. The base is respondents, also where a
    // respondent can be in several lines.
    double OfRow(std::size_t row, std::size_t column) const;
    double OfColumn(std::size_t row, std::size_t column) const;
    double OfAll(std::size_t row, std::size_t column) const;
    // As many as there would be if the two had nothing to do with each other.
    double Expected(std::size_t row, std::size_t column) const;
    // How far the cell is from that, in standard errors (Haberman 1973); beyond 1.96 in either
    // direction is rare by chance. With weights it is taken at the true number of respondents. Not
    // a number where a row or column holds nobody or everybody.
    double AdjustedResidual(std::size_t row, std::size_t column) const;
};

// One table without a layer; with one, a table for each of its categories in order. Throws
// InvalidArgument for more than a million cells, and for ticks of a question without them.
std::vector<CrossTable> CountCrossTables(const Answers& answers, const Axis& rows,
                                         const Axis& columns,
                                         const std::optional<std::size_t>& layer,
                                         const Sample& sample);

} // namespace pollarix::statistics
