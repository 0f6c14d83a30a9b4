#include "statistics/Description.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "statistics/Distributions.h"

namespace pollarix::statistics {

namespace {

constexpr double Unknown = std::numeric_limits<double>::quiet_NaN();

// The answer at a place from 1 to n.
double ValueAt(const Tally& tally, double place) {
    double count = 0;
    for (const TallyPoint& point : tally) {
        count += point.count;
        if (count >= place)
            return point.value;
    }
    return tally.back().value;
}

double Quantile(const Tally& tally, double n, double p) {
    const double place = std::clamp(p * (n + 1), 1.0, n);
    const double below = std::floor(place);
    const double value = ValueAt(tally, below);
    return value + (place - below) * (ValueAt(tally, std::min(below + 1, n)) - value);
}

double WeightedQuantile(const Tally& tally, double weight, double p) {
    double sum = 0;
    for (std::size_t i = 0; i + 1 < tally.size(); ++i) {
        sum += tally[i].weight;
        // Sums of weights are not exact.
        if (std::abs(sum - p * weight) <= 1e-12 * weight)
            return (tally[i].value + tally[i + 1].value) / 2;
        if (sum > p * weight)
            return tally[i].value;
    }
    return tally.back().value;
}

} // namespace

Description Describe(const Tally& tally, bool weighted) {
    Description result;
    if (tally.empty()) {
        result.mean = result.standardDeviation = result.standardError = Unknown;
        result.low = result.high = result.smallest = result.largest = Unknown;
        result.lowerQuartile = result.median = result.upperQuartile = Unknown;
        return result;
    }
    const double n = CountOf(tally);
    result.n = static_cast<std::size_t>(n);
    result.mean = MeanOf(tally);
    double errorSquares = 0;
    for (const TallyPoint& point : tally) {
        result.weight += point.weight;
        errorSquares += point.squares * (point.value - result.mean) * (point.value - result.mean);
    }
    const double correction = n > 1 ? n / (n - 1) : Unknown;
    result.standardDeviation =
        std::sqrt(correction * SquaresAround(tally, result.mean) / result.weight);
    result.standardError = std::sqrt(correction * errorSquares) / result.weight;
    const double reach = StudentQuantile(0.975, n - 1) * result.standardError;
    result.low = result.mean - reach;
    result.high = result.mean + reach;
    const auto quantile = [&](double p) {
        return weighted ? WeightedQuantile(tally, result.weight, p) : Quantile(tally, n, p);
    };
    result.lowerQuartile = quantile(0.25);
    result.median = quantile(0.5);
    result.upperQuartile = quantile(0.75);
    result.smallest = tally.front().value;
    result.largest = tally.back().value;
    return result;
}

Description Describe(const Answers& answers, std::size_t variable, const Sample& sample) {
    return Describe(TallyGroups(answers, variable, std::nullopt, sample).front(),
                    sample.IsWeighted());
}

} // namespace pollarix::statistics
