#include "statistics/Comparison.h"

#include <algorithm>
#include <cmath>

#include "statistics/Distributions.h"

namespace pollarix::statistics {

namespace {

WelchTest Welch(const Description& a, const Description& b) {
    WelchTest test;
    const double va = a.standardError * a.standardError;
    const double vb = b.standardError * b.standardError;
    const double error = std::sqrt(va + vb);
    test.difference = a.mean - b.mean;
    test.t = test.difference / error;
    test.df = (va + vb) * (va + vb) /
              (va * va / static_cast<double>(a.n - 1) + vb * vb / static_cast<double>(b.n - 1));
    test.p = StudentTails(test.t, test.df);
    const double reach = StudentQuantile(0.975, test.df) * error;
    test.low = test.difference - reach;
    test.high = test.difference + reach;
    return test;
}

VarianceAnalysis AnalyseVariance(const std::vector<Tally>& groups, double n, double mean) {
    VarianceAnalysis result;
    for (const Tally& group : groups) {
        const double own = MeanOf(group);
        result.betweenSquares += CountOf(group) * (own - mean) * (own - mean);
        result.withinSquares += SquaresAround(group, own);
    }
    result.df1 = static_cast<double>(groups.size()) - 1;
    result.df2 = n - static_cast<double>(groups.size());
    result.f = (result.betweenSquares / result.df1) / (result.withinSquares / result.df2);
    result.p = FTail(result.f, result.df1, result.df2);
    result.etaSquared = result.betweenSquares / (result.betweenSquares + result.withinSquares);
    return result;
}

// The rank of each value, and what ties take from the spread of ranks.
struct Ranks {
    explicit Ranks(const Tally& all) : values(all) {
        double before = 0;
        for (const TallyPoint& point : all) {
            ranks.push_back(before + (point.count + 1) / 2);
            ties += point.count * point.count * point.count - point.count;
            before += point.count;
        }
    }
    double SumOf(const Tally& group) const {
        double sum = 0;
        std::size_t place = 0;
        for (const TallyPoint& point : group) {
            while (values[place].value != point.value)
                ++place;
            sum += point.count * ranks[place];
        }
        return sum;
    }

    const Tally& values;
    std::vector<double> ranks;
    double ties = 0;
};

MannWhitneyTest MannWhitney(const Ranks& ranks, const std::vector<Tally>& groups, double n) {
    MannWhitneyTest test;
    const double first = CountOf(groups[0]);
    const double second = n - first;
    test.u = ranks.SumOf(groups[0]) - first * (first + 1) / 2;
    const double spread = first * second / 12 * (n + 1 - ranks.ties / (n * (n - 1)));
    test.z = (test.u - first * second / 2) / std::sqrt(spread);
    test.p = NormalTails(test.z);
    return test;
}

KruskalWallisTest KruskalWallis(const Ranks& ranks, const std::vector<Tally>& groups, double n) {
    KruskalWallisTest test;
    double sum = 0;
    for (const Tally& group : groups) {
        const double count = CountOf(group);
        const double away = ranks.SumOf(group) / count - (n + 1) / 2;
        sum += count * away * away;
    }
    test.h = 12 * sum / (n * (n + 1)) / (1 - ranks.ties / (n * n * n - n));
    test.df = static_cast<double>(groups.size()) - 1;
    test.p = ChiSquareTail(test.h, test.df);
    return test;
}

} // namespace

Comparison Compare(const Answers& answers, std::size_t variable, std::size_t group,
                   const Sample& sample) {
    std::vector<Tally> tallies = TallyGroups(answers, variable, group, sample);
    Comparison result;
    const Tally all = Merged(tallies);
    const bool weighted = sample.IsWeighted();
    result.all = Describe(all, weighted);
    for (std::size_t i = 0; i < tallies.size(); ++i)
        if (!tallies[i].empty())
            result.groups.push_back(
                {answers.At(group).categories[i], Describe(tallies[i], weighted)});
    if (weighted || result.groups.size() < 2)
        return result;
    std::erase_if(tallies, [](const Tally& tally) { return tally.empty(); });
    const auto n = static_cast<double>(result.all.n);
    const Ranks ranks(all);
    if (result.all.n > tallies.size())
        result.variance = AnalyseVariance(tallies, n, result.all.mean);
    result.kruskalWallis = KruskalWallis(ranks, tallies, n);
    if (tallies.size() == 2) {
        result.mannWhitney = MannWhitney(ranks, tallies, n);
        if (std::min(result.groups[0].numbers.n, result.groups[1].numbers.n) > 1)
            result.welch = Welch(result.groups[0].numbers, result.groups[1].numbers);
    }
    return result;
}

} // namespace pollarix::statistics
