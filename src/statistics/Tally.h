// The answers to a variable as numbers: each distinct one once, with how often it came. What all
// statistics of numbers are worked out from; for the sources of this room.
#pragma once

#include <optional>

#include "statistics/Answers.h"
#include "statistics/Sample.h"

namespace pollarix::statistics {

struct TallyPoint {
    double value = 0;
    double count = 0;   // respondents
    double weight = 0;  // sum of their weights
    double squares = 0; // and of the squares of these
};

// By rising value, nothing twice, no count 0.
using Tally = std::vector<TallyPoint>;

// One tally for each category of the group, or one in all without. Answers that are no numbers, and
// respondents who have no group, are left out.
std::vector<Tally> TallyGroups(const Answers& answers, std::size_t variable,
                               const std::optional<std::size_t>& group, const Sample& sample);

// All of them in one.
Tally Merged(const std::vector<Tally>& tallies);

double CountOf(const Tally& tally);
double MeanOf(const Tally& tally);                       // weighted; not a number without answers
double SquaresAround(const Tally& tally, double middle); // sum of weighted squared distances

} // namespace pollarix::statistics
