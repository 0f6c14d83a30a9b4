// Whether rows and columns of a cross table have something to do with each other, and how much.
#pragma once

#include <optional>

#include "statistics/CrossTable.h"

namespace pollarix::statistics {

// A measure for ordinal variables with the test that it is 0: its ratio to the standard error that
// it has when there is no relation, and the tail of the normal distribution (Brown and Benedetti
// 1977). Without ratio and p for weighted tables.
struct OrdinalMeasure {
    double value = 0;
    std::optional<double> ratio;
    std::optional<double> p;
};

// Pearson's chi-square of a weighted table, corrected for what the weights do to its spread, as an
// F (Rao and Scott 1984, second order, with Satterthwaite's degrees of freedom). The respondents
// count as drawn one by one, each with a weight that was fixed beforehand.
struct RaoScottTest {
    double f = 0;
    double df1 = 0;
    double df2 = 0;
    double p = 0;
};

// Lines without respondents are left out. What can't be computed is not a number: all tests of a
// table that has fewer than two rows or columns.
struct Association {
    double chiSquare = 0; // Pearson, without correction for continuity; see `raoScott`
    double likelihoodRatio = 0;
    double df = 0;
    // Of weighted tables the two are taken at the true number of respondents, and have no p.
    std::optional<double> chiSquareP;
    std::optional<double> likelihoodRatioP;
    // Of tables of two by two: the sum of the probabilities of all tables with the same totals that
    // are not likelier than this one (with a relative allowance of 1e-7 for what is equally
    // likely).
    std::optional<double> fisherP;
    std::optional<RaoScottTest> raoScott; // of weighted tables of up to 400 degrees of freedom
    double cramersV = 0;                  // without correction for bias
    // Of ordinal variables.
    std::optional<OrdinalMeasure> gamma; // Goodman and Kruskal
    std::optional<OrdinalMeasure> tauB;  // Kendall, corrected for ties

    double smallestExpected = 0;
    double shareOfSmall = 0; // of the cells with fewer than 5 expected
    // Cochran's rule: the chi-square is not to be trusted when a fifth of the cells expects fewer
    // than 5, or one fewer than 1.
    bool tooFewExpected = false;
};

// For a table of two variables. `ordinal` says that both are at least that.
Association Associate(const CrossTable& table, bool ordinal);

// For a table with the ticks of a check question at rows or columns: for each of its lines the
// table of "in this line" and "not" by the other axis. Throws InvalidArgument for a table without
// ticks, and for one with ticks at both sides, where each cell's adjusted residual is the test.
std::vector<Association> AssociateLines(const CrossTable& table);

} // namespace pollarix::statistics
