// Where the parts of a chart stand: labels that can be read, marks that follow the values.
#include "platform/ChartPlan.h"

#include <gtest/gtest.h>

#include <QPainterPath>

#include <cmath>
#include <limits>
#include <set>

#include "platform/ChartTestRows.h"

using namespace pollarix;
using namespace pollarix::test;

namespace {

ChartPlan PlanOf(ChartType type, std::vector<ChartRow> rows, const QSizeF& size = {640, 400}) {
    return PlanChart(
        {type, std::move(rows), size, QFont("DejaVu Sans", 9), QPalette(), QLocale::c()});
}

bool Overlap(const ChartText& a, const ChartText& b) {
    if (!a.Outline().boundingRect().intersects(b.Outline().boundingRect()))
        return false;
    // Boxes may share an edge; a pixel of overlap is one that is seen.
    const QRectF common = a.Outline().intersected(b.Outline()).boundingRect();
    return common.width() > 1 && common.height() > 1;
}

struct LayoutCase {
    const char* name;
    std::vector<ChartRow> rows;
};

} // namespace

class ChartLayout : public testing::TestWithParam<ChartType> {};

TEST_P(ChartLayout, NoTextOverlapsAnotherOrLeavesTheChart) {
    const std::vector<LayoutCase> cases = {
        {"one", ShortRows(1)},
        {"two", ShortRows(2)},
        {"five", ShortRows(5)},
        {"twelve", ShortRows(12)},
        {"thirty", ShortRows(30)},
        {"two long", LongRows(2)},
        {"five long", LongRows(5)},
        {"thirty long", LongRows(30)},
        {"many", LongRows(300)},
        {"zeros", {{" Yes", 0}, {" No", 0}, {" ", 0}}},
        {"mostly zeros", {{" A", 0}, {" B", 0}, {" C", 0}, {" D", 0}, {" E", 9}, {" F", 0}}}};
    for (const QSizeF size : {QSizeF(200, 150), QSizeF(320, 240), QSizeF(640, 400),
                              QSizeF(800, 430), QSizeF(380, 700), QSizeF(1900, 950)})
        for (const LayoutCase& shown : cases) {
            SCOPED_TRACE(testing::Message()
                         << shown.name << " at " << size.width() << "x" << size.height());
            const ChartPlan plan = PlanOf(GetParam(), shown.rows, size);
            const QRectF whole = QRectF(QPointF(), size).adjusted(-1, -1, 1, 1);
            for (std::size_t i = 0; i < plan.texts.size(); ++i) {
                const ChartText& text = plan.texts[i];
                EXPECT_TRUE(whole.contains(text.Outline().boundingRect()))
                    << text.text.toStdString();
                for (std::size_t j = i + 1; j < plan.texts.size(); ++j)
                    EXPECT_FALSE(Overlap(text, plan.texts[j]))
                        << text.text.toStdString() << " / " << plan.texts[j].text.toStdString();
            }
        }
}

TEST_P(ChartLayout, EveryAnswerIsNamedAndHasItsValueAtACommonSize) {
    for (const std::vector<ChartRow>& rows :
         {ShortRows(2), ShortRows(5), ShortRows(30), LongRows(5), LongRows(30)}) {
        const ChartPlan plan = PlanOf(GetParam(), rows, {800, 430});
        std::set<int> named, valued;
        for (const ChartText& text : plan.texts) {
            EXPECT_FALSE(text.text.startsWith(' '));
            if (text.row < 0)
                continue;
            const QString value = plan.ValueText(text.row);
            const QString words = QString(text.text).replace('\n', ' ');
            const QString label = rows[std::size_t(text.row)].label.trimmed();
            if (text.text == value && text.kind != ChartText::Kind::Category)
                valued.insert(text.row);
            else if (text.elided || words.contains(label))
                named.insert(text.row);
        }
        EXPECT_EQ(named.size(), rows.size());
        EXPECT_EQ(valued.size(), rows.size());
    }
}

