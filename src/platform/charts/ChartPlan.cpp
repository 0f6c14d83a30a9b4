#include "platform/charts/ChartPlan.h"

#include "platform/charts/ChartPlanParts.h"

#include <QFontInfo>
#include <QFontMetricsF>

#include <algorithm>
#include <cmath>

namespace pollarix {

namespace {

constexpr double LargestValue = 1e15;
constexpr double SmallestValue = 1e-9;

double Drawable(double value) {
    if (!std::isfinite(value) || std::abs(value) < SmallestValue)
        return 0;
    return std::clamp(value, -LargestValue, LargestValue);
}

void PlanNotice(ChartPlan& plan) {
    ChartText notice;
    notice.kind = ChartText::Kind::Notice;
    notice.font = plan.font;
    notice.font.setPixelSize(int(std::lround(plan.font.pixelSize() * 1.15)));
    const QFontMetricsF metrics(notice.font);
    const WrappedText words =
        WrapText(Chart::tr("No answers to show"), notice.font, plan.size.width() * 0.9, 3);
    notice.text = words.lines.join('\n');
    notice.box.setSize({words.width + 1, metrics.height() * qreal(words.lines.size())});
    notice.box.moveCenter({plan.size.width() / 2, plan.size.height() / 2});
    notice.muted = true;
    plan.texts.push_back(notice);
}

} // namespace

bool ChartPlan::IsSolid() const {
    switch (type) {
    case ChartType::Bar3D:
    case ChartType::Line3D:
    case ChartType::Area3D:
    case ChartType::Step3D:
    case ChartType::Combination3D:
        return true;
    default:
        return false;
    }
}

bool ChartPlan::HasBars() const {
    return type == ChartType::Bar3D || type == ChartType::Bar2D ||
           type == ChartType::Combination3D || type == ChartType::Combination2D;
}

qreal ChartPlan::X(double column) const {
    return plot.left() + (column + 0.5) * Pitch();
}

qreal ChartPlan::Y(double value) const {
    return plot.bottom() - (value - scale.min) / (scale.max - scale.min) * plot.height();
}

QPointF ChartPlan::At(double column, double value, qreal depthShare) const {
    return QPointF(X(column), Y(value)) + depth * depthShare;
}

QString ChartPlan::RowText(int row) const {
    const QString& label = rows[std::size_t(row)].label;
    return label.isEmpty() ? ValueText(row) : label + ": " + ValueText(row);
}

int ChartPlan::RowAt(const QPointF& position) const {
    // What was drawn last lies on top.
    for (auto mark = marks.rbegin(); mark != marks.rend(); ++mark)
        if (mark->area.contains(position))
            return mark->row;
    for (const ChartText& text : texts)
        if (text.row >= 0 && text.Outline().containsPoint(position, Qt::OddEvenFill))
            return text.row;
    return -1;
}

ChartSlab BodySlab(ChartType type) {
    switch (type) {
    case ChartType::Bar3D:
        return {0.1, 0.85};
    case ChartType::Line3D:
        return {0.3, 0.75};
    case ChartType::Area3D:
    case ChartType::Step3D:
        return {0.15, 0.8};
    case ChartType::Combination3D:
        return {0.36, 0.92};
    default:
        return {0, 0};
    }
}

ChartSlab RibbonSlab(ChartType type) {
    return type == ChartType::Combination3D ? ChartSlab{0.04, 0.28} : BodySlab(type);
}

std::vector<QPointF> ProfileOf(const ChartPlan& plan) {
    const bool steps = plan.type == ChartType::Step2D || plan.type == ChartType::Step3D;
    std::vector<QPointF> profile;
    // One row alone has no neighbour to lead a line to: it shows as a level stretch.
    const double half = steps ? 0.5 : plan.rows.size() == 1 ? 0.25 : 0;
    for (std::size_t i = 0; i < plan.rows.size(); ++i) {
        profile.emplace_back(double(i) - half, plan.rows[i].value);
        if (half > 0)
            profile.emplace_back(double(i) + half, plan.rows[i].value);
    }
    return profile;
}

std::vector<ChartRow> DrawableRows(const std::vector<ChartRow>& rows) {
    std::vector<ChartRow> drawable;
    drawable.reserve(rows.size());
    for (const ChartRow& row : rows)
        drawable.push_back({row.label.simplified(), Drawable(row.value)});
    return drawable;
}

ChartPlan PlanChart(const ChartRequest& request) {
    ChartPlan plan;
    plan.type = request.type;
    plan.size = request.size;
    plan.rows = DrawableRows(request.rows);
    plan.locale = request.locale;
    plan.colours = ChartColours(request.palette);
    // Letters and lines grow with the picture, but slower than it: a large chart gets more room,
    // not only larger letters.
    const qreal growth = std::min(plan.size.width() / 720, plan.size.height() / 440);
    plan.unit = std::clamp(std::sqrt(std::max(growth, 0.0)), 0.8, 2.5);
    plan.font = request.font;
    plan.font.setPixelSize(
        std::max(9, int(std::lround(QFontInfo(request.font).pixelSize() * plan.unit))));
    // A table whose cells were never filled has nothing to show either. A given label has at least
    // its leading blank.
    plan.empty = std::all_of(request.rows.begin(), request.rows.end(), [](const ChartRow& row) {
        return row.label.isEmpty() && row.value == 0;
    });
    if (plan.empty)
        PlanNotice(plan);
    else if (plan.IsPie())
        PlanPie(plan);
    else
        PlanAxes(plan);
    return plan;
}

} // namespace pollarix
