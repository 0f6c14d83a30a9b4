// One chart for one size, worked out and ready to be painted: the plan and what Qt Charts draws of
// it.
#pragma once

#include "platform/charts/ChartFlat.h"
#include "platform/charts/ChartPlan.h"

#include <optional>

class QPainter;

namespace pollarix {

class ChartDrawing {
  public:
    explicit ChartDrawing(const ChartRequest& request);

    const ChartPlan& Plan() const { return plan_; }
    void Paint(QPainter& painter);

  private:
    void PaintGrid(QPainter& painter) const;
    void PaintText(QPainter& painter, const ChartText& text) const;

    ChartPlan plan_;
    std::optional<ChartFlat> flat_;
};

} // namespace pollarix
