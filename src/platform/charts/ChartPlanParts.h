// The parts that a chart's plan is put together from; for PlanChart alone.
#pragma once

#include "platform/charts/ChartPlan.h"

namespace pollarix {

// Fill plot, scale, texts and marks of a chart with axes, or those of a pie.
void PlanAxes(ChartPlan& plan);
void PlanPie(ChartPlan& plan);

// A list of all rows beside or below the drawing: number, label and, if wanted, colour and value.
struct ChartLegend {
    QSizeF size; // empty if there is no room for a list that is of use
    std::vector<ChartText> texts;
    std::vector<ChartSwatch> swatches;
};
ChartLegend PlanLegend(const ChartPlan& plan, const QSizeF& room, int mostColumns, bool values,
                       bool swatches);
void AddLegend(ChartPlan& plan, const ChartLegend& legend, const QPointF& topLeft);

// The number by which a legend and the drawing name a row, counted from 1.
inline QString RowNumber(int row) {
    return QString::number(row + 1);
}

} // namespace pollarix
