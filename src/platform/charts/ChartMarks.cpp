#include "platform/charts/ChartAxisParts.h"

#include <algorithm>

namespace pollarix {

namespace {

QPainterPath Circle(const QPointF& centre, qreal radius) {
    QPainterPath path;
    path.addEllipse(centre, radius, radius);
    return path;
}

QPainterPath Box(const QRectF& rect) {
    QPainterPath path;
    path.addRect(rect);
    return path;
}

} // namespace

std::vector<ChartMark> AxisMarks(const ChartPlan& plan) {
    std::vector<ChartMark> marks;
    const qreal pitch = plan.Pitch();
    const qreal least = 6 * plan.unit; // a bar of height 0 can be found, too
    const bool bars = plan.HasBars();
    const bool filled = plan.type == ChartType::Area2D || plan.type == ChartType::Area3D ||
                        plan.type == ChartType::Step2D || plan.type == ChartType::Step3D;
    const ChartSlab slab = BodySlab(plan.type);
    for (int row = 0; row < int(plan.rows.size()); ++row) {
        const double value = plan.rows[std::size_t(row)].value;
        QPainterPath area;
        area.setFillRule(Qt::WindingFill);
        if (bars || filled) {
            const qreal half = bars ? plan.barWidth / 2 : pitch / 2;
            const QPointF foot = plan.At(row, std::min(value, 0.0), slab.near);
            const QPointF head = plan.At(row, std::max(value, 0.0), slab.near);
            const QRectF front(QPointF(foot.x() - half, std::min(head.y(), foot.y() - least)),
                               QPointF(foot.x() + half, foot.y()));
            area = Box(front);
            const QPointF deep = plan.depth * (slab.far - slab.near);
            if (bars && plan.IsSolid()) {
                area = {};
                area.addPolygon(QPolygonF({front.bottomLeft(), front.topLeft(),
                                           front.topLeft() + deep, front.topRight() + deep,
                                           front.bottomRight() + deep, front.bottomRight()}));
                area.closeSubpath();
            }
        }
        if (!bars) {
            const qreal radius = std::clamp(pitch / 2, 4.0, 12 * plan.unit);
            const QPointF point = plan.At(row, value, (slab.near + slab.far) / 2);
            area = filled ? area.united(Circle(point, radius)) : Circle(point, radius);
        }
        marks.push_back({row, area});
    }
    return marks;
}

} // namespace pollarix
