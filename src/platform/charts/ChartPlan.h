// Where everything of a chart stands for one size, style, font and palette: plot area, scale,
// texts, marks. Plain values, worked out once; the painters and the tool tips read them.
#pragma once

#include "platform/charts/Chart.h"
#include "platform/charts/ChartColours.h"
#include "platform/charts/ChartScale.h"
#include "platform/charts/ChartText.h"

#include <QFont>
#include <QLocale>
#include <QPainterPath>
#include <QPalette>

namespace pollarix {

struct ChartRequest {
    ChartType type = ChartType::Bar3D;
    std::vector<ChartRow> rows;
    QSizeF size;
    QFont font;
    QPalette palette;
    QLocale locale;
};

// What the mouse finds of a row: its bar, point or slice.
struct ChartMark {
    int row = 0;
    QPainterPath area;
};

struct ChartSwatch {
    QRectF box;
    QColor colour;
};

struct ChartSlice {
    int row = 0;
    QColor colour;
    double start = 0; // degrees clockwise from the top
    double span = 0;
};

struct ChartPlan {
    ChartType type = ChartType::Bar3D;
    QSizeF size;
    std::vector<ChartRow> rows; // labels trimmed, values made drawable
    QLocale locale;
    ChartColours colours;
    QFont font;
    qreal unit = 1; // what one pixel of a chart of common size is in this one
    bool empty = false;

    // Charts with axes. The plot is the front plane; in 3-D `depth` leads from it to the back wall.
    ChartScale scale;
    QRectF plot;
    QPointF depth;
    qreal barWidth = 0;

    // Pies.
    QPointF centre;
    qreal radius = 0;
    std::vector<ChartSlice> slices;
    std::vector<QPolygonF> leaders;

    std::vector<ChartText> texts;
    std::vector<ChartSwatch> swatches;
    std::vector<ChartMark> marks;

    bool IsPie() const { return type == ChartType::Pie2D; }
    bool IsSolid() const;
    bool HasBars() const;
    qreal Pitch() const { return plot.width() / qreal(rows.size()); }
    // The pixel of a column (0 is the middle of the first row's) and of a value on the front plane.
    qreal X(double column) const;
    qreal Y(double value) const;
    QPointF At(double column, double value, qreal depthShare = 0) const;
    QString ValueText(int row) const { return ChartValueText(rows[size_t(row)].value, locale); }
    // "Tomato: 12".
    QString RowText(int row) const;
    // The row whose mark, or whose text, lies at a position; -1 for none.
    int RowAt(const QPointF& position) const;
};

// Which part of the depth a thing takes, 0 at the front plane, 1 at the back wall.
struct ChartSlab {
    qreal near = 0;
    qreal far = 1;
};
ChartSlab BodySlab(ChartType type);   // bars, ribbon or area
ChartSlab RibbonSlab(ChartType type); // the line of a combination stands before its bars

// The upper edge of lines, areas and steps as columns and values, left to right.
std::vector<QPointF> ProfileOf(const ChartPlan& plan);

// The labels and values that the drawing starts from: blanks around a label are left out, a value
// that no axis can hold becomes 0 or the largest that one can.
std::vector<ChartRow> DrawableRows(const std::vector<ChartRow>& rows);

ChartPlan PlanChart(const ChartRequest& request);

} // namespace pollarix
