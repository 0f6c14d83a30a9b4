#include "platform/charts/ChartPlanParts.h"

#include <QFontMetricsF>

#include <algorithm>
#include <cmath>

namespace pollarix {

namespace {

constexpr qreal ShortestLabel = 6; // in letter heights; a list of shorter ones says too little

class LegendPlanner {
  public:
    LegendPlanner(const ChartPlan& plan, const QSizeF& room, bool values, bool swatches)
        : plan_(plan), room_(room), values_(values), swatches_(swatches) {}

    ChartLegend Best(int mostColumns) {
        int smallest = 0;
        for (int columns = 1; columns <= mostColumns; ++columns) {
            int last = 0;
            for (qreal share : {1.0, 0.93, 0.86, 0.8}) {
                const int pixels =
                    std::max(SmallestChartFont, int(std::lround(plan_.font.pixelSize() * share)));
                if (pixels == last)
                    continue;
                smallest = last = pixels;
                if (!Measure(pixels, columns) || perColumn_ * lineHeight_ > room_.height())
                    continue;
                for (int lines : {3, 2, 1})
                    if (Wrap(int(plan_.rows.size()), lines))
                        return Written();
            }
        }
        // Not all fit: the smallest letters show as many as can be, and how many more there are.
        if (!Measure(smallest, mostColumns) && !Measure(smallest, 1))
            return {};
        perColumn_ = int(room_.height() / lineHeight_);
        const int shown = perColumn_ * columns_ - 1;
        // Less than half of the answers would only take room from the drawing.
        if (shown * 2 < int(plan_.rows.size()) || !Wrap(shown, 1))
            return {};
        return Written();
    }

  private:
    // Sets letters and columns; false if the columns would be too narrow.
    bool Measure(int pixels, int columns) {
        font_ = plan_.font;
        font_.setPixelSize(pixels);
        const QFontMetricsF metrics(font_);
        const int count = int(plan_.rows.size());
        columns_ = columns;
        perColumn_ = (count + columns - 1) / columns;
        lineHeight_ = metrics.height();
        gap_ = pixels * 0.5;
        numberWidth_ = metrics.horizontalAdvance(RowNumber(count - 1)) + 1;
        swatchWidth_ = swatches_ ? pixels * 0.8 : 0;
        valueWidth_ = 0;
        qreal widest = 0;
        for (int row = 0; row < count; ++row) {
            widest =
                std::max(widest, metrics.horizontalAdvance(plan_.rows[std::size_t(row)].label));
            if (values_)
                valueWidth_ =
                    std::max(valueWidth_, metrics.horizontalAdvance(plan_.ValueText(row)) + 1);
        }
        const qreal fixed = numberWidth_ + gap_ + (swatches_ ? swatchWidth_ + gap_ : 0) +
                            (values_ ? valueWidth_ + 2 * gap_ : 0);
        const qreal most = (room_.width() - ColumnGap() * (columns - 1)) / columns - fixed;
        labelWidth_ = std::min(widest + 1, most);
        columnWidth_ = labelWidth_ + fixed;
        return most >= std::min(widest + 1, ShortestLabel * pixels);
    }

    qreal ColumnGap() const { return gap_ * 3; }

    // Breaks the labels of the first `count` rows; false if a column runs out of the room.
    bool Wrap(int count, int mostLines) {
        labels_.clear();
        qreal used = 0;
        for (int row = 0; row < count; ++row) {
            if (row % perColumn_ == 0)
                used = 0;
            labels_.push_back(
                WrapText(plan_.rows[std::size_t(row)].label, font_, labelWidth_, mostLines));
            used += lineHeight_ * qreal(labels_.back().lines.size());
            if (used > room_.height())
                return false;
        }
        return true;
    }

    ChartText Text(int row, const QString& text, const QRectF& box, Qt::Alignment align) const {
        ChartText made;
        made.kind = ChartText::Kind::Legend;
        made.row = row;
        made.text = text;
        made.box = box;
        made.align = align | Qt::AlignTop;
        made.font = font_;
        return made;
    }

