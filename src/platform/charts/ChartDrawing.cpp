#include "platform/charts/ChartDrawing.h"

#include "platform/charts/ChartSolid.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace pollarix {

ChartDrawing::ChartDrawing(const ChartRequest& request) : plan_(PlanChart(request)) {
    if (!plan_.empty && !plan_.IsSolid())
        flat_.emplace(plan_);
}

void ChartDrawing::Paint(QPainter& painter) {
    const ChartColours& colours = plan_.colours;
    painter.save();
    painter.fillRect(QRectF(QPointF(), plan_.size), colours.background);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    const qreal line = std::max(1.0, std::round(plan_.unit));
    if (!plan_.empty) {
        if (plan_.IsSolid())
            PaintRoom(plan_, painter);
        else
            PaintGrid(painter);
        if (!plan_.IsPie()) {
            painter.setPen(QPen(Mixed(colours.background, colours.text, 0.45), line));
            const qreal base = std::floor(plan_.Y(0)) + 0.5;
            painter.drawLine(QPointF(plan_.plot.left(), base), QPointF(plan_.plot.right(), base));
        }
        if (flat_)
            flat_->Paint(painter);
        else
            PaintSolids(plan_, painter);
    }
    painter.setPen(QPen(Mixed(colours.background, colours.text, 0.4), line));
    painter.setBrush(Qt::NoBrush);
    for (const QPolygonF& leader : plan_.leaders)
        painter.drawPolyline(leader);
    painter.setPen(Qt::NoPen);
    for (const ChartSwatch& swatch : plan_.swatches) {
        painter.setBrush(swatch.colour);
        painter.drawRoundedRect(swatch.box, 2 * plan_.unit, 2 * plan_.unit);
    }
    for (const ChartText& text : plan_.texts)
        PaintText(painter, text);
    painter.restore();
}

void ChartDrawing::PaintGrid(QPainter& painter) const {
    const ChartColours& colours = plan_.colours;
    painter.setPen(QPen(colours.grid, std::max(1.0, std::round(plan_.unit))));
    painter.setBrush(Qt::NoBrush);
    if (plan_.IsPie()) {
        // Nobody answered anything: the circle stays, without slices.
        if (plan_.slices.empty()) {
            painter.setBrush(colours.wall);
            painter.drawEllipse(plan_.centre, plan_.radius, plan_.radius);
        }
        return;
    }
    for (double tick : plan_.scale.Ticks()) {
        const qreal y = std::floor(plan_.Y(tick)) + 0.5;
        painter.drawLine(QPointF(plan_.plot.left(), y), QPointF(plan_.plot.right(), y));
    }
    if (plan_.type == ChartType::XY2D && plan_.Pitch() >= 6)
        for (int row = 0; row < int(plan_.rows.size()); ++row) {
            const qreal x = std::floor(plan_.X(row)) + 0.5;
            painter.drawLine(QPointF(x, plan_.plot.top()), QPointF(x, plan_.plot.bottom()));
        }
}

void ChartDrawing::PaintText(QPainter& painter, const ChartText& text) const {
    const ChartColours& colours = plan_.colours;
    painter.save();
    painter.setFont(text.font);
    QRectF box = text.box;
    if (text.angle != 0) {
        painter.translate(box.center());
        painter.rotate(text.angle);
        box.moveCenter({});
    }
    if (text.halo) {
        const QFontMetricsF metrics(text.font);
        QPainterPath letters;
        letters.addText(box.center().x() - metrics.horizontalAdvance(text.text) / 2,
                        box.center().y() + (metrics.ascent() - metrics.descent()) / 2, text.font,
                        text.text);
        QColor around = colours.background;
        around.setAlphaF(0.8F);
        painter.strokePath(
            letters, QPen(around, 3.5 * plan_.unit, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    }
    painter.setPen(text.onFace ? QColor(Qt::white) : text.muted ? colours.muted : colours.text);
    painter.drawText(box, int(text.align) | Qt::TextDontClip, text.text);
    painter.restore();
}

} // namespace pollarix
