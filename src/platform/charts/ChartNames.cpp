#include "platform/charts/ChartAxisParts.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace pollarix {

namespace {

constexpr int MostLines = 3;
constexpr qreal Slant = M_SQRT1_2; // sine and cosine of 45 degrees

int CountOf(const ChartPlan& plan) {
    return int(plan.rows.size());
}

// Names carry the row's number even where there is room for the label.
bool CarriesNumbers(const ChartPlan& plan) {
    return plan.type == ChartType::XY2D;
}

AxisNames LevelNames(const ChartPlan& plan, const AxisFrame& frame, const AxisLetters& letters) {
    AxisNames names;
    names.frame = frame;
    const qreal width = frame.Pitch(plan) - letters.em * 0.7;
    const int numbers = CarriesNumbers(plan) ? 1 : 0;
    const int most =
        std::clamp(int(plan.size.height() * 0.3 / letters.line) - numbers, 1, MostLines);
    qsizetype lines = 0;
    for (const ChartRow& row : plan.rows) {
        // Columns too narrow for any word: no need to break each label to learn that.
        if (width < letters.em && !row.label.isEmpty())
            names.wrapped.push_back({{}, 0, true, true});
        else
            names.wrapped.push_back(WrapText(row.label, plan.font, width, most));
        lines = std::max(lines, names.wrapped.back().lines.size());
    }
    names.height = letters.line * qreal(lines + numbers);
    return names;
}

// None where they would be too long or stand too close.
std::optional<AxisNames> SlantedNames(const ChartPlan& plan, const AxisFrame& frame,
                                      const AxisLetters& letters) {
    const qreal pitch = frame.Pitch(plan);
    if (CarriesNumbers(plan) || pitch * Slant < letters.line)
        return {};
    qreal widest = 0, beyond = 0;
    for (int row = 0; row < CountOf(plan); ++row) {
        const qreal width =
            letters.metrics.horizontalAdvance(plan.rows[std::size_t(row)].label) + letters.line;
        widest = std::max(widest, width);
        beyond = std::max(beyond, width * Slant - pitch * (row + 0.5) - frame.left);
    }
    if (widest * Slant > plan.size.height() * 0.33 || beyond > plan.size.width() * 0.12)
        return {};
    AxisNames names;
    names.style = AxisNames::Style::Slanted;
    names.height = std::ceil(widest * Slant);
    // The first labels begin left of the axis and need room there, which narrows the columns.
    names.frame = {frame.area, frame.left + std::ceil(beyond)};
    if (names.frame.Pitch(plan) * Slant < letters.line)
        return {};
    return names;
}

bool TellsAll(const ChartLegend& list) {
    return !list.size.isEmpty() &&
           std::none_of(list.texts.begin(), list.texts.end(),
                        [](const ChartText& text) { return text.elided || text.row < 0; });
}

// The list that tells all labels is better; of two such the one that leaves the larger plot.
bool ListIsBetterBelow(const ChartPlan& plan, const QRectF& area, const ChartLegend& beside,
                       const ChartLegend& below) {
    if (TellsAll(beside) != TellsAll(below))
        return TellsAll(below);
    if (!TellsAll(below))
        return beside.size.isEmpty() || plan.size.width() < plan.size.height() * 1.1;
    return area.width() * (area.height() - below.size.height()) >
           (area.width() - beside.size.width()) * area.height();
}

AxisNames NumberedNames(const ChartPlan& plan, const AxisFrame& frame, const AxisLetters& letters) {
    const qreal em = letters.em;
    const bool values = frame.Pitch(plan) * 0.6 < SmallestChartFont;
    const ChartLegend beside =
        PlanLegend(plan, {plan.size.width() * 0.42, frame.area.height()}, 2, values, false);
    const ChartLegend below = PlanLegend(
        plan, {frame.area.width() - frame.left, plan.size.height() * 0.42}, 3, values, false);
    const bool takeBelow = ListIsBetterBelow(plan, frame.area, beside, below);

    AxisNames names;
    names.style = AxisNames::Style::Numbered;
    names.height = letters.line;
    names.frame = frame;
    names.list = takeBelow ? below : beside;
    if (names.list.size.isEmpty())
        return names;
    QRectF& area = names.frame.area;
    if (takeBelow) {
        area.setBottom(area.bottom() - names.list.size.height() - em);
        names.listAt = {area.left() + frame.left, area.bottom() + em};
    } else {
        area.setRight(area.right() - names.list.size.width() - em * 1.5);
        names.listAt = {area.right() + em * 1.5, area.top()};
    }
    return names;
}

std::vector<ChartText> LevelTexts(const ChartPlan& plan, const AxisNames& names, qreal top) {
    const AxisLetters letters(plan.font);
    std::vector<ChartText> texts;
    for (int row = 0; row < CountOf(plan); ++row) {
        const WrappedText& name = names.wrapped[std::size_t(row)];
        QStringList lines = name.lines;
        qreal width = name.width;
        if (CarriesNumbers(plan)) {
            lines.prepend(RowNumber(row));
            width = std::max(width, letters.metrics.horizontalAdvance(RowNumber(row)));
        }
        const QSizeF size(width + 1, letters.line * qreal(lines.size()));
        ChartText text = AxisText(plan, ChartText::Kind::Category, row, lines.join('\n'),
                                  {{std::round(plan.X(row) - size.width() / 2), top}, size},
                                  Qt::AlignHCenter | Qt::AlignTop);
        text.elided = name.elided;
        if (!text.text.isEmpty())
            texts.push_back(text);
    }
    return texts;
}

std::vector<ChartText> SlantedTexts(const ChartPlan& plan, qreal top) {
    const AxisLetters letters(plan.font);
    std::vector<ChartText> texts;
    for (int row = 0; row < CountOf(plan); ++row) {
        const QString& label = plan.rows[std::size_t(row)].label;
        if (label.isEmpty())
            continue;
        QRectF box(0, 0, letters.metrics.horizontalAdvance(label) + 1, letters.line);
        const qreal lead = box.width() / 2 * Slant;
        box.moveCenter({plan.X(row) - lead + letters.line * 0.2, top + lead + letters.line * 0.35});
        texts.push_back(AxisText(plan, ChartText::Kind::Category, row, label, box));
        texts.back().angle = -45;
    }
    return texts;
}

// Numbers get smaller before some of them are left out.
std::vector<ChartText> NumberTexts(const ChartPlan& plan, qreal top) {
    const qreal line = AxisLetters(plan.font).line;
    QFont font = plan.font;
    const auto width = [&] {
        return QFontMetricsF(font).horizontalAdvance(RowNumber(CountOf(plan) - 1)) + 1;
    };
    while (font.pixelSize() > SmallestChartFont && width() + 2 > plan.Pitch())
        font.setPixelSize(font.pixelSize() - 1);
    int every = 1;
    for (int next : {1, 2, 5, 10, 20, 50, 100, 200, 500, 1000}) {
        every = next;
        if (width() + 2 <= plan.Pitch() * every)
            break;
    }
    std::vector<ChartText> texts;
    for (int row = every - 1; row < CountOf(plan); row += every) {
        QRectF box(0, top, width(), line);
        box.moveLeft(WithinChart(plan, plan.X(row), box.width()) - box.width() / 2);
        ChartText text = AxisText(plan, ChartText::Kind::Category, row, RowNumber(row), box);
        text.font = font;
        text.muted = true;
        texts.push_back(text);
    }
    return texts;
}

} // namespace