TEST_P(ChartLayout, MarksAreFoundWhereTheValuesStand) {
    const std::vector<ChartRow> rows = {{" a", 4}, {" b", 9}, {" c", 1}, {" d", 9}};
    const ChartPlan plan = PlanOf(GetParam(), rows);
    if (plan.IsPie()) {
        for (const ChartSlice& slice : plan.slices) {
            const double middle = (slice.start + slice.span / 2) * M_PI / 180;
            EXPECT_NEAR(slice.span, rows[std::size_t(slice.row)].value / 23 * 360, 1e-9);
            EXPECT_EQ(plan.RowAt(plan.centre +
                                 QPointF(std::sin(middle), -std::cos(middle)) * plan.radius * 0.6),
                      slice.row);
        }
        EXPECT_EQ(plan.RowAt({2, 2}), -1);
        return;
    }
    for (int row = 0; row < 4; ++row) {
        const ChartSlab slab = BodySlab(plan.type);
        EXPECT_EQ(plan.RowAt(plan.At(row, rows[std::size_t(row)].value, slab.near)), row);
    }
    EXPECT_EQ(plan.Y(9), plan.At(3, 9).y());
    EXPECT_EQ(plan.RowAt(plan.At(2, 6)), -1) << "nothing reaches up there";
}

INSTANTIATE_TEST_SUITE_P(Styles, ChartLayout, testing::ValuesIn(AllChartTypes()),
                         [](const auto& info) { return ChartTypeName(info.param); });

struct ScaleCase {
    std::vector<double> values;
    int steps;
    double min, max, step;
};

TEST(ChartScale, RunsFromZeroInRoundSteps) {
    for (const ScaleCase& wanted : std::vector<ScaleCase>{{{}, 6, 0, 1, 1},
                                                          {{0, 0}, 6, 0, 1, 1},
                                                          {{1}, 8, 0, 1, 1},
                                                          {{3, 12, 7}, 6, 0, 12, 2},
                                                          {{2}, 8, 0, 2, 1},
                                                          {{101}, 4, 0, 150, 50},
                                                          {{99999}, 5, 0, 100000, 20000},
                                                          {{0.25, 0.5}, 5, 0, 0.5, 0.1},
                                                          {{-3, 5}, 1, -10, 10, 10},
                                                          {{1e15}, 3, 0, 1e15, 5e14}}) {
        const ChartScale scale = ChartScale::For(wanted.values, wanted.steps);
        EXPECT_DOUBLE_EQ(scale.min, wanted.min);
        EXPECT_DOUBLE_EQ(scale.max, wanted.max);
        EXPECT_DOUBLE_EQ(scale.step, wanted.step);
        EXPECT_DOUBLE_EQ(scale.Ticks().back(), wanted.max);
    }
    const QLocale german(QLocale::German);
    EXPECT_EQ(ChartScale::For(std::vector<double>{0.5}, 5).TickText(0.1, german), "0,1");
    EXPECT_EQ(ChartValueText(12345, german), "12345");
    EXPECT_EQ(ChartValueText(2.5, german), "2,5");
    EXPECT_EQ(ChartValueText(1 / 3.0, QLocale::c()), "0.33");
}

TEST(ChartText, LongLabelsBreakBetweenWordsAndEndInAnEllipsis) {
    const QFont font("DejaVu Sans", 9);
    const QString label = "Mushrooms from the forest behind the house";
    const WrappedText whole = WrapText(label, font, 130, 3);
    EXPECT_EQ(whole.lines.join(' '), label);
    EXPECT_FALSE(whole.elided || whole.brokeAWord);
    EXPECT_LE(whole.width, 130);
    const WrappedText cut = WrapText(label, font, 90, 2);
    EXPECT_TRUE(cut.elided);
    EXPECT_EQ(cut.lines.size(), 2);
    EXPECT_TRUE(cut.lines.back().endsWith(QChar(0x2026)));
    EXPECT_TRUE(WrapText("Donaudampfschiff", font, 40, 3).brokeAWord);
}

TEST(ChartText, SpreadTextsKeepTheirOrderAndMoveNoFurtherThanNeeded) {
    const std::vector<qreal> heights(4, 10);
    EXPECT_EQ(SpreadOut({20, 40, 60, 80}, heights, 0, 100), (std::vector<qreal>{20, 40, 60, 80}));
    EXPECT_EQ(SpreadOut({50, 50, 50, 50}, heights, 0, 100), (std::vector<qreal>{35, 45, 55, 65}));
    EXPECT_EQ(SpreadOut({1, 2, 3, 95}, heights, 0, 100), (std::vector<qreal>{5, 15, 25, 95}));
    EXPECT_EQ(SpreadOut({97, 98, 99, 99}, heights, 0, 100), (std::vector<qreal>{65, 75, 85, 95}));
}

