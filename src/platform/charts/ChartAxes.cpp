#include "platform/charts/ChartPlanParts.h"

#include <QFontMetricsF>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace pollarix {

namespace {

constexpr int SmallestFont = 9;
constexpr int MostLines = 3;
constexpr qreal Slant = M_SQRT1_2; // sine and cosine of 45 degrees
constexpr qreal Slope = 0.62;      // how far the depth rises for each pixel to the right

// How the rows are named below the axis, best first.
enum class Naming {
    Level,    // beside each other, broken into lines
    Slanted,  // at 45 degrees
    Numbered, // numbers, and a list that says what they stand for
};

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

class AxisPlanner {
  public:
    explicit AxisPlanner(ChartPlan& plan)
        : plan_(plan), metrics_(plan.font), em_(plan.font.pixelSize()),
          line_(std::ceil(metrics_.height())), count_(int(plan.rows.size())),
          numbered_(plan.type == ChartType::XY2D) {}

    void Plan() {
        const qreal pad = std::round(em_ * (plan_.size.height() < 200 ? 0.5 : 0.9));
        area_ = QRectF(QPointF(), plan_.size).adjusted(pad, pad, -pad, -pad);
        PlanScale(area_.height() * 0.75);
        left_ = std::ceil(ticksWidth_ + em_ * 0.5);
        ChooseNaming();
        PlanValueLetters();
        // A list below the chart, or slanted names, may have left it less height than was thought.
        // That leaves out ticks; should one of the others be wider, the margin takes it.
        PlanScale(area_.height() - NamesHeight() - HeadHeight() - DepthWidth() * Slope);
        PlacePlot();
        AddTicks();
        AddNames();
        PlanAxisMarks(plan_);
        AddValues();
    }

  private:
    void PlanScale(qreal height) {
        std::vector<double> values;
        for (const ChartRow& row : plan_.rows)
            values.push_back(row.value);
        plan_.scale = ChartScale::For(values, std::clamp(int(height / (2.4 * line_)), 1, 8));
        qreal widest = 0;
        for (double tick : plan_.scale.Ticks())
            widest = std::max(
                widest, metrics_.horizontalAdvance(plan_.scale.TickText(tick, plan_.locale)) + 1);
        ticksWidth_ = widest;
    }

    // How far the back wall stands to the right: deep where there is room, and no deeper between
    // bars than that one bar hides nothing of the next one's front.
    qreal DepthWidth() const {
        if (!plan_.IsSolid())
            return 0;
        const qreal deepest = std::min(plan_.size.width(), plan_.size.height()) * 0.085;
        const ChartSlab slab = BodySlab(plan_.type);
        const qreal share = (plan_.HasBars() ? 0.36 : 0.7) / (slab.far - slab.near);
        return std::min(deepest, share * (area_.width() - left_) / (count_ + share));
    }

    qreal PitchNow() const { return WholePitch((area_.width() - left_ - DepthWidth()) / count_); }

    // Columns of whole pixels give bars sharp edges.
    static qreal WholePitch(qreal pitch) { return pitch < 14 ? pitch : std::floor(pitch); }

    void ChooseNaming() {
        WrapNames();
        const auto cut = std::count_if(names_.begin(), names_.end(),
                                       [](const WrappedText& name) { return name.elided; });
        const bool broken = std::any_of(names_.begin(), names_.end(),
                                        [](const WrappedText& name) { return name.brokeAWord; });
        if (cut == 0 && !broken)
            return;
        // A few labels that say only their beginning are no loss where columns are wide.
        const bool wide = PitchNow() >= 7 * em_;
        if (wide && cut * 3 <= count_)
            return;
        if (CanSlant()) {
            naming_ = Naming::Slanted;
            return;
        }
        const bool values = PitchNow() * 0.6 < SmallestFont;
        const ChartLegend beside =
            PlanLegend(plan_, {plan_.size.width() * 0.42, area_.height()}, 2, values, false);
        const ChartLegend below = PlanLegend(
            plan_, {area_.width() - left_, plan_.size.height() * 0.42}, 3, values, false);
        const bool takeBelow = ListIsBetterBelow(beside, below);
        legend_ = takeBelow ? below : beside;
        if (wide && !TellsAll(legend_)) {
            legend_ = {};
            return;
        }
        naming_ = Naming::Numbered;
        if (legend_.size.isEmpty())
            return;
        if (takeBelow) {
            area_.setBottom(area_.bottom() - legend_.size.height() - em_);
            legendAt_ = {area_.left() + left_, area_.bottom() + em_};
        } else {
            area_.setRight(area_.right() - legend_.size.width() - em_ * 1.5);
            legendAt_ = {area_.right() + em_ * 1.5, area_.top()};
        }
    }

