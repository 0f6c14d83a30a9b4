#include "platform/charts/ChartAxisParts.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace pollarix {

namespace {

constexpr int LayersOfDepth = 5; // at which lines and areas are looked at between front and back

// The length of the part of a line that lies in a box.
qreal LengthWithin(const QRectF& box, const QPointF& from, const QPointF& to) {
    const QPointF way = to - from;
    qreal enters = 0, leaves = 1;
    const auto cut = [&](qreal start, qreal step, qreal low, qreal high) {
        if (step == 0)
            return start >= low && start <= high;
        const qreal a = (low - start) / step, b = (high - start) / step;
        enters = std::max(enters, std::min(a, b));
        leaves = std::min(leaves, std::max(a, b));
        return enters < leaves;
    };
    if (!cut(from.x(), way.x(), box.left(), box.right()) ||
        !cut(from.y(), way.y(), box.top(), box.bottom()))
        return 0;
    return (leaves - enters) * std::hypot(way.x(), way.y());
}

qreal LayerShare(const ChartSlab& slab, int layer) {
    return slab.near + (slab.far - slab.near) * layer / (LayersOfDepth - 1);
}

struct ValuePlace {
    QPointF centre;
    bool onFace = false;
};

// Finds the place of each value on a plot that stands.
class ValuePlacer {
  public:
    ValuePlacer(const ChartPlan& plan, const ValueLetters& letters)
        : plan_(plan), letters_(letters), count_(int(plan.rows.size())), profile_(ProfileOf(plan)) {
    }

    // Where a row's value stands: over its bar or point, within its column. Beside lines and slopes
    // it goes to the place that they leave most free; in an area that may be the area itself.
    ValuePlace PlaceOf(int row, const QSizeF& size) const {
        const ChartSlab slab = BodySlab(plan_.type);
        const bool steps = plan_.type == ChartType::Step3D;
        const bool area =
            steps || plan_.type == ChartType::Area2D || plan_.type == ChartType::Area3D;
        const bool line = plan_.type == ChartType::Line2D || plan_.type == ChartType::Line3D;
        const bool points = plan_.type == ChartType::Line2D || plan_.type == ChartType::XY2D ||
                            plan_.type == ChartType::Combination2D;
        const qreal gap = (points ? 6 : 2) * plan_.unit;
        const double value = std::max(plan_.rows[std::size_t(row)].value, 0.0);
        const QPointF front = plan_.At(row, value, slab.near);
        const QPointF back = plan_.At(row, value, slab.far);
        const QPointF over((front.x() + back.x()) / 2, back.y() - gap - size.height() / 2);
        if (!area && !HasLine())
            return {over};
        const QPointF aside(
            std::clamp((plan_.Pitch() - size.width()) / 2 - 1, 0.0, size.width() / 2 + gap), 0);
        std::vector<ValuePlace> places;
        for (qreal lift = 0; lift <= (area ? letters_.line : 0); lift += letters_.line / 4)
            for (qreal side : {0, -1, 1})
                places.push_back({over - QPointF(0, lift) + aside * side});
        const QPointF under(front.x(), front.y() + (area ? 3 : 6) * plan_.unit + size.height() / 2);
        // At its ends an area has a face on one side only.
        const bool faceBelow = area && (steps || (row > 0 && row < count_ - 1));
        if ((faceBelow || line) && under.y() + size.height() / 2 < plan_.plot.bottom())
            for (qreal side : {0, -1, 1})
                places.push_back({under + aside * side, area});
        ValuePlace best{over};
        qreal least = std::numeric_limits<qreal>::max();
        for (const ValuePlace& place : places) {
            const QRectF box = BoxAt(place, size);
            if (const qreal within = LineWithin(box); within < least - 1) {
                least = within;
                best = place;
                best.onFace = place.onFace && IsCovered(box.topLeft()) && IsCovered(box.topRight());
            }
        }
        return best;
    }

    // The box of the letters, before the turn that upright ones take.
    QRectF BoxAt(const ValuePlace& place, const QSizeF& size) const {
        QRectF box(QPointF(), size);
        const bool upright = letters_.style == ValueLetters::Style::Upright;
        const qreal x = place.centre.x();
        box.moveCenter({upright ? x : WithinChart(plan_, x, size.width()), place.centre.y()});
        return box;
    }

    // Where columns are narrower than their values only those are shown that stand on no other
    // column.
    bool StandsFree(int row, const QRectF& box, const std::vector<QRectF>& taken) const {
        const int reach = int(std::ceil(box.width() / plan_.Pitch() / 2));
        for (int other = std::max(0, row - reach); other <= std::min(count_ - 1, row + reach);
             ++other)
            if (plan_.rows[std::size_t(other)].value > plan_.rows[std::size_t(row)].value)
                return false;
        return std::none_of(taken.begin(), taken.end(),
                            [&box](const QRectF& other) { return other.intersects(box); });
    }

  private:
    bool HasLine() const {
        return plan_.type == ChartType::Line2D || plan_.type == ChartType::Line3D ||
               plan_.type == ChartType::Combination2D || plan_.type == ChartType::Combination3D;
    }

