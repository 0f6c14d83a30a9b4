#include "statistics/Frequencies.h"

#include <cmath>

#include "document/clsQ.h"
#include "platform/base/Failure.h"
#include "statistics/Distributions.h"

namespace pollarix::statistics {

namespace {

double Share(double part, double whole) {
    return whole > 0 ? part / whole : 0;
}

// Sums up who did not answer; true for an answer.
bool CountAnswered(Frequencies& table, Code code, double weight) {
    table.all += weight;
    if (code == NotAsked)
        table.notAsked += weight;
    else if (code == LeftEmpty)
        table.leftEmpty += weight;
    else if (code == NoNumber)
        table.noNumber += weight;
    else {
        table.valid += weight;
        ++table.validRespondents;
        return true;
    }
    return false;
}

void Complete(Frequencies& table, double squares) {
    const double effective = squares > 0 ? table.valid * table.valid / squares : 0;
    double answers = 0;
    for (const FrequencyLine& line : table.lines)
        answers += line.count;
    double sum = 0;
    for (FrequencyLine& line : table.lines) {
        sum += line.count;
        line.shareOfAll = Share(line.count, table.all);
        line.shareOfValid = Share(line.count, table.valid);
        line.cumulative = Share(sum, table.valid);
        line.shareOfAnswers = Share(line.count, answers);
        line.interval = WilsonInterval(line.shareOfValid, effective);
    }
}

} // namespace

ShareInterval WilsonInterval(double share, double n) {
    if (!(n > 0))
        return {};
    const double z = NormalQuantile(0.975);
    const double middle = share + z * z / (2 * n);
    const double reach = z * std::sqrt(share * (1 - share) / n + z * z / (4 * n * n));
    const double scale = 1 + z * z / n;
    return {std::max((middle - reach) / scale, 0.0), std::min((middle + reach) / scale, 1.0)};
}

Frequencies CountFrequencies(const Answers& answers, std::size_t variable, const Sample& sample) {
    const Variable& counted = answers.At(variable);
    const Column& codes = answers.Codes(variable);
    Frequencies table;
    table.weighted = sample.IsWeighted();
    for (std::size_t code = 0; code < counted.categories.size(); ++code) {
        table.lines.emplace_back();
        table.lines.back().label = counted.categories[code];
        table.lines.back().value = counted.values[code];
    }
    double squares = 0;
    for (std::size_t row = 0; row < answers.Respondents(); ++row) {
        if (!sample.Has(row))
            continue;
        const double weight = sample.WeightOf(row);
        if (CountAnswered(table, codes[row], weight)) {
            table.lines[codes[row]].count += weight;
            squares += weight * weight;
        }
    }
    Complete(table, squares);
    return table;
}

Frequencies CountTicks(const Answers& answers, std::size_t question, const Sample& sample) {
    const SurveyQuestion& asked = answers.Survey().questions.at(question);
    if (asked.qtype != kind::Check)
        throw Failure(failure::InvalidArgument, "Only a question with many answers has ticks.");
    Frequencies table;
    table.weighted = sample.IsWeighted();
    for (std::size_t i = 0; i < asked.variableCount; ++i) {
        table.lines.emplace_back();
        table.lines.back().label = answers.At(asked.firstVariable + i).item;
        table.lines.back().value = static_cast<double>(i + 1);
    }
    double squares = 0;
    for (std::size_t row = 0; row < answers.Respondents(); ++row) {
        if (!sample.Has(row))
            continue;
        const double weight = sample.WeightOf(row);
        const Code first =
            table.lines.empty() ? LeftEmpty : answers.Codes(asked.firstVariable)[row];
        if (!CountAnswered(table, first, weight))
            continue;
        squares += weight * weight;
        for (std::size_t i = 0; i < table.lines.size(); ++i)
            if (answers.Codes(asked.firstVariable + i)[row] == 1)
                table.lines[i].count += weight;
    }
    Complete(table, squares);
    return table;
}

} // namespace pollarix::statistics
