// The colours of a chart: background and text follow the desktop's palette, the series colours are
// one fixed row that holds on light and dark backgrounds and for colour-blind readers.
#pragma once

#include <QColor>
#include <QPalette>

namespace pollarix {

struct ChartColours {
    explicit ChartColours(const QPalette& palette = {});

    QColor background;
    QColor text;
    QColor muted; // ticks, legend numbers, leader lines
    QColor grid;
    QColor wall; // back wall, side wall and floor of the room that a 3-D chart stands in
    QColor sideWall;
    QColor floor;
    bool dark = false;

    // What bars, areas and lines are drawn in, and the second one that stands on top of the first.
    static QColor Series();
    static QColor SecondSeries();
    // The colour of slice `index` (0-based) of `count`; differs from those of both neighbours, also
    // where the last slice meets the first.
    static QColor Slice(int index, int count);
};

// A colour between two others: 0 gives `from`, 1 gives `to`.
QColor Mixed(const QColor& from, const QColor& to, qreal share);

// How bright a colour is seen, 0 to 1.
qreal Luminance(const QColor& colour);

} // namespace pollarix
