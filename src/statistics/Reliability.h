// Whether several items measure one thing: Cronbach's alpha, of the sub questions of a matrix say.
#pragma once

#include "statistics/Answers.h"
#include "statistics/Sample.h"

namespace pollarix::statistics {

struct ItemReliability {
    QString label;
    double mean = 0;
    double standardDeviation = 0;
    double totalCorrelation = 0; // with the sum of the other items
    double alphaWithout = 0;     // alpha of the other items; not a number if there is but one
};

struct Reliability {
    // From the covariances as they are (Cronbach 1951), not standardised: k / (k - 1) * (1 - sum of
    // the items' variances / variance of their sum). Not a number without spread, or for an item.
    double alpha = 0;
    std::size_t respondents = 0; // only those count who answered all items
    std::vector<ItemReliability> items;
};

// The items by their numbers; those of a scale that runs the other way are to be reversed before.
// With weights, means and covariances are weighted.
Reliability CronbachsAlpha(const Answers& answers, const std::vector<std::size_t>& items,
                           const Sample& sample);

} // namespace pollarix::statistics
