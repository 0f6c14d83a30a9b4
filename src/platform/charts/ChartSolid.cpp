#include "platform/charts/ChartSolid.h"

#include "platform/charts/ChartPlan.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace pollarix {

namespace {

class SolidPainter {
  public:
    SolidPainter(const ChartPlan& plan, QPainter& painter) : plan_(plan), painter_(painter) {}

    void Bars(const QColor& colour) {
        const ChartSlab slab = BodySlab(plan_.type);
        const QPointF deep = plan_.depth * (slab.far - slab.near);
        // Left to right: what stands further right is nearer to the eye.
        for (std::size_t i = 0; i < plan_.rows.size(); ++i) {
            const double value = plan_.rows[i].value;
            const QPointF head = plan_.At(double(i), std::max(value, 0.0), slab.near);
            const QPointF foot = plan_.At(double(i), std::min(value, 0.0), slab.near);
            const QRectF front(head.x() - plan_.barWidth / 2, head.y(), plan_.barWidth,
                               foot.y() - head.y());
            Face({front.topRight(), front.bottomRight(), front.bottomRight() + deep,
                  front.topRight() + deep},
                 Shade(colour, -0.9));
            Face({front.topLeft(), front.topRight(), front.topRight() + deep,
                  front.topLeft() + deep},
                 Shade(colour, 0.9));
            QLinearGradient gradient(front.topLeft(), front.bottomLeft());
            gradient.setColorAt(0, colour);
            gradient.setColorAt(1, Shade(colour, -0.25));
            // A bar of height 0 is its top face alone, lying on the floor.
            if (front.height() > 0)
                Face(QPolygonF(front), gradient);
        }
    }

    void Ribbon(const QColor& colour) {
        const ChartSlab slab = RibbonSlab(plan_.type);
        const std::vector<QPointF> edge = FrontEdge(slab);
        const QPointF deep = plan_.depth * (slab.far - slab.near);
        // A shadow on the floor says how far from the back wall the ribbon runs.
        if (BodySlab(plan_.type).near == slab.near) {
            const qreal floor = plan_.plot.bottom() + plan_.depth.y() * slab.near;
            const QPointF left(edge.front().x(), floor), right(edge.back().x(), floor);
            painter_.setPen(Qt::NoPen);
            painter_.setBrush(QColor(0, 0, 0, plan_.colours.dark ? 90 : 32));
            painter_.drawPolygon(QPolygonF({left, right, right + deep, left + deep}));
        }
        for (std::size_t i = 1; i < edge.size(); ++i)
            Sheet(edge[i - 1], edge[i], deep, colour, true);
        painter_.setBrush(Qt::NoBrush);
        painter_.setPen(
            QPen(Shade(colour, -0.45), 4 * plan_.unit, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter_.drawPolyline(edge.data(), int(edge.size()));
    }

    void Slab(const QColor& colour) {
        const ChartSlab slab = BodySlab(plan_.type);
        std::vector<QPointF> edge = FrontEdge(slab);
        const QPointF deep = plan_.depth * (slab.far - slab.near);
        const qreal base = plan_.Y(0) + plan_.depth.y() * slab.near;
        const QPointF last = edge.back(), lastFoot(last.x(), base);
        for (std::size_t i = 1; i < edge.size(); ++i)
            Sheet(edge[i - 1], edge[i], deep, colour, false);
        Face({last, lastFoot, lastFoot + deep, last + deep}, Shade(colour, -0.9));
        QPolygonF front(QList<QPointF>(edge.begin(), edge.end()));
        front << lastFoot << QPointF(edge.front().x(), base);
        QLinearGradient gradient(0, plan_.plot.top(), 0, base);
        gradient.setColorAt(0, colour);
        gradient.setColorAt(1, Shade(colour, -0.25));
        Face(front, gradient);
        painter_.setBrush(Qt::NoBrush);
        painter_.setPen(
            QPen(Shade(colour, 0.5), 1.2 * plan_.unit, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter_.drawPolyline(edge.data(), int(edge.size()));
    }

  private:
    std::vector<QPointF> FrontEdge(const ChartSlab& slab) const {
        std::vector<QPointF> edge;
        for (const QPointF& point : ProfileOf(plan_))
            edge.push_back(plan_.At(point.x(), point.y(), slab.near));
        return edge;
    }

    // 1 is full light, 0 the colour itself, -1 full shade.
    static QColor Shade(const QColor& colour, qreal light) {
        return light >= 0 ? Mixed(colour, Qt::white, light * 0.38)
                          : Mixed(colour, Qt::black, -light * 0.36);
    }

    // The piece of surface that a stretch of the upper edge sweeps out towards the back. Its upper
    // side is seen unless it climbs to the right more steeply than the eye looks down on it.
    void Sheet(const QPointF& from, const QPointF& to, const QPointF& deep, const QColor& colour,
               bool alsoFromBelow) {
        const QPointF way = to - from;
        const qreal length = std::hypot(way.x(), way.y());
        if (length == 0)
            return;
        const bool upper = way.x() * deep.y() - way.y() * deep.x() <= 0;
        if (!upper && !alsoFromBelow)
            return;
        // The light comes from the left above.
        const qreal light = (0.85 * way.x() - 0.5 * way.y()) / length;
        Face({from, to, to + deep, from + deep},
             upper ? Shade(colour, light) : Shade(colour, -0.55));
    }

    // The thin outline in the face's own colour closes the hair lines between smoothed edges.
    void Face(const QPolygonF& outline, const QBrush& brush) {
        painter_.setPen(QPen(brush, 0.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter_.setBrush(brush);
        painter_.drawPolygon(outline);
    }

    const ChartPlan& plan_;
    QPainter& painter_;
};

} // namespace

void PaintRoom(const ChartPlan& plan, QPainter& painter) {
    const ChartColours& colours = plan.colours;
    const QRectF back = plan.plot.translated(plan.depth);
    painter.save();
    painter.setPen(Qt::NoPen);
    painter.setBrush(colours.wall);
    painter.drawRect(back);
    painter.setBrush(colours.sideWall);
    painter.drawPolygon(QPolygonF(
        {plan.plot.topLeft(), back.topLeft(), back.bottomLeft(), plan.plot.bottomLeft()}));
    painter.setBrush(colours.floor);
    painter.drawPolygon(QPolygonF(
        {plan.plot.bottomLeft(), back.bottomLeft(), back.bottomRight(), plan.plot.bottomRight()}));
    painter.setPen(QPen(colours.grid, std::max(1.0, std::round(plan.unit))));
    for (double tick : plan.scale.Ticks()) {
        const qreal y = std::floor(plan.Y(tick)) + 0.5;
        const QPointF left(plan.plot.left(), y);
        painter.drawLine(left, left + plan.depth);
        painter.drawLine(left + plan.depth, QPointF(plan.plot.right(), y) + plan.depth);
    }
    painter.drawLine(back.topLeft(), back.bottomLeft());
    painter.restore();
}

void PaintSolids(const ChartPlan& plan, QPainter& painter) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    SolidPainter solids(plan, painter);
    switch (plan.type) {
    case ChartType::Bar3D:
        solids.Bars(ChartColours::Series());
        break;
    case ChartType::Line3D:
        solids.Ribbon(ChartColours::Series());
        break;
    case ChartType::Area3D:
    case ChartType::Step3D:
        solids.Slab(ChartColours::Series());
        break;
    default:
        solids.Bars(ChartColours::Series());
        solids.Ribbon(ChartColours::SecondSeries());
        break;
    }
    painter.restore();
}

} // namespace pollarix
