#include "platform/charts/ChartAxisParts.h"

#include <algorithm>
#include <cmath>

namespace pollarix {

namespace {

constexpr qreal Slope = 0.62; // how far the depth rises for each pixel to the right

struct AxisTicks {
    ChartScale scale;
    qreal width = 0; // of the widest text
};

AxisTicks TicksFor(const ChartPlan& plan, const AxisLetters& letters, qreal height) {
    std::vector<double> values;
    for (const ChartRow& row : plan.rows)
        values.push_back(row.value);
    AxisTicks ticks;
    ticks.scale = ChartScale::For(values, std::clamp(int(height / (2.4 * letters.line)), 1, 8));
    for (double tick : ticks.scale.Ticks())
        ticks.width = std::max(
            ticks.width,
            letters.metrics.horizontalAdvance(ticks.scale.TickText(tick, plan.locale)) + 1);
    return ticks;
}

// The plot between what the values need above it and the names below it.
void PlacePlot(ChartPlan& plan, const AxisFrame& frame, qreal head, qreal names, qreal nameGap) {
    const QRectF& area = frame.area;
    const qreal deep = std::round(frame.Depth(plan));
    plan.depth = {deep, -std::round(deep * Slope)};
    plan.plot = QRectF(
        QPointF(std::ceil(area.left() + frame.left), std::ceil(area.top() + head - plan.depth.y())),
        QPointF(std::floor(area.right() - deep), std::floor(area.bottom() - names - nameGap)));
    // A chart that is all labels still keeps a plot.
    plan.plot.setWidth(std::max(plan.plot.width(), 20.0));
    plan.plot.setHeight(std::max(plan.plot.height(), 20.0));
    const qreal width = WholePitch(plan.Pitch()) * int(plan.rows.size());
    plan.plot.setLeft(plan.plot.left() + std::floor((plan.plot.width() - width) / 2));
    plan.plot.setWidth(width);
}

qreal BarWidth(qreal pitch, qreal unit) {
    qreal width = std::min(pitch * 0.62, std::max(90 * unit, pitch * 0.45));
    if (pitch >= 14) {
        width = std::round(width);
        if (std::fmod(pitch - width, 2) != 0)
            width += 1;
    }
    return width;
}

void AddList(ChartPlan& plan, const AxisNames& names) {
    if (names.list.size.isEmpty())
        return;
    QPointF at = names.listAt;
    const QRectF& area = names.frame.area;
    if (at.x() > plan.plot.right())
        at.setY(std::max(area.top(),
                         std::min(plan.plot.top(), area.bottom() - names.list.size.height())));
    AddLegend(plan, names.list, at);
}

std::vector<ChartText> TickTexts(const ChartPlan& plan, const AxisLetters& letters, qreal width) {
    std::vector<ChartText> texts;
    for (double tick : plan.scale.Ticks()) {
        QRectF box(0, 0, width, letters.line);
        box.moveRight(plan.plot.left() - letters.em * 0.5);
        box.moveTop(std::round(plan.Y(tick) - letters.line / 2));
        texts.push_back(AxisText(plan, ChartText::Kind::Tick, -1,
                                 plan.scale.TickText(tick, plan.locale), box,
                                 Qt::AlignRight | Qt::AlignVCenter));
        texts.back().muted = true;
    }
    return texts;
}

} // namespace

AxisLetters::AxisLetters(const QFont& font)
    : metrics(font), em(font.pixelSize()), line(std::ceil(metrics.height())) {}

qreal AxisFrame::Depth(const ChartPlan& plan) const {
    if (!plan.IsSolid())
        return 0;
    const qreal deepest = std::min(plan.size.width(), plan.size.height()) * 0.085;
    const ChartSlab slab = BodySlab(plan.type);
    const qreal share = (plan.HasBars() ? 0.36 : 0.7) / (slab.far - slab.near);
    return std::min(deepest, share * (area.width() - left) / (int(plan.rows.size()) + share));
}

qreal AxisFrame::Pitch(const ChartPlan& plan) const {
    return WholePitch((area.width() - left - Depth(plan)) / int(plan.rows.size()));
}

qreal WholePitch(qreal pitch) {
    return pitch < 14 ? pitch : std::floor(pitch);
}

qreal WithinChart(const ChartPlan& plan, qreal middle, qreal width) {
    return std::clamp(middle, width / 2, std::max(width / 2, plan.size.width() - width / 2));
}

ChartText AxisText(const ChartPlan& plan, ChartText::Kind kind, int row, const QString& text,
                   const QRectF& box, Qt::Alignment align) {
    ChartText made;
    made.kind = kind;
    made.row = row;
    made.text = text;
    made.box = box;
    made.align = align;
    made.font = plan.font;
    return made;
}

void PlanAxes(ChartPlan& plan) {
    const AxisLetters letters(plan.font);
    const qreal pad = std::round(letters.em * (plan.size.height() < 200 ? 0.5 : 0.9));
    const QRectF area = QRectF(QPointF(), plan.size).adjusted(pad, pad, -pad, -pad);
    const qreal ticksWidth = TicksFor(plan, letters, area.height() * 0.75).width;
    const AxisNames names = ChooseNames(plan, {area, std::ceil(ticksWidth + letters.em * 0.5)});
    const AxisFrame& frame = names.frame;
    const ValueLetters values = ChooseValueLetters(plan, frame.Pitch(plan));
    const qreal head = values.Height() + 3 * plan.unit; // what the value over the highest bar needs

    // A list below the chart, or slanted names, may have left it less height than was thought. That
    // leaves out ticks; should one of the others be wider, the margin takes it.
    const AxisTicks ticks = TicksFor(
        plan, letters, frame.area.height() - names.height - head - frame.Depth(plan) * Slope);
    const qreal nameGap = std::round(letters.em * 0.45);
    plan.scale = ticks.scale;
    PlacePlot(plan, frame, head, names.height, nameGap);
    plan.barWidth = BarWidth(plan.Pitch(), plan.unit);

    AddList(plan, names);
    const auto add = [&plan](const std::vector<ChartText>& texts) {
        plan.texts.insert(plan.texts.end(), texts.begin(), texts.end());
    };
    add(TickTexts(plan, letters, ticks.width));
    add(NameTexts(plan, names, plan.plot.bottom() + nameGap));
    plan.marks = AxisMarks(plan);
    add(ValueTexts(plan, values));
}

} // namespace pollarix
