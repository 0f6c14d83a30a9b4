#include "platform/charts/ChartColours.h"

#include <array>
#include <cmath>

namespace pollarix {

namespace {

// Neighbours differ clearly in normal sight and in each of the three colour deficiencies; each
// colour stands out from white and from the usual dark backgrounds.
constexpr std::array<QRgb, 8> Row = {0xff2e78c0, 0xffe8962e, 0xff12806a, 0xff7a5bc0,
                                     0xffcf6fa8, 0xffb5482f, 0xff46a9db, 0xffc2a21f};
constexpr int Brick = 5;

} // namespace

QColor Mixed(const QColor& from, const QColor& to, qreal share) {
    const auto mix = [share](qreal a, qreal b) { return a + (b - a) * share; };
    return QColor::fromRgbF(float(mix(from.redF(), to.redF())),
                            float(mix(from.greenF(), to.greenF())),
                            float(mix(from.blueF(), to.blueF())));
}

qreal Luminance(const QColor& colour) {
    const auto linear = [](qreal part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

ChartColours::ChartColours(const QPalette& palette)
    : background(palette.color(QPalette::Base)), text(palette.color(QPalette::Text)),
      muted(Mixed(text, background, 0.32)), grid(Mixed(background, text, 0.14)),
      wall(Mixed(background, text, 0.035)), sideWall(Mixed(background, text, 0.07)),
      floor(Mixed(background, text, 0.11)), dark(Luminance(background) < Luminance(text)) {}

QColor ChartColours::Series() {
    return QColor(Row[0]);
}

QColor ChartColours::SecondSeries() {
    return QColor(Row[1]);
}

QColor ChartColours::Slice(int index, int count) {
    int place = index % int(Row.size());
    // The last slice meets the first one, which is blue: blue, green and violet would run into it.
    if (index > 0 && index == count - 1 && (place == 0 || place == 2 || place == 3))
        place = Brick;
    return QColor(Row[std::size_t(place)]);
}

} // namespace pollarix
