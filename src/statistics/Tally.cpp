#include "statistics/Tally.h"

#include <algorithm>
#include <limits>

namespace pollarix::statistics {

namespace {

struct Entry {
    std::uint64_t place; // group and code
    double weight;
};

void Append(Tally& tally, double value, double count, double weight, double squares) {
    if (tally.empty() || tally.back().value != value)
        tally.push_back({value, 0, 0, 0});
    tally.back().count += count;
    tally.back().weight += weight;
    tally.back().squares += squares;
}

} // namespace

std::vector<Tally> TallyGroups(const Answers& answers, std::size_t variable,
                               const std::optional<std::size_t>& group, const Sample& sample) {
    const Column& codes = answers.Codes(variable);
    const std::vector<double>& values = answers.At(variable).values;
    std::vector<Tally> tallies(group ? answers.At(*group).categories.size() : 1);
    std::vector<Entry> entries;
    for (std::size_t row = 0; row < answers.Respondents(); ++row) {
        const Code code = codes[row];
        const Code groupCode = group ? answers.Codes(*group)[row] : 0;
        const double weight = sample.WeightOf(row);
        if (sample.Has(row) && IsAnswer(code) && IsAnswer(groupCode) && weight > 0)
            entries.push_back({std::uint64_t{groupCode} << 32U | code, weight});
    }
    std::sort(entries.begin(), entries.end(),
              [](const Entry& a, const Entry& b) { return a.place < b.place; });
    for (const Entry& entry : entries)
        Append(tallies[entry.place >> 32U], values[entry.place & 0xFFFFFFFFU], 1, entry.weight,
               entry.weight * entry.weight);
    // The codes of a scale may be taken from n to 1.
    for (Tally& tally : tallies)
        if (tally.size() > 1 && tally.front().value > tally.back().value)
            std::reverse(tally.begin(), tally.end());
    return tallies;
}

Tally Merged(const std::vector<Tally>& tallies) {
    std::vector<TallyPoint> points;
    for (const Tally& tally : tallies)
        points.insert(points.end(), tally.begin(), tally.end());
    std::sort(points.begin(), points.end(),
              [](const TallyPoint& a, const TallyPoint& b) { return a.value < b.value; });
    Tally merged;
    for (const TallyPoint& point : points)
        Append(merged, point.value, point.count, point.weight, point.squares);
    return merged;
}

double CountOf(const Tally& tally) {
    double count = 0;
    for (const TallyPoint& point : tally)
        count += point.count;
    return count;
}

double MeanOf(const Tally& tally) {
    double sum = 0;
    double weight = 0;
    for (const TallyPoint& point : tally) {
        sum += point.weight * point.value;
        weight += point.weight;
    }
    return weight > 0 ? sum / weight : std::numeric_limits<double>::quiet_NaN();
}

double SquaresAround(const Tally& tally, double middle) {
    double sum = 0;
    for (const TallyPoint& point : tally)
        sum += point.weight * (point.value - middle) * (point.value - middle);
    return sum;
}

} // namespace pollarix::statistics
