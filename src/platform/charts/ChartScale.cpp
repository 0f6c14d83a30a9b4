#include "platform/charts/ChartScale.h"

#include <algorithm>
#include <cmath>

namespace pollarix {

namespace {

QString Written(double value, int decimals, QLocale locale) {
    locale.setNumberOptions(QLocale::OmitGroupSeparator);
    return locale.toString(value == 0 ? 0.0 : value, 'f', decimals);
}

// The smallest of 1, 2, 5, 10, 20 ... (or 0.5, 0.2 ...) that is at least `least`.
double RoundStep(double least) {
    const double power = std::pow(10, std::floor(std::log10(least)));
    for (double factor : {1.0, 2.0, 5.0})
        // The allowance keeps a step of 0.3000000001 parts from being taken for the next one.
        if (factor * power >= least * (1 - 1e-9))
            return factor * power;
    return 10 * power;
}

} // namespace

ChartScale ChartScale::For(std::span<const double> values, int mostSteps) {
    double low = 0, high = 0;
    bool whole = true;
    for (double value : values) {
        low = std::min(low, value);
        high = std::max(high, value);
        whole = whole && value == std::floor(value);
    }
    if (low == high)
        return {};
    mostSteps = std::max(mostSteps, 1);
    ChartScale scale;
    scale.step = RoundStep((high - low) / mostSteps);
    for (;;) {
        if (whole)
            scale.step = std::max(scale.step, 1.0);
        scale.min = std::floor(low / scale.step + 1e-9) * scale.step;
        scale.max = std::ceil(high / scale.step - 1e-9) * scale.step;
        // Rounding both ends outward may have added a step too many.
        if (std::lround((scale.max - scale.min) / scale.step) <=
            std::max(mostSteps, low < 0 ? 2 : 1))
            return scale;
        scale.step = RoundStep(scale.step * 1.5);
    }
}

std::vector<double> ChartScale::Ticks() const {
    std::vector<double> ticks;
    const long first = std::lround(min / step), last = std::lround(max / step);
    for (long tick = first; tick <= last; ++tick)
        ticks.push_back(double(tick) * step);
    return ticks;
}

QString ChartScale::TickText(double tick, const QLocale& locale) const {
    const int decimals = std::max(0, -int(std::floor(std::log10(step) + 1e-9)));
    return Written(tick, decimals, locale);
}

QString ChartValueText(double value, const QLocale& locale) {
    for (int decimals : {0, 1})
        if (const double shift = decimals ? 10 : 1;
            std::abs(value * shift - std::round(value * shift)) <
            1e-9 * std::max(1.0, std::abs(value)))
            return Written(value, decimals, locale);
    return Written(value, 2, locale);
}

} // namespace pollarix