    static bool TellsAll(const ChartLegend& legend) {
        return !legend.size.isEmpty() &&
               std::none_of(legend.texts.begin(), legend.texts.end(),
                            [](const ChartText& text) { return text.elided || text.row < 0; });
    }

    // The list that tells all labels is better; of two such the one that leaves the larger plot.
    bool ListIsBetterBelow(const ChartLegend& beside, const ChartLegend& below) const {
        if (TellsAll(beside) != TellsAll(below))
            return TellsAll(below);
        if (!TellsAll(below))
            return beside.size.isEmpty() || plan_.size.width() < plan_.size.height() * 1.1;
        return area_.width() * (area_.height() - below.size.height()) >
               (area_.width() - beside.size.width()) * area_.height();
    }

    void WrapNames() {
        const qreal width = PitchNow() - em_ * 0.7;
        const int lines =
            std::clamp(int(plan_.size.height() * 0.3 / line_) - (numbered_ ? 1 : 0), 1, MostLines);
        names_.clear();
        for (const ChartRow& row : plan_.rows) {
            // Columns too narrow for any word: no need to break each label to learn that.
            if (width < em_ && !row.label.isEmpty())
                names_.push_back({{}, 0, true, true});
            else
                names_.push_back(WrapText(row.label, plan_.font, width, lines));
        }
    }

    bool CanSlant() {
        const qreal pitch = PitchNow();
        if (numbered_ || pitch * Slant < line_)
            return false;
        qreal widest = 0, beyond = 0;
        for (int row = 0; row < count_; ++row) {
            const qreal width =
                metrics_.horizontalAdvance(plan_.rows[std::size_t(row)].label) + line_;
            widest = std::max(widest, width);
            beyond = std::max(beyond, width * Slant - pitch * (row + 0.5) - left_);
        }
        if (widest * Slant > plan_.size.height() * 0.33 || beyond > plan_.size.width() * 0.12)
            return false;
        // The first labels begin left of the axis and need room there, which narrows the columns.
        const qreal before = left_;
        left_ += std::ceil(beyond);
        if (PitchNow() * Slant >= line_)
            return true;
        left_ = before;
        return false;
    }

    // Values stand level if the widest fits its column, upright if only a line's height does. Where
    // not even that fits, the largest are shown that find room.
    void PlanValueLetters() {
        valueFont_ = plan_.font;
        const qreal pitch = PitchNow();
        for (int pixels = plan_.font.pixelSize();; --pixels) {
            valueFont_.setPixelSize(pixels);
            const QFontMetricsF metrics(valueFont_);
            valueLine_ = std::ceil(metrics.height());
            widestValue_ = 0;
            for (int row = 0; row < count_; ++row)
                widestValue_ =
                    std::max(widestValue_, metrics.horizontalAdvance(plan_.ValueText(row)) + 2);
            if (widestValue_ <= pitch)
                return;
            if (pixels <= std::max(SmallestFont, int(plan_.font.pixelSize() * 0.8)))
                break;
        }
        if (QFontMetricsF(valueFont_).ascent() <= pitch)
            valuesUpright_ = true;
        else
            valuesSparse_ = true;
    }

    void PlacePlot() {
        const qreal deep = std::round(DepthWidth());
        plan_.depth = {deep, -std::round(deep * Slope)};
        plan_.plot = QRectF(QPointF(std::ceil(area_.left() + left_),
                                    std::ceil(area_.top() + HeadHeight() - plan_.depth.y())),
                            QPointF(std::floor(area_.right() - deep),
                                    std::floor(area_.bottom() - NamesHeight() - NameGap())));
        // A chart that is all labels still keeps a plot.
        plan_.plot.setWidth(std::max(plan_.plot.width(), 20.0));
        plan_.plot.setHeight(std::max(plan_.plot.height(), 20.0));
        const qreal width = WholePitch(plan_.Pitch()) * count_;
        plan_.plot.setLeft(plan_.plot.left() + std::floor((plan_.plot.width() - width) / 2));
        plan_.plot.setWidth(width);
        const qreal pitch = plan_.Pitch();
        plan_.barWidth = std::min(pitch * 0.62, std::max(90 * plan_.unit, pitch * 0.45));
        if (pitch >= 14) {
            plan_.barWidth = std::round(plan_.barWidth);
            if (std::fmod(pitch - plan_.barWidth, 2) != 0)
                plan_.barWidth += 1;
        }
        if (!legend_.size.isEmpty()) {
            if (legendAt_.x() > plan_.plot.right())
                legendAt_.setY(
                    std::max(area_.top(),
                             std::min(plan_.plot.top(), area_.bottom() - legend_.size.height())));
            AddLegend(plan_, legend_, legendAt_);
        }
    }