TEST(ChartPlan, ValuesThatNoAxisHoldsAreDrawnAllTheSame) {
    const double infinite = std::numeric_limits<double>::infinity();
    const ChartPlan plan = PlanOf(
        ChartType::Bar2D,
        {{" a", infinite}, {" b", std::nan("")}, {" c", -1e20}, {" d", 1e300}, {" e", 1e-320}});
    EXPECT_EQ(plan.rows[0].value, 0);
    EXPECT_EQ(plan.rows[1].value, 0);
    EXPECT_LT(plan.scale.min, 0);
    for (const ChartRow& row : plan.rows)
        EXPECT_TRUE(
            plan.plot.adjusted(0, -1, 0, 1).contains(QPointF(plan.X(0), plan.Y(row.value))));
}

TEST(ChartPlan, OnlyZerosAndNothingAtAllAreTwoThings) {
    const ChartPlan zeros = PlanOf(ChartType::Line2D, {{" Yes", 0}, {" No", 0}});
    int noughts = 0;
    for (const ChartText& text : zeros.texts)
        noughts += text.kind == ChartText::Kind::Value && text.text == "0";
    EXPECT_EQ(noughts, 2);
    EXPECT_EQ(zeros.scale.max, 1);
    // A table that was given its size but no cells.
    const ChartPlan unfilled = PlanOf(ChartType::Line2D, {{"", 0}, {"", 0}});
    ASSERT_EQ(unfilled.texts.size(), 1u);
    EXPECT_EQ(unfilled.texts[0].text, "No answers to show");
    EXPECT_EQ(PlanOf(ChartType::Pie2D, {{" ", 0}}).empty, false);
}

TEST(ChartPlan, SmallChartsGiveUpTheListAndLargeOnesTellAllLabels) {
    const auto listed = [](const QSizeF& size) {
        std::set<int> rows;
        for (const ChartText& text : PlanOf(ChartType::Bar2D, LongRows(30), size).texts)
            if (text.kind == ChartText::Kind::Legend && !text.elided)
                rows.insert(text.row);
        return rows.size();
    };
    EXPECT_EQ(listed({200, 150}), 0u);
    EXPECT_EQ(listed({1900, 950}), 30u);
    const ChartPlan five = PlanOf(ChartType::Bar2D, LongRows(5));
    for (const ChartText& text : five.texts)
        EXPECT_FALSE(text.elided) << "five long labels find room in a list";
    EXPECT_GT(five.plot.height(), 150);
}

TEST(ChartColours, StandOutFromLightAndDarkAndFromEachOtherForEveryEye) {
    const auto contrast = [](const QColor& a, const QColor& b) {
        const qreal one = Luminance(a) + 0.05, two = Luminance(b) + 0.05;
        return std::max(one, two) / std::min(one, two);
    };
    // How a colour looks without the receptors for red, green or blue (on linear light).
    using Sight = std::array<std::array<double, 3>, 3>;
    const std::vector<Sight> sights = {
        {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}},
        {{{0.152, 1.053, -0.205}, {0.115, 0.786, 0.099}, {-0.004, -0.048, 1.052}}},
        {{{0.367, 0.861, -0.228}, {0.280, 0.673, 0.047}, {-0.012, 0.043, 0.969}}},
        {{{1.256, -0.077, -0.179}, {-0.078, 0.931, 0.148}, {0.005, 0.691, 0.304}}}};
    const auto seen = [](const QColor& colour, const Sight& sight) {
        const std::array<double, 3> light = {std::pow(colour.redF(), 2.2),
                                             std::pow(colour.greenF(), 2.2),
                                             std::pow(colour.blueF(), 2.2)};
        std::array<double, 3> result{};
        for (std::size_t i = 0; i < 3; ++i) {
            for (std::size_t j = 0; j < 3; ++j)
                result[i] += sight[i][j] * light[j];
            result[i] = std::pow(std::clamp(result[i], 0.0, 1.0), 1 / 2.2);
        }
        return result;
    };
    for (int count = 2; count <= 30; ++count)
        for (int i = 0; i < count; ++i) {
            const QColor here = ChartColours::Slice(i, count);
            const QColor next = ChartColours::Slice((i + 1) % count, count);
            EXPECT_GT(contrast(here, Qt::white), 2);
            EXPECT_GT(contrast(here, QColor(0x2b, 0x2b, 0x2b)), 2);
            for (const Sight& sight : sights) {
                const auto a = seen(here, sight), b = seen(next, sight);
                EXPECT_GT(std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]), 0.12)
                    << "slice " << i << " of " << count;
            }
        }
    EXPECT_GT(contrast(ChartColours::Series(), Qt::white), 3);
    EXPECT_GT(contrast(ChartColours::Series(), QColor(0x2b, 0x2b, 0x2b)), 3);
}
