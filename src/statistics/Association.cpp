#include "statistics/Association.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "platform/base/Failure.h"
#include "statistics/Distributions.h"
#include "statistics/RaoScott.h"

namespace pollarix::statistics {

namespace {

constexpr std::size_t MostRaoScott = 400; // degrees of freedom; the matrices grow with their square

struct Totals {
    explicit Totals(const Cells& counts) : rows(counts.Rows()), columns(counts.Columns()) {
        for (std::size_t r = 0; r < rows.size(); ++r)
            for (std::size_t c = 0; c < columns.size(); ++c) {
                rows[r] += counts(r, c);
                columns[c] += counts(r, c);
                all += counts(r, c);
            }
    }
    std::vector<double> rows;
    std::vector<double> columns;
    double all = 0;
};

std::vector<std::size_t> Occupied(const std::vector<double>& totals) {
    std::vector<std::size_t> places;
    for (std::size_t i = 0; i < totals.size(); ++i)
        if (totals[i] > 0)
            places.push_back(i);
    return places;
}

Cells Part(const Cells& cells, const std::vector<std::size_t>& rows,
           const std::vector<std::size_t>& columns) {
    Cells part(rows.size(), columns.size());
    for (std::size_t r = 0; r < rows.size(); ++r)
        for (std::size_t c = 0; c < columns.size(); ++c)
            part(r, c) = cells(rows[r], columns[c]);
    return part;
}

// All tables of two by two with the same totals, from the smallest upper left cell. Each has a
// fixed ratio to the one before, so one is enough to know all; they add up to 1.
double FisherP(const Cells& counts) {
    const Totals totals(counts);
    const double row = totals.rows[0];
    const double column = totals.columns[0];
    const double lowest = std::max(0.0, row + column - totals.all);
    const double highest = std::min(row, column);
    std::vector<double> logs = {0};
    for (double k = lowest; k < highest; ++k)
        logs.push_back(logs.back() + std::log((row - k) * (column - k)) -
                       std::log((k + 1) * (totals.all - row - column + k + 1)));
    const double top = *std::max_element(logs.begin(), logs.end());
    const double here = std::exp(logs[static_cast<std::size_t>(counts(0, 0) - lowest)] - top);
    double all = 0;
    double notLikelier = 0;
    for (const double log : logs) {
        const double probability = std::exp(log - top);
        all += probability;
        if (probability <= here * (1 + 1e-7))
            notLikelier += probability;
    }
    return std::min(notLikelier / all, 1.0);
}

// For each cell, the sum of the cells that lie before it in rows and columns, itself and its own
// row and column left out.
class Corner {
  public:
    explicit Corner(const Cells& counts) : sums_(counts.Rows() + 1, counts.Columns() + 1) {
        for (std::size_t r = 0; r < counts.Rows(); ++r)
            for (std::size_t c = 0; c < counts.Columns(); ++c)
                sums_(r + 1, c + 1) =
                    counts(r, c) + sums_(r, c + 1) + sums_(r + 1, c) - sums_(r, c);
    }
    double Block(std::size_t top, std::size_t left, std::size_t bottom, std::size_t right) const {
        return sums_(bottom, right) - sums_(top, right) - sums_(bottom, left) + sums_(top, left);
    }

