// The flat styles: bars, lines, areas, steps, points and slices as series of a Qt chart whose plot
// area is the plan's. It draws the series alone; grid and texts are drawn by ChartDrawing.
#pragma once

#include <QGraphicsScene>

#include <memory>

class QChart;
class QPainter;
class QXYSeries;

namespace pollarix {

struct ChartPlan;

class ChartFlat {
  public:
    explicit ChartFlat(const ChartPlan& plan);
    void Paint(QPainter& painter);

  private:
    void AddBars(const ChartPlan& plan);
    void AddLine(const ChartPlan& plan, const QColor& colour);
    void AddArea(const ChartPlan& plan, qreal opacity);
    void AddPoints(const ChartPlan& plan, const QColor& colour, qreal diameter);
    void AddPie(const ChartPlan& plan);
    void AddAxes(const ChartPlan& plan);

    QGraphicsScene scene_;
    QChart* chart_; // the scene's
};

} // namespace pollarix
