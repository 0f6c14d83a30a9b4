#include "platform/charts/ChartFlat.h"

#include "platform/charts/ChartPlan.h"

#include <QAreaSeries>
#include <QBarSeries>
#include <QBarSet>
#include <QChart>
#include <QGraphicsLayout>
#include <QLegend>
#include <QLineSeries>
#include <QPainter>
#include <QPieSeries>
#include <QPieSlice>
#include <QScatterSeries>
#include <QValueAxis>

namespace pollarix {

namespace {

QPen LinePen(const QColor& colour, qreal width) {
    return {colour, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin};
}

// The series are clipped to the chart's plot area. It is this much larger than the plan's on all
// sides, so that points and lines at the edge are drawn whole.
qreal Bleed(const ChartPlan& plan) {
    return 10 * plan.unit;
}

} // namespace

ChartFlat::ChartFlat(const ChartPlan& plan) : chart_(new QChart) {
    // The scene holds one item; an index over it would only cost.
    scene_.setItemIndexMethod(QGraphicsScene::NoIndex);
    scene_.setSceneRect(QRectF(QPointF(), plan.size));
    chart_->setAnimationOptions(QChart::NoAnimation);
    chart_->setBackgroundVisible(false);
    chart_->setMargins({});
    chart_->legend()->hide();
    chart_->layout()->setContentsMargins(0, 0, 0, 0);
    scene_.addItem(chart_);
    switch (plan.type) {
    case ChartType::Bar2D:
        AddBars(plan);
        break;
    case ChartType::Line2D:
        AddLine(plan, ChartColours::Series());
        AddPoints(plan, ChartColours::Series(), 9);
        break;
    case ChartType::Area2D:
        AddArea(plan, 0.5);
        break;
    case ChartType::Step2D:
        AddArea(plan, 0.18);
        break;
    case ChartType::Combination2D:
        AddBars(plan);
        AddLine(plan, ChartColours::SecondSeries());
        AddPoints(plan, ChartColours::SecondSeries(), 9);
        break;
    case ChartType::XY2D:
        AddPoints(plan, ChartColours::Series(), 12);
        break;
    default:
        AddPie(plan);
        break;
    }
    AddAxes(plan);
    const QPointF corner(plan.radius, plan.radius);
    const qreal bleed = Bleed(plan);
    chart_->setGeometry(QRectF(QPointF(), plan.size));
    chart_->setPlotArea(plan.IsPie() ? QRectF(plan.centre - corner, plan.centre + corner)
                                     : plan.plot.adjusted(-bleed, -bleed, bleed, bleed));
    // The picture is wanted now, not after the next round of events.
    chart_->layout()->activate();
}

void ChartFlat::Paint(QPainter& painter) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    scene_.render(&painter, scene_.sceneRect(), scene_.sceneRect());
    painter.restore();
}

void ChartFlat::AddBars(const ChartPlan& plan) {
    auto* bars = new QBarSeries(chart_);
    auto* set = new QBarSet(QString(), bars);
    for (const ChartRow& row : plan.rows)
        set->append(row.value);
    bars->append(set);
    bars->setBarWidth(plan.barWidth / plan.Pitch());
    chart_->addSeries(bars);
    set->setBrush(ChartColours::Series());
    set->setPen(Qt::NoPen);
}

void ChartFlat::AddLine(const ChartPlan& plan, const QColor& colour) {
    auto* line = new QLineSeries(chart_);
    for (const QPointF& point : ProfileOf(plan))
        line->append(point);
    chart_->addSeries(line);
    line->setPen(LinePen(colour, 2.5 * plan.unit));
}

void ChartFlat::AddArea(const ChartPlan& plan, qreal opacity) {
    auto* area = new QAreaSeries(chart_);
    auto* upper = new QLineSeries(area);
    auto* lower = new QLineSeries(area);
    for (const QPointF& point : ProfileOf(plan)) {
        upper->append(point);
        lower->append(point.x(), 0);
    }
    area->setUpperSeries(upper);
    area->setLowerSeries(lower);
    chart_->addSeries(area);
    QColor fill = ChartColours::Series();
    fill.setAlphaF(float(opacity));
    area->setBrush(fill);
    area->setPen(Qt::NoPen);
    AddLine(plan, ChartColours::Series());
}

void ChartFlat::AddPoints(const ChartPlan& plan, const QColor& colour, qreal diameter) {
    auto* points = new QScatterSeries(chart_);
    for (std::size_t i = 0; i < plan.rows.size(); ++i)
        points->append(double(i), plan.rows[i].value);
    chart_->addSeries(points);
    // Points do not run into each other in narrow columns.
    const qreal size = std::clamp(plan.Pitch() * 0.6, 3.0, diameter * plan.unit);
    points->setMarkerSize(size);
    points->setColor(colour);
    points->setBorderColor(plan.colours.background);
    points->setPen(QPen(plan.colours.background, std::min(1.5 * plan.unit, size / 5)));
}

void ChartFlat::AddPie(const ChartPlan& plan) {
    auto* pie = new QPieSeries(chart_);
    for (const ChartSlice& slice : plan.slices)
        pie->append(QString(), plan.rows[std::size_t(slice.row)].value);
    pie->setPieSize(1);
    chart_->addSeries(pie);
    const QList<QPieSlice*> drawn = pie->slices();
    for (qsizetype i = 0; i < drawn.size(); ++i) {
        drawn[i]->setBrush(plan.slices[std::size_t(i)].colour);
        // One slice alone is the whole circle and has no neighbour to be parted from.
        drawn[i]->setPen(drawn.size() > 1 ? LinePen(plan.colours.background, 1.5 * plan.unit)
                                          : QPen(Qt::NoPen));
    }
}

void ChartFlat::AddAxes(const ChartPlan& plan) {
    if (plan.IsPie())
        return;
    const qreal columnsBeyond = Bleed(plan) / plan.Pitch();
    const qreal valuesBeyond = Bleed(plan) / plan.plot.height() * (plan.scale.max - plan.scale.min);
    auto* columns = new QValueAxis;
    columns->setRange(-0.5 - columnsBeyond, double(plan.rows.size()) - 0.5 + columnsBeyond);
    auto* values = new QValueAxis;
    values->setRange(plan.scale.min - valuesBeyond, plan.scale.max + valuesBeyond);
    for (QValueAxis* axis : {columns, values})
        axis->setVisible(false);
    chart_->addAxis(columns, Qt::AlignBottom);
    chart_->addAxis(values, Qt::AlignLeft);
    for (QAbstractSeries* series : chart_->series()) {
        series->attachAxis(columns);
        series->attachAxis(values);
    }
}

} // namespace pollarix
