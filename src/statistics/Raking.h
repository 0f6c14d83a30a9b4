// Weights that give a sample the shares that are known of the whole: raking, that is iterative
// proportional fitting (Deming and Stephan 1940).
#pragma once

#include <optional>

#include "statistics/Answers.h"

namespace pollarix::statistics {

struct RakingTarget {
    std::size_t variable = 0;
    std::vector<double> shares; // by code; only their proportions count
};

struct RakingLimits {
    int rounds = 1000;
    double difference = 1e-9; // of a share, from 0 to 1, with which it may end
    // Bounds of a weight, the mean being 1. Weights beyond are set to the bound after each round,
    // so the next round can make up for it as far as bounds allow.
    std::optional<double> lowest;
    std::optional<double> highest;
};

struct RakedWeights {
    std::vector<double> weights;  // by respondent; 0 for who was not chosen, else 1 on average
    int rounds = 0;               // that were needed, or the limit
    double largestDifference = 0; // of a share from what it should be
    bool reached = false;         // it is within the limit
    double smallest = 0;
    double largest = 0;
    std::size_t atBounds = 0; // respondents
    double designEffect = 0;  // n * sum of squares / (sum of weights)², after Kish (1965)
    double effectiveSize = 0; // n / designEffect
};

// `chosen` is a filter's, empty for all. Those who have not answered a question with a target keep,
// together, their part of the sample, and count in no share of that question. Throws
// InvalidArgument, naming question and category, when shares are missing, negative or all 0, and
// when a category is to have a share but nobody is in it.
RakedWeights Rake(const Answers& answers, const std::vector<RakingTarget>& targets,
                  const std::vector<std::uint8_t>& chosen, const RakingLimits& limits = {});

} // namespace pollarix::statistics
