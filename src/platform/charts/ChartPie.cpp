#include "platform/charts/ChartPlanParts.h"

#include <QFontMetricsF>
#include <QtMath>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <optional>

namespace pollarix {

namespace {

constexpr int MostLabelled = 14; // more slices than that are named in a list

// The direction of an angle that runs clockwise from the top.
QPointF Toward(double degrees) {
    return {std::sin(qDegreesToRadians(degrees)), -std::cos(qDegreesToRadians(degrees))};
}

class PiePlanner {
  public:
    explicit PiePlanner(ChartPlan& plan)
        : plan_(plan), metrics_(plan.font), em_(plan.font.pixelSize()),
          line_(std::ceil(metrics_.height())), pad_(std::round(em_ * 0.8)),
          count_(int(plan.rows.size())) {}

    void Plan() {
        CutSlices();
        if (total_ > 0 && count_ <= MostLabelled && PlaceLabelsAround())
            return AddMarks();
        PlaceBesideList();
        AddMarks();
    }

  private:
    void CutSlices() {
        for (const ChartRow& row : plan_.rows)
            total_ += std::max(row.value, 0.0);
        double start = 0;
        for (int row = 0; row < count_; ++row) {
            const double value = std::max(plan_.rows[std::size_t(row)].value, 0.0);
            middles_.push_back(total_ > 0 ? start + value / total_ * 180 : 0);
            if (value > 0) {
                plan_.slices.push_back({row, {}, start, value / total_ * 360});
                start += value / total_ * 360;
            }
        }
        for (std::size_t i = 0; i < plan_.slices.size(); ++i)
            plan_.slices[i].colour = ChartColours::Slice(int(i), int(plan_.slices.size()));
    }

    struct Side {
        std::vector<int> rows; // from the top down
        std::vector<WrappedText> labels;
        std::vector<qreal> heights;
    };

    qreal LabelAway() const { return em_ * 1.9; } // from the rim to the label

    // Label and value at every slice; false if they would not fit without a list.
    bool PlaceLabelsAround() {
        const qreal width = plan_.size.width(), height = plan_.size.height();
        const auto radii = {0.40, 0.37, 0.34, 0.31, 0.28, 0.25};
        std::optional<qreal> best;
        for (bool whole : {true, false}) {
            for (qreal share : radii) {
                const qreal radius = std::min(height * share, height / 2 - pad_ - line_ * 0.6);
                const qreal room = width / 2 - radius - LabelAway() - pad_;
                if (radius < 3 * em_ || room < 5 * em_ || !Measure(room, whole))
                    continue;
                best = radius;
                break;
            }
            if (best)
                break;
            // A list tells the whole labels where it has room for them.
            if (whole && width >= 26 * em_ && height >= qreal(count_ + 2) * line_)
                return false;
        }
        if (!best)
            return false;
        plan_.radius = std::floor(*best);
        plan_.centre = {std::round(width / 2), std::round(height / 2)};
        for (bool right : {true, false})
            PlaceSide(right ? right_ : left_, right);
        return true;
    }

    bool Measure(qreal room, bool whole) {
        right_ = left_ = {};
        for (int row = 0; row < count_; ++row) {
            Side& side = middles_[std::size_t(row)] <= 180 ? right_ : left_;
            const WrappedText label =
                WrapText(plan_.rows[std::size_t(row)].label, plan_.font, room, 3);
            if (whole && (label.elided || label.brokeAWord))
                return false;
            const bool unnamed = label.lines.front().isEmpty();
            side.rows.push_back(row);
            side.labels.push_back(label);
            side.heights.push_back(line_ * (unnamed ? 1.0 : qreal(label.lines.size()) + 1) +
                                   em_ * 0.5);
        }
        std::reverse(left_.rows.begin(), left_.rows.end());
        std::reverse(left_.labels.begin(), left_.labels.end());
        std::reverse(left_.heights.begin(), left_.heights.end());
        for (const Side& side : {right_, left_}) {
            qreal needed = 0;
            for (qreal height : side.heights)
                needed += height;
            if (needed > plan_.size.height() - 2 * pad_ + em_ * 0.5)
                return false;
        }
        return true;
    }