    ChartLegend Written() {
        ChartLegend legend;
        std::vector<qreal> heights(std::size_t(columns_), 0);
        for (std::size_t row = 0; row < labels_.size(); ++row)
            heights[row / std::size_t(perColumn_)] +=
                lineHeight_ * qreal(labels_[row].lines.size());
        const int cut = int(plan_.rows.size() - labels_.size());
        if (cut > 0)
            heights.back() += lineHeight_;
        const qreal height = *std::max_element(heights.begin(), heights.end());
        // Entries of more lines stand apart a little where there is room for it.
        const qreal spare = (room_.height() - height) / std::max(1, perColumn_ - 1);
        const qreal apart = std::clamp(spare, 0.0, lineHeight_ * 0.3);
        qreal y = 0;
        for (std::size_t row = 0; row < labels_.size(); ++row) {
            if (row % std::size_t(perColumn_) == 0)
                y = 0;
            AddRow(legend, int(row), y);
            y += lineHeight_ * qreal(labels_[row].lines.size()) + apart;
        }
        if (cut > 0) {
            const qreal x = (columns_ - 1) * (columnWidth_ + ColumnGap());
            ChartText more = Text(-1, Chart::tr("... and %1 more").arg(cut),
                                  {x, y, columnWidth_, lineHeight_}, Qt::AlignLeft);
            more.muted = true;
            legend.texts.push_back(more);
        }
        legend.size = {columnWidth_ * columns_ + ColumnGap() * (columns_ - 1),
                       height + apart * (perColumn_ - 1)};
        return legend;
    }

    void AddRow(ChartLegend& legend, int row, qreal y) const {
        const WrappedText& label = labels_[std::size_t(row)];
        qreal x = (row / perColumn_) * (columnWidth_ + ColumnGap());
        if (swatches_) {
            const auto slice =
                std::find_if(plan_.slices.begin(), plan_.slices.end(),
                             [row](const ChartSlice& candidate) { return candidate.row == row; });
            if (slice != plan_.slices.end())
                legend.swatches.push_back(
                    {{x, y + (lineHeight_ - swatchWidth_) / 2, swatchWidth_, swatchWidth_},
                     slice->colour});
            x += swatchWidth_ + gap_;
        }
        ChartText number =
            Text(row, RowNumber(row), {x, y, numberWidth_, lineHeight_}, Qt::AlignRight);
        number.muted = true;
        legend.texts.push_back(number);
        x += numberWidth_ + gap_;
        if (!label.lines.front().isEmpty()) {
            const QSizeF size(label.width + 1, lineHeight_ * qreal(label.lines.size()));
            ChartText name = Text(row, label.lines.join('\n'), {{x, y}, size}, Qt::AlignLeft);
            name.elided = label.elided;
            legend.texts.push_back(name);
        }
        if (values_) {
            x += labelWidth_ + 2 * gap_;
            ChartText value =
                Text(row, plan_.ValueText(row), {x, y, valueWidth_, lineHeight_}, Qt::AlignRight);
            legend.texts.push_back(value);
        }
    }

    const ChartPlan& plan_;
    const QSizeF room_;
    const bool values_;
    const bool swatches_;
    QFont font_;
    int columns_ = 1;
    int perColumn_ = 1;
    qreal lineHeight_ = 0;
    qreal gap_ = 0;
    qreal numberWidth_ = 0;
    qreal swatchWidth_ = 0;
    qreal valueWidth_ = 0;
    qreal labelWidth_ = 0;
    qreal columnWidth_ = 0;
    std::vector<WrappedText> labels_;
};

} // namespace

ChartLegend PlanLegend(const ChartPlan& plan, const QSizeF& room, int mostColumns, bool values,
                       bool swatches) {
    return LegendPlanner(plan, room, values, swatches).Best(mostColumns);
}

void AddLegend(ChartPlan& plan, const ChartLegend& legend, const QPointF& topLeft) {
    for (ChartText text : legend.texts) {
        text.box.translate(topLeft);
        plan.texts.push_back(text);
    }
    for (ChartSwatch swatch : legend.swatches) {
        swatch.box.translate(topLeft);
        plan.swatches.push_back(swatch);
    }
}

} // namespace pollarix