    // What the value over the highest bar needs.
    qreal HeadHeight() const {
        return (valuesUpright_ ? widestValue_ : valueLine_) + 3 * plan_.unit;
    }

    qreal NameGap() const { return std::round(em_ * 0.45); }

    qreal NamesHeight() const {
        if (naming_ == Naming::Numbered)
            return line_;
        if (naming_ == Naming::Slanted) {
            qreal widest = 0;
            for (const ChartRow& row : plan_.rows)
                widest = std::max(widest, metrics_.horizontalAdvance(row.label));
            return std::ceil((widest + line_) * Slant);
        }
        qsizetype lines = 0;
        for (const WrappedText& name : names_)
            lines = std::max(lines, name.lines.size());
        return line_ * qreal(lines + (numbered_ ? 1 : 0));
    }

    ChartText Text(ChartText::Kind kind, int row, const QString& text, const QRectF& box,
                   Qt::Alignment align) const {
        ChartText made;
        made.kind = kind;
        made.row = row;
        made.text = text;
        made.box = box;
        made.align = align;
        made.font = plan_.font;
        return made;
    }

    void AddTicks() {
        for (double tick : plan_.scale.Ticks()) {
            QRectF box(0, 0, ticksWidth_, line_);
            box.moveRight(plan_.plot.left() - em_ * 0.5);
            box.moveTop(std::round(plan_.Y(tick) - line_ / 2));
            ChartText text =
                Text(ChartText::Kind::Tick, -1, plan_.scale.TickText(tick, plan_.locale), box,
                     Qt::AlignRight | Qt::AlignVCenter);
            text.muted = true;
            plan_.texts.push_back(text);
        }
    }

    void AddNames() {
        const qreal top = plan_.plot.bottom() + NameGap();
        if (naming_ == Naming::Numbered)
            return AddNumbers(top);
        for (int row = 0; row < count_; ++row) {
            const QString& label = plan_.rows[std::size_t(row)].label;
            const qreal middle = plan_.X(row);
            if (naming_ == Naming::Slanted) {
                if (label.isEmpty())
                    continue;
                QRectF box(0, 0, metrics_.horizontalAdvance(label) + 1, line_);
                const qreal lead = box.width() / 2 * Slant;
                box.moveCenter({middle - lead + line_ * 0.2, top + lead + line_ * 0.35});
                ChartText text = Text(ChartText::Kind::Category, row, label, box, Qt::AlignCenter);
                text.angle = -45;
                plan_.texts.push_back(text);
                continue;
            }
            const WrappedText& name = names_[std::size_t(row)];
            QStringList lines = name.lines;
            qreal width = name.width;
            if (numbered_) {
                lines.prepend(RowNumber(row));
                width = std::max(width, metrics_.horizontalAdvance(RowNumber(row)));
            }
            const QSizeF size(width + 1, line_ * qreal(lines.size()));
            ChartText text = Text(ChartText::Kind::Category, row, lines.join('\n'),
                                  {{std::round(middle - size.width() / 2), top}, size},
                                  Qt::AlignHCenter | Qt::AlignTop);
            text.elided = name.elided;
            if (!text.text.isEmpty())
                plan_.texts.push_back(text);
        }
    }

    // The middle of a text that may be wider than its column, so that it does not leave the chart.
    qreal WithinChart(qreal middle, qreal width) const {
        return std::clamp(middle, width / 2, std::max(width / 2, plan_.size.width() - width / 2));
    }

    // Numbers get smaller before some of them are left out.
    void AddNumbers(qreal top) {
        QFont font = plan_.font;
        const auto width = [&] {
            return QFontMetricsF(font).horizontalAdvance(RowNumber(count_ - 1)) + 1;
        };
        while (font.pixelSize() > SmallestFont && width() + 2 > plan_.Pitch())
            font.setPixelSize(font.pixelSize() - 1);
        int every = 1;
        for (int next : {1, 2, 5, 10, 20, 50, 100, 200, 500, 1000}) {
            every = next;
            if (width() + 2 <= plan_.Pitch() * every)
                break;
        }
        for (int row = every - 1; row < count_; row += every) {
            QRectF box(0, top, width(), line_);
            box.moveLeft(WithinChart(plan_.X(row), box.width()) - box.width() / 2);
            ChartText text =
                Text(ChartText::Kind::Category, row, RowNumber(row), box, Qt::AlignCenter);
            text.font = font;
            text.muted = true;
            plan_.texts.push_back(text);
        }
    }