    void PlaceSide(const Side& side, bool right) {
        const qreal outside = plan_.radius + em_ * 0.9;
        std::vector<qreal> wanted;
        for (int row : side.rows)
            wanted.push_back(plan_.centre.y() + Toward(middles_[std::size_t(row)]).y() * outside);
        const std::vector<qreal> placed = SpreadOut(wanted, side.heights, pad_ - em_ * 0.25,
                                                    plan_.size.height() - pad_ + em_ * 0.25);
        const qreal sign = right ? 1 : -1;
        const qreal edge = plan_.centre.x() + sign * (plan_.radius + LabelAway());
        for (std::size_t i = 0; i < side.rows.size(); ++i) {
            const int row = side.rows[i];
            AddLabel(row, side.labels[i], {edge, placed[i]}, right);
            const QPointF toward = Toward(middles_[std::size_t(row)]);
            plan_.leaders.push_back(QPolygonF({plan_.centre + toward * (plan_.radius + 1),
                                               plan_.centre + toward * outside,
                                               QPointF(edge - sign * em_ * 0.45, placed[i])}));
        }
    }

    void AddLabel(int row, const WrappedText& label, const QPointF& at, bool right) {
        const auto add = [&](ChartText::Kind kind, const QString& words, qreal width, qreal top,
                             qreal height) -> ChartText& {
            ChartText text;
            text.kind = kind;
            text.row = row;
            text.text = words;
            text.box = {right ? at.x() : at.x() - width, std::round(top), width, height};
            text.align = (right ? Qt::AlignLeft : Qt::AlignRight) | Qt::AlignTop;
            text.font = plan_.font;
            plan_.texts.push_back(text);
            return plan_.texts.back();
        };
        const bool unnamed = label.lines.front().isEmpty();
        const qreal lines = unnamed ? 0 : qreal(label.lines.size());
        const qreal top = at.y() - (lines + 1) * line_ / 2;
        if (!unnamed)
            add(ChartText::Kind::Category, label.lines.join('\n'), label.width + 1, top,
                lines * line_)
                .elided = label.elided;
        QFont bold = plan_.font;
        bold.setBold(true);
        const QString value = plan_.ValueText(row);
        add(ChartText::Kind::Value, value, QFontMetricsF(bold).horizontalAdvance(value) + 1,
            top + lines * line_, line_)
            .font = bold;
    }

    // The pie at the left or top, and a list of all rows with their values beside or below it.
    void PlaceBesideList() {
        const QSizeF size = plan_.size;
        const bool beside = size.width() >= size.height() * 1.05;
        const qreal rim = line_ * 1.3; // the numbers stand around the pie
        QRectF pieRoom = QRectF(QPointF(), size).adjusted(pad_, pad_, -pad_, -pad_);
        const QRectF whole = pieRoom;
        if (beside) {
            const qreal pie = std::min(whole.height(), whole.width() * 0.52);
            const QSizeF room(whole.width() - pie - em_ * 1.5, whole.height());
            const ChartLegend legend = PlanLegend(plan_, room, 2, true, true);
            if (!legend.size.isEmpty()) {
                // Pie and list stand in the middle together.
                const qreal both = pie + em_ * 1.5 + legend.size.width();
                const qreal left = whole.left() + std::max(0.0, (whole.width() - both) / 2);
                pieRoom = {left, whole.top(), pie, whole.height()};
                AddLegend(plan_, legend,
                          {pieRoom.right() + em_ * 1.5,
                           whole.top() + (whole.height() - legend.size.height()) / 2});
            }
        } else {
            const QSizeF room(whole.width(), whole.height() * 0.5);
            const ChartLegend legend = PlanLegend(plan_, room, 3, true, true);
            if (!legend.size.isEmpty()) {
                pieRoom.setBottom(pieRoom.bottom() - legend.size.height() - em_);
                AddLegend(plan_, legend,
                          {whole.left() + (whole.width() - legend.size.width()) / 2,
                           pieRoom.bottom() + em_});
            }
        }
        plan_.radius =
            std::floor(std::max(10.0, std::min(pieRoom.width(), pieRoom.height()) / 2 - rim));
        plan_.centre = {std::round(pieRoom.center().x()), std::round(pieRoom.center().y())};
        AddRimTexts();
    }

