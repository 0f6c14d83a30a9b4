// What a chart with axes is planned from, each a value made from those before it: the frame, the
// names below it, the letters of the values. Then the plot stands, and names, marks and values take
// their places on it. For PlanAxes alone.
#pragma once

#include <QFontMetricsF>

#include "platform/charts/ChartPlanParts.h"

namespace pollarix {

// The letters of ticks and names.
struct AxisLetters {
    explicit AxisLetters(const QFont& font);

    QFontMetricsF metrics;
    qreal em;
    qreal line;
};

// What the plot, its ticks and its names share: the chart without margins and list.
struct AxisFrame {
    QRectF area;
    qreal left = 0; // from the area's edge to the axis

    // How far the back wall stands to the right: deep where there is room, and no deeper between
    // bars than that one bar hides nothing of the next one's front.
    qreal Depth(const ChartPlan& plan) const;
    qreal Pitch(const ChartPlan& plan) const; // the width of one row's column
};

// Columns of whole pixels give bars sharp edges.
qreal WholePitch(qreal pitch);

// How the rows are named below the axis.
struct AxisNames {
    enum class Style { // best first
        Level,         // beside each other, broken into lines
        Slanted,       // at 45 degrees
        Numbered,      // numbers, and a list that says what they stand for
    };

    Style style = Style::Level;
    AxisFrame frame;                  // what they leave to the plot
    qreal height = 0;                 // of their letters
    std::vector<WrappedText> wrapped; // level names
    ChartLegend list;                 // of numbers; empty where there is no room for one
    QPointF listAt;
};
AxisNames ChooseNames(const ChartPlan& plan, const AxisFrame& frame);

// Values stand level if the widest fits its column, upright if only a line's height does. Where not
// even that fits, the largest are shown that find room.
struct ValueLetters {
    enum class Style { Level, Upright, Sparse };

    Style style = Style::Level;
    QFont font;
    qreal line = 0;
    qreal widest = 0;

    qreal Height() const { return style == Style::Upright ? widest : line; }
};
ValueLetters ChooseValueLetters(const ChartPlan& plan, qreal pitch);

// Once plot and scale stand: the names with their upper edge at `top`, the marks, the values.
std::vector<ChartText> NameTexts(const ChartPlan& plan, const AxisNames& names, qreal top);
std::vector<ChartMark> AxisMarks(const ChartPlan& plan);
std::vector<ChartText> ValueTexts(const ChartPlan& plan, const ValueLetters& letters);

// The middle of a text that may be wider than its column, so that it does not leave the chart.
qreal WithinChart(const ChartPlan& plan, qreal middle, qreal width);

ChartText AxisText(const ChartPlan& plan, ChartText::Kind kind, int row, const QString& text,
                   const QRectF& box, Qt::Alignment align = Qt::AlignCenter);

} // namespace pollarix
