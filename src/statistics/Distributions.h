// Tails and quantiles of the distributions that tests and intervals need. All of them are
// Boost.Math's; here they only get the names that statistics use. Degrees of freedom may be
// fractions.
#pragma once

namespace pollarix::statistics {

double ChiSquareTail(double x, double df);             // P(X > x)
double FTail(double x, double df1, double df2);        // P(F > x)
double StudentTails(double t, double df);              // P(|T| > |t|)
double NormalTails(double z);                          // P(|Z| > |z|)
double StudentQuantile(double probability, double df); // both from the lower end
double NormalQuantile(double probability);

} // namespace pollarix::statistics