    bool HasLine() const {
        return plan_.type == ChartType::Line2D || plan_.type == ChartType::Line3D ||
               plan_.type == ChartType::Combination2D || plan_.type == ChartType::Combination3D;
    }

    double ColumnAt(qreal x) const { return (x - plan_.plot.left()) / plan_.Pitch() - 0.5; }

    // How many pixels of the line or ribbon run through a box.
    qreal LineWithin(const QRectF& box) const {
        qreal within = 0;
        const ChartSlab slab = RibbonSlab(plan_.type);
        const int layers = plan_.IsSolid() ? 5 : 1;
        for (int layer = 0; layer < layers; ++layer) {
            const qreal share = slab.near + (slab.far - slab.near) * layer / 4;
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

    struct ValuePlace {
        QPointF centre;
        bool onFace = false;
    };

    // Where a row's value stands: over its bar or point, within its column. Beside lines and slopes
    // it goes to the place that they leave most free; in an area that may be the area itself.
    ValuePlace PlaceOfValue(int row, const QSizeF& size) const {
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
        for (qreal lift = 0; lift <= (area ? valueLine_ : 0); lift += valueLine_ / 4)
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
            QRectF box(QPointF(), size);
            box.moveCenter(
                {valuesUpright_ ? place.centre.x() : WithinChart(place.centre.x(), box.width()),
                 place.centre.y()});
            if (const qreal within = LineWithin(box); within < least - 1) {
                least = within;
                best = place;
                best.onFace = place.onFace && IsCovered(box.topLeft()) && IsCovered(box.topRight());
            }
        }
        return best;
    }

    // Whether a solid area, from its front to its back edge, stands behind a point. Beside a steep
    // rise the wall does, on which the letters of a face can't be read.
    bool IsCovered(const QPointF& point) const {
        const ChartSlab slab = BodySlab(plan_.type);
        for (int layer = 0; layer <= 4; ++layer) {
            const double share = slab.near + (slab.far - slab.near) * layer / 4;
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

    void AddValues() {
        const QFontMetricsF metrics(valueFont_);
        profile_ = ProfileOf(plan_);
        std::vector<int> order;
        for (int row = 0; row < count_; ++row)
            order.push_back(row);
        if (valuesSparse_)
            std::stable_sort(order.begin(), order.end(), [this](int a, int b) {
                return plan_.rows[std::size_t(a)].value > plan_.rows[std::size_t(b)].value;
            });
        std::vector<QRectF> taken;
        for (int row : order) {
            const QString text = plan_.ValueText(row);
            const QSizeF size(metrics.horizontalAdvance(text) + 1, valueLine_);
            QRectF box(QPointF(), size);
            const ValuePlace place = PlaceOfValue(row, valuesUpright_ ? size.transposed() : size);
            box.moveCenter(
                {valuesUpright_ ? place.centre.x() : WithinChart(place.centre.x(), box.width()),
                 place.centre.y()});
            if (!valuesUpright_)
                box.moveTop(std::round(box.top()));
            if (valuesSparse_ && !StandsFree(row, box, taken))
                continue;
            taken.push_back(box.adjusted(-2, 0, 2, 0));
            ChartText made = Text(ChartText::Kind::Value, row, text, box, Qt::AlignCenter);
            made.font = valueFont_;
            made.angle = valuesUpright_ ? -90 : 0;
            made.halo = !place.onFace;
            made.onFace = place.onFace && plan_.IsSolid();
            plan_.texts.push_back(made);
        }
    }

    ChartPlan& plan_;
    const QFontMetricsF metrics_;
    const qreal em_;
    const qreal line_;
    const int count_;
    const bool numbered_; // names carry the row's number even where there is room for the label
    QRectF area_;
    qreal ticksWidth_ = 0;
    qreal left_ = 0; // from the area's edge to the axis
    Naming naming_ = Naming::Level;
    std::vector<WrappedText> names_;
    ChartLegend legend_;
    QPointF legendAt_;
    std::vector<QPointF> profile_;
    QFont valueFont_;
    qreal valueLine_ = 0;
    qreal widestValue_ = 0;
    bool valuesUpright_ = false;
    bool valuesSparse_ = false;
};

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

void PlanAxes(ChartPlan& plan) {
    AxisPlanner(plan).Plan();
}

void PlanAxisMarks(ChartPlan& plan) {
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
        plan.marks.push_back({row, area});
    }
}

} // namespace pollarix
