// Who counts in a table, and how much. What a filter and weights come down to.
#pragma once

#include <cstdint>
#include <vector>

namespace pollarix::statistics {

struct Sample {
    std::vector<std::uint8_t> chosen; // by respondent, 0 or 1; empty when everybody counts
    std::vector<double> weights;      // by respondent; empty when everybody counts 1

    bool Has(std::size_t row) const { return chosen.empty() || chosen[row] != 0; }
    double WeightOf(std::size_t row) const { return weights.empty() ? 1 : weights[row]; }
    bool IsWeighted() const { return !weights.empty(); }
};

} // namespace pollarix::statistics
