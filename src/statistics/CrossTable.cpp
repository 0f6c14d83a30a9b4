#include "statistics/CrossTable.h"

#include <cmath>

#include "document/clsQ.h"
#include "platform/base/Failure.h"

namespace pollarix::statistics {

namespace {

constexpr std::size_t MostCells = 1'000'000;

// Gives the lines that a respondent is in.
class Lines {
  public:
    Lines(const Answers& answers, const Axis& axis) {
        if (axis.kind == Axis::Kind::Variable) {
            labels_ = answers.At(axis.place).categories;
            columns_ = {&answers.Codes(axis.place)};
            const std::vector<double>& values = answers.At(axis.place).values;
            fall_ = !values.empty() && values.front() > values.back();
            return;
        }
        const SurveyQuestion& question = answers.Survey().questions.at(axis.place);
        if (question.qtype != kind::Check)
            throw Failure(failure::InvalidArgument, "Only a question with many answers has ticks.");
        areTicks_ = true;
        for (std::size_t i = 0; i < question.variableCount; ++i) {
            labels_.push_back(answers.At(question.firstVariable + i).item);
            columns_.push_back(&answers.Codes(question.firstVariable + i));
        }
    }

    const std::vector<QString>& Labels() const { return labels_; }
    bool AreTicks() const { return areTicks_; }
    bool Fall() const { return fall_; }
    bool Answered(std::size_t row) const {
        return !columns_.empty() && IsAnswer((*columns_.front())[row]);
    }
    // To be asked for respondents who answered.
    void Of(std::size_t row, std::vector<std::size_t>& lines) const {
        lines.clear();
        if (!areTicks_) {
            lines.push_back((*columns_.front())[row]);
            return;
        }
        for (std::size_t i = 0; i < columns_.size(); ++i)
            if ((*columns_[i])[row] == 1)
                lines.push_back(i);
    }

  private:
    std::vector<QString> labels_;
    std::vector<const Column*> columns_;
    bool areTicks_ = false;
    bool fall_ = false;
};

double Share(double part, double whole) {
    return whole > 0 ? part / whole : 0;
}

} // namespace

double CrossTable::OfRow(std::size_t row, std::size_t column) const {
    return Share(counts(row, column), rowTotals[row]);
}

double CrossTable::OfColumn(std::size_t row, std::size_t column) const {
    return Share(counts(row, column), columnTotals[column]);
}

double CrossTable::OfAll(std::size_t row, std::size_t column) const {
    return Share(counts(row, column), total);
}

double CrossTable::Expected(std::size_t row, std::size_t column) const {
    return Share(rowTotals[row] * columnTotals[column], total);
}

double CrossTable::AdjustedResidual(std::size_t row, std::size_t column) const {
    const double scale = Share(static_cast<double>(respondents), total);
    const double expected = Expected(row, column) * scale;
    return (counts(row, column) * scale - expected) /
           std::sqrt(expected * (1 - Share(rowTotals[row], total)) *
                     (1 - Share(columnTotals[column], total)));
}

std::vector<CrossTable> CountCrossTables(const Answers& answers, const Axis& rows,
                                         const Axis& columns,
                                         const std::optional<std::size_t>& layer,
                                         const Sample& sample) {
    const Lines down(answers, rows);
    const Lines across(answers, columns);
    const std::size_t layers = layer ? answers.At(*layer).categories.size() : 1;
    // Divided, not multiplied: the product of three counts may not fit.
    const std::size_t height = std::max<std::size_t>(down.Labels().size(), 1);
    const std::size_t width = std::max<std::size_t>(across.Labels().size(), 1);
    if (layers > 0 && MostCells / height / width / layers == 0)
        throw Failure(failure::InvalidArgument,
                      "The table would have more than a million cells. Please choose variables "
                      "with fewer different answers.");
    std::vector<CrossTable> tables(layers);
    for (std::size_t i = 0; i < layers; ++i) {
        CrossTable& table = tables[i];
        if (layer)
            table.layer = answers.At(*layer).categories[i];
        table.rows = down.Labels();
        table.columns = across.Labels();
        table.rowsAreTicks = down.AreTicks();
        table.columnsAreTicks = across.AreTicks();
        table.opposed = down.Fall() != across.Fall();
        table.weighted = sample.IsWeighted();
        table.counts = Cells(table.rows.size(), table.columns.size());
        if (table.weighted) {
            table.squares = table.counts;
            table.otherSquares.resize(table.rowsAreTicks ? table.columns.size()
                                                         : table.rows.size());
        }
        table.rowTotals.resize(table.rows.size());
        table.columnTotals.resize(table.columns.size());
    }

    std::vector<std::size_t> rowLines;
    std::vector<std::size_t> columnLines;
    for (std::size_t row = 0; row < answers.Respondents(); ++row) {
        if (!sample.Has(row))
            continue;
        const Code inLayer = layer ? answers.Codes(*layer)[row] : 0;
        if (!IsAnswer(inLayer))
            continue;
        CrossTable& table = tables[inLayer];
        const double weight = sample.WeightOf(row);
        if (!down.Answered(row) || !across.Answered(row)) {
            table.missing += weight;
            continue;
        }
        ++table.respondents;
        table.total += weight;
        down.Of(row, rowLines);
        across.Of(row, columnLines);
        for (const std::size_t c : columnLines)
            table.columnTotals[c] += weight;
        if (table.weighted)
            for (const std::size_t line : table.rowsAreTicks ? columnLines : rowLines)
                table.otherSquares[line] += weight * weight;
        for (const std::size_t r : rowLines) {
            table.rowTotals[r] += weight;
            for (const std::size_t c : columnLines) {
                table.counts(r, c) += weight;
                if (table.weighted)
                    table.squares(r, c) += weight * weight;
            }
        }
    }
    return tables;
}

} // namespace pollarix::statistics
