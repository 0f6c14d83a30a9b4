// What numbers look like together: of scale and ordinal variables, of ticks (the mean is the share)
// and of typed answers that are numbers.
#pragma once

#include "statistics/Tally.h"

namespace pollarix::statistics {

// What too few answers don't tell is not a number.
struct Description {
    std::size_t n = 0; // respondents with a number, whatever their weight
    double weight = 0; // sum of their weights
    double mean = 0;
    // With n - 1. With weights: sum of w(x - mean)² / sum of w, times n / (n - 1).
    double standardDeviation = 0;
    // Of the mean. With weights by linearisation, the weights being taken as fixed beforehand.
    double standardError = 0;
    double low = 0; // the mean's interval at 95 percent, by Student's t with n - 1
    double high = 0;
    // The value at the place p(n + 1) of the answers in order, between two of them in proportion,
    // but never beyond the first and the last. With weights the first value up to which a part p
    // of all weight lies; half-way to the next if it is exactly that part.
    double lowerQuartile = 0;
    double median = 0;
    double upperQuartile = 0;
    double smallest = 0;
    double largest = 0;
};

// `weighted` tells which of the two definitions of quartiles counts.
Description Describe(const Tally& tally, bool weighted);
Description Describe(const Answers& answers, std::size_t variable, const Sample& sample);

} // namespace pollarix::statistics
