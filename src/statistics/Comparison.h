// The numbers of one variable by the groups that another makes, and whether the groups differ.
#pragma once

#include <optional>

#include "statistics/Description.h"

namespace pollarix::statistics {

struct GroupDescription {
    QString label;
    Description numbers;
};

struct WelchTest { // of the first group's mean less the second's; spreads may differ
    double t = 0;
    double df = 0; // after Satterthwaite
    double p = 0;  // of both ends
    double difference = 0;
    double low = 0; // its interval at 95 percent
    double high = 0;
};

struct VarianceAnalysis { // one-way, the spreads taken as equal
    double betweenSquares = 0;
    double withinSquares = 0;
    double df1 = 0;
    double df2 = 0;
    double f = 0;
    double p = 0;
    double etaSquared = 0; // share of the spread that the groups explain
};

struct MannWhitneyTest { // equal answers share the mean of their ranks
    double u = 0;        // of the first group: pairs in which its answer is the larger, ties half
    double z = 0;        // normal approximation, corrected for ties and not for continuity
    double p = 0;        // of both ends
};

struct KruskalWallisTest {
    double h = 0; // corrected for ties
    double df = 0;
    double p = 0;
};

struct Comparison {
    std::vector<GroupDescription> groups; // those with answers, in the order of the categories
    Description all;
    // Only without weights. Of two groups of at least two answers.
    std::optional<WelchTest> welch;
    // Of two groups or more, the first with more answers than groups.
    std::optional<VarianceAnalysis> variance;
    std::optional<MannWhitneyTest> mannWhitney; // of two groups
    std::optional<KruskalWallisTest> kruskalWallis;
};

Comparison Compare(const Answers& answers, std::size_t variable, std::size_t group,
                   const Sample& sample);

} // namespace pollarix::statistics