    double ColumnAt(qreal x) const { return (x - plan_.plot.left()) / plan_.Pitch() - 0.5; }

    // How many pixels of the line or ribbon run through a box.
    qreal LineWithin(const QRectF& box) const {
        qreal within = 0;
        const ChartSlab slab = RibbonSlab(plan_.type);
        const int layers = plan_.IsSolid() ? LayersOfDepth : 1;
        for (int layer = 0; layer < layers; ++layer) {
            const qreal share = LayerShare(slab, layer);
            // Of hundreds of stretches only those near the box can touch it.
            const double first = ColumnAt(box.left() - plan_.depth.x() * share);
            auto point = std::partition_point(
                profile_.begin(), profile_.end(),
                [first](const QPointF& candidate) { return candidate.x() < first; });
            if (point == profile_.begin())
                ++point;
            for (; point != profile_.end(); ++point) {
                const QPointF& before = *(point - 1);
                const QPointF from = plan_.At(before.x(), before.y(), share);
                if (from.x() > box.right())
                    break;
                within += LengthWithin(box, from, plan_.At(point->x(), point->y(), share));
            }
        }
        return within;
    }

    // Whether a solid area, from its front to its back edge, stands behind a point. Beside a steep
    // rise the wall does, on which the letters of a face can't be read.
    bool IsCovered(const QPointF& point) const {
        const ChartSlab slab = BodySlab(plan_.type);
        for (int layer = 0; layer < LayersOfDepth; ++layer) {
            const double share = LayerShare(slab, layer);
            const double column = ColumnAt(point.x() - plan_.depth.x() * share);
            for (std::size_t i = 1; i < profile_.size(); ++i) {
                const QPointF &from = profile_[i - 1], &to = profile_[i];
                if (column < from.x() || column > to.x() || to.x() == from.x())
                    continue;
                const double value =
                    from.y() + (to.y() - from.y()) * (column - from.x()) / (to.x() - from.x());
                if (plan_.At(column, value, share).y() <= point.y())
                    return true;
            }
        }
        return false;
    }

    const ChartPlan& plan_;
    const ValueLetters& letters_;
    const int count_;
    const std::vector<QPointF> profile_;
};

// The rows in the order in which their values look for room.
std::vector<int> OrderOfRows(const ChartPlan& plan, bool largestFirst) {
    std::vector<int> order(plan.rows.size());
    std::iota(order.begin(), order.end(), 0);
    if (largestFirst)
        std::stable_sort(order.begin(), order.end(), [&plan](int a, int b) {
            return plan.rows[std::size_t(a)].value > plan.rows[std::size_t(b)].value;
        });
    return order;
}

} // namespace

ValueLetters ChooseValueLetters(const ChartPlan& plan, qreal pitch) {
    ValueLetters letters;
    letters.font = plan.font;
    const int smallest = std::max(SmallestChartFont, int(plan.font.pixelSize() * 0.8));
    for (int pixels = plan.font.pixelSize();; --pixels) {
        letters.font.setPixelSize(pixels);
        const QFontMetricsF metrics(letters.font);
        letters.line = std::ceil(metrics.height());
        letters.widest = 0;
        for (int row = 0; row < int(plan.rows.size()); ++row)
            letters.widest =
                std::max(letters.widest, metrics.horizontalAdvance(plan.ValueText(row)) + 2);
        if (letters.widest <= pitch)
            return letters;
        if (pixels <= smallest)
            break;
    }
    letters.style = QFontMetricsF(letters.font).ascent() <= pitch ? ValueLetters::Style::Upright
                                                                  : ValueLetters::Style::Sparse;
    return letters;
}

std::vector<ChartText> ValueTexts(const ChartPlan& plan, const ValueLetters& letters) {
    const QFontMetricsF metrics(letters.font);
    const ValuePlacer placer(plan, letters);
    const bool upright = letters.style == ValueLetters::Style::Upright;
    const bool sparse = letters.style == ValueLetters::Style::Sparse;
    std::vector<ChartText> texts;
    std::vector<QRectF> taken;
    for (int row : OrderOfRows(plan, sparse)) {
        const QString words = plan.ValueText(row);
        const QSizeF size(metrics.horizontalAdvance(words) + 1, letters.line);
        const ValuePlace place = placer.PlaceOf(row, upright ? size.transposed() : size);
        QRectF box = placer.BoxAt(place, size);
        if (!upright)
            box.moveTop(std::round(box.top()));
        if (sparse && !placer.StandsFree(row, box, taken))
            continue;
        taken.push_back(box.adjusted(-2, 0, 2, 0));
        ChartText text = AxisText(plan, ChartText::Kind::Value, row, words, box);
        text.font = letters.font;
        text.angle = upright ? -90 : 0;
        text.halo = !place.onFace;
        text.onFace = place.onFace && plan.IsSolid();
        texts.push_back(text);
    }
    return texts;
}

} // namespace pollarix