  private:
    Cells sums_;
};

void MeasureOrder(Association& result, const Cells& counts, const Totals& totals, bool opposed,
                  bool weighted) {
    const Corner corner(counts);
    const std::size_t height = counts.Rows();
    const std::size_t width = counts.Columns();
    double concordant = 0; // twice the number of pairs
    double discordant = 0;
    double squares = 0;
    for (std::size_t r = 0; r < height; ++r)
        for (std::size_t c = 0; c < width; ++c) {
            const double with =
                corner.Block(0, 0, r, c) + corner.Block(r + 1, c + 1, height, width);
            const double against =
                corner.Block(0, c + 1, r, width) + corner.Block(r + 1, 0, height, c);
            concordant += counts(r, c) * with;
            discordant += counts(r, c) * against;
            squares += counts(r, c) * (with - against) * (with - against);
        }
    const double n = totals.all;
    const double difference = (concordant - discordant) * (opposed ? -1 : 1);
    const auto untied = [n](const std::vector<double>& sums) {
        return n * n - std::inner_product(sums.begin(), sums.end(), sums.begin(), 0.0);
    };
    const double pairs = std::sqrt(untied(totals.rows) * untied(totals.columns));
    OrdinalMeasure gamma{difference / (concordant + discordant), {}, {}};
    OrdinalMeasure tau{difference / pairs, {}, {}};
    if (!weighted) {
        // Both are the same difference over something, so their ratios are the same as well.
        const double error = 2 * std::sqrt(squares - difference * difference / n);
        gamma.ratio = tau.ratio = difference / error;
        gamma.p = tau.p = NormalTails(difference / error);
    }
    result.gamma = gamma;
    result.tauB = tau;
}

Association AssociateCells(const Cells& all, const Cells& allSquares, std::size_t respondents,
                           bool ordinal, bool opposed, bool weighted) {
    const Totals everything(all);
    const auto rows = Occupied(everything.rows);
    const auto columns = Occupied(everything.columns);
    Association result;
    if (rows.size() < 2 || columns.size() < 2) {
        result.chiSquare = result.likelihoodRatio = result.cramersV = std::nan("");
        return result;
    }
    const Cells counts = Part(all, rows, columns);
    const Totals totals(counts);
    const double n = weighted ? static_cast<double>(respondents) : totals.all;
    const double scale = n / totals.all;
    double small = 0;
    result.smallestExpected = n;
    for (std::size_t r = 0; r < rows.size(); ++r)
        for (std::size_t c = 0; c < columns.size(); ++c) {
            const double expected = totals.rows[r] * totals.columns[c] / totals.all * scale;
            const double count = counts(r, c) * scale;
            result.chiSquare += (count - expected) * (count - expected) / expected;
            if (count > 0)
                result.likelihoodRatio += 2 * count * std::log(count / expected);
            result.smallestExpected = std::min(result.smallestExpected, expected);
            small += expected < 5;
        }
    const auto cells = static_cast<double>(rows.size() * columns.size());
    result.shareOfSmall = small / cells;
    result.tooFewExpected = result.shareOfSmall > 0.2 || result.smallestExpected < 1;
    result.df = static_cast<double>((rows.size() - 1) * (columns.size() - 1));
    result.cramersV = std::sqrt(
        result.chiSquare / (n * static_cast<double>(std::min(rows.size(), columns.size()) - 1)));
    if (weighted) {
        if (result.df <= MostRaoScott && respondents > 1)
            result.raoScott = CorrectForWeights(counts, Part(allSquares, rows, columns),
                                                result.chiSquare, respondents);
    } else {
        result.chiSquareP = ChiSquareTail(result.chiSquare, result.df);
        result.likelihoodRatioP = ChiSquareTail(result.likelihoodRatio, result.df);
        if (rows.size() == 2 && columns.size() == 2)
            result.fisherP = FisherP(counts);
    }
    if (ordinal)
        MeasureOrder(result, counts, totals, opposed, weighted);
    return result;
}

} // namespace

Association Associate(const CrossTable& table, bool ordinal) {
    if (table.rowsAreTicks || table.columnsAreTicks)
        throw Failure(failure::InvalidArgument, "Ticks are tested line by line.");
    return AssociateCells(table.counts, table.squares, table.respondents, ordinal, table.opposed,
                          table.weighted);
}

std::vector<Association> AssociateLines(const CrossTable& table) {
    if (table.rowsAreTicks == table.columnsAreTicks)
        throw Failure(failure::InvalidArgument,
                      "Lines are tested where either rows or columns are ticks.");
    const std::size_t lines = table.rowsAreTicks ? table.rows.size() : table.columns.size();
    const std::vector<double>& others = table.rowsAreTicks ? table.columnTotals : table.rowTotals;
    const auto cell = [&](const Cells& cells, std::size_t line, std::size_t other) {
        return table.rowsAreTicks ? cells(line, other) : cells(other, line);
    };
    std::vector<Association> result;
    for (std::size_t line = 0; line < lines; ++line) {
        Cells counts(2, others.size());
        Cells squares = counts;
        for (std::size_t i = 0; i < others.size(); ++i) {
            counts(0, i) = cell(table.counts, line, i);
            // What is left of a sum of weights by rounding is nobody.
            const double rest = others[i] - counts(0, i);
            counts(1, i) = rest > 1e-9 * others[i] ? rest : 0;
            if (table.weighted) {
                squares(0, i) = cell(table.squares, line, i);
                squares(1, i) = table.otherSquares[i] - squares(0, i);
            }
        }
        result.push_back(
            AssociateCells(counts, squares, table.respondents, false, false, table.weighted));
    }
    return result;
}

} // namespace pollarix::statistics
