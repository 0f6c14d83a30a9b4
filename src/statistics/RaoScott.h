// The correction of a weighted table's chi-square. For Association.cpp alone.
#pragma once

#include "statistics/Association.h"

namespace pollarix::statistics {

// The counts have no empty row or column and at least two of each; `pearson` is their chi-square at
// the true number of respondents.
RaoScottTest CorrectForWeights(const Cells& counts, const Cells& squares, double pearson,
                               std::size_t respondents);

} // namespace pollarix::statistics
