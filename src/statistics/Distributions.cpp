#include "statistics/Distributions.h"

#include <boost/math/distributions/chi_squared.hpp>
#include <boost/math/distributions/fisher_f.hpp>
#include <boost/math/distributions/normal.hpp>
#include <boost/math/distributions/students_t.hpp>

#include <cmath>
#include <limits>

namespace pollarix::statistics {

namespace math = boost::math;

namespace {

// What a test divides by nothing, such as a group without spread, has no tail.
constexpr double Unknown = std::numeric_limits<double>::quiet_NaN();

} // namespace

double ChiSquareTail(double x, double df) {
    if (!std::isfinite(x) || !(df > 0))
        return Unknown;
    return math::cdf(math::complement(math::chi_squared(df), std::max(x, 0.0)));
}

double FTail(double x, double df1, double df2) {
    if (!std::isfinite(x) || !(df1 > 0) || !(df2 > 0))
        return Unknown;
    return math::cdf(math::complement(math::fisher_f(df1, df2), std::max(x, 0.0)));
}

double StudentTails(double t, double df) {
    if (!std::isfinite(t) || !(df > 0))
        return Unknown;
    return 2 * math::cdf(math::complement(math::students_t(df), std::abs(t)));
}

double NormalTails(double z) {
    if (!std::isfinite(z))
        return Unknown;
    return 2 * math::cdf(math::complement(math::normal(), std::abs(z)));
}

double StudentQuantile(double probability, double df) {
    return df > 0 ? math::quantile(math::students_t(df), probability) : Unknown;
}

double NormalQuantile(double probability) {
    return math::quantile(math::normal(), probability);
}

} // namespace pollarix::statistics
