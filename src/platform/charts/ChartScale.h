// The value axis: from where to where it runs and where its ticks stand, all round numbers.
#pragma once

#include <QLocale>
#include <QString>

#include <span>
#include <vector>

namespace pollarix {

struct ChartScale {
    double min = 0;
    double max = 1;
    double step = 1;

    // An axis that holds 0 and every value, with at most `mostSteps` steps of 1, 2 or 5 times a
    // power of ten. Whole values get whole steps; only zeros give 0 to 1.
    static ChartScale For(std::span<const double> values, int mostSteps);

    std::vector<double> Ticks() const;
    QString TickText(double tick, const QLocale& locale) const;
};

// A value as a person writes it: whole numbers without decimals, others with at most two, no
// grouping.
QString ChartValueText(double value, const QLocale& locale);

} // namespace pollarix