AxisNames ChooseNames(const ChartPlan& plan, const AxisFrame& frame) {
    const AxisLetters letters(plan.font);
    AxisNames level = LevelNames(plan, frame, letters);
    const auto cut = std::count_if(level.wrapped.begin(), level.wrapped.end(),
                                   [](const WrappedText& name) { return name.elided; });
    const bool broken = std::any_of(level.wrapped.begin(), level.wrapped.end(),
                                    [](const WrappedText& name) { return name.brokeAWord; });
    if (cut == 0 && !broken)
        return level;
    // A few labels that say only their beginning are no loss where columns are wide.
    const bool wide = frame.Pitch(plan) >= 7 * letters.em;
    if (wide && cut * 3 <= CountOf(plan))
        return level;
    if (std::optional<AxisNames> slanted = SlantedNames(plan, frame, letters))
        return *std::move(slanted);
    AxisNames numbered = NumberedNames(plan, frame, letters);
    return wide && !TellsAll(numbered.list) ? level : numbered;
}

std::vector<ChartText> NameTexts(const ChartPlan& plan, const AxisNames& names, qreal top) {
    switch (names.style) {
    case AxisNames::Style::Numbered:
        return NumberTexts(plan, top);
    case AxisNames::Style::Slanted:
        return SlantedTexts(plan, top);
    case AxisNames::Style::Level:
        break;
    }
    return LevelTexts(plan, names, top);
}

} // namespace pollarix