    // Around the pie stand the numbers of the list, or where there is no room for one, the values.
    void AddRimTexts() {
        const bool listed = !plan_.texts.empty();
        std::vector<qreal> wanted, lengths;
        for (const ChartSlice& slice : plan_.slices) {
            const qreal middle = slice.start + slice.span / 2;
            const QPointF along = Toward(middle + 90);
            const QSizeF size = RimSize(slice.row, listed);
            // As far as two such boxes must be apart, going this way, to lie clear of each other.
            const qreal apart = std::min(size.width() / std::max(std::abs(along.x()), 0.01),
                                         size.height() / std::max(std::abs(along.y()), 0.01));
            wanted.push_back(middle);
            lengths.push_back(qRadiansToDegrees(apart * 1.08 / (plan_.radius + line_ * 0.75)));
        }
        if (std::accumulate(lengths.begin(), lengths.end(), 0.0) > 360)
            return;
        const std::vector<qreal> placed = SpreadOut(wanted, lengths, 0, 360);
        std::vector<QRectF> taken;
        for (std::size_t i = 0; i < placed.size(); ++i) {
            const ChartSlice& slice = plan_.slices[i];
            const QPointF toward = Toward(placed[i]);
            ChartText text;
            text.kind = listed ? ChartText::Kind::Category : ChartText::Kind::Value;
            text.row = slice.row;
            text.text = RimText(slice.row, listed);
            text.font = plan_.font;
            text.muted = listed;
            text.box.setSize(RimSize(slice.row, listed));
            const qreal half = std::abs(toward.x()) * text.box.width() / 2 +
                               std::abs(toward.y()) * text.box.height() / 2;
            text.box.moveCenter(plan_.centre + toward * (plan_.radius + em_ * 0.15 + half));
            if (!QRectF(QPointF(), plan_.size).contains(text.box) ||
                std::any_of(taken.begin(), taken.end(),
                            [&text](const QRectF& other) { return other.intersects(text.box); }))
                continue;
            taken.push_back(text.box);
            plan_.texts.push_back(text);
            // One that had to step aside is led back to its slice.
            if (std::abs(placed[i] - wanted[i]) > slice.span / 2)
                plan_.leaders.push_back(
                    QPolygonF({plan_.centre + Toward(wanted[i]) * (plan_.radius + 1),
                               plan_.centre + toward * (plan_.radius + em_ * 0.3)}));
        }
    }

    QSizeF RimSize(int row, bool listed) const {
        return {metrics_.horizontalAdvance(RimText(row, listed)) + 3, line_};
    }

    QString RimText(int row, bool listed) const {
        return listed ? RowNumber(row) : plan_.ValueText(row);
    }

    void AddMarks() {
        const QPointF corner(plan_.radius, plan_.radius);
        const QRectF circle(plan_.centre - corner, plan_.centre + corner);
        for (const ChartSlice& slice : plan_.slices) {
            QPainterPath area(plan_.centre);
            // A painter's angles run the other way and start at three o'clock.
            area.arcTo(circle, 90 - slice.start, -slice.span);
            area.closeSubpath();
            plan_.marks.push_back({slice.row, area});
        }
    }

    ChartPlan& plan_;
    const QFontMetricsF metrics_;
    const qreal em_;
    const qreal line_;
    const qreal pad_;
    const int count_;
    double total_ = 0;
    std::vector<double>
        middles_; // of each row's slice, in degrees; where it would stand if it has none
    Side right_, left_;
};

} // namespace

void PlanPie(ChartPlan& plan) {
    PiePlanner(plan).Plan();
}

} // namespace pollarix
