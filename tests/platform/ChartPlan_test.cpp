// Where the parts of a chart stand: labels that can be read, marks that follow the values.
#include "platform/charts/ChartPlan.h"

#include <gtest/gtest.h>

#include <QPainterPath>

#include <cmath>
#include <limits>
#include <random>
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

} // namespace

class ChartLayout : public testing::TestWithParam<ChartType> {};

TEST_P(ChartLayout, NoTextOverlapsAnotherOrLeavesTheChart) {
    const std::vector<ChartRow> mostlyZeros = {{" A", 0}, {" B", 0}, {" C", 9}, {" ", 0}};
    for (const QSizeF size : {QSizeF(200, 150), QSizeF(320, 240), QSizeF(640, 400),
                              QSizeF(800, 430), QSizeF(380, 700), QSizeF(1900, 950)})
        for (const std::vector<ChartRow>& rows :
             {ShortRows(1), ShortRows(2), ShortRows(5), ShortRows(12), ShortRows(30), LongRows(2),
              LongRows(5), LongRows(30), LongRows(300), mostlyZeros}) {
            SCOPED_TRACE(testing::Message()
                         << rows.size() << " at " << size.width() << "x" << size.height());
            const ChartPlan plan = PlanOf(GetParam(), rows, size);
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

// White letters are for the face; half on the wall they could not be read.
TEST(ChartPlan, ValuesInTheLettersOfAnAreaStandOnItWhole) {
    std::mt19937 dice(7);
    int onFace = 0;
    for (int series = 0; series < 200; ++series) {
        std::vector<ChartRow> rows;
        for (int i = 0; i < 3 + series % 23; ++i) {
            const unsigned most = dice() % 3 == 0 ? 20 : 1000;
            rows.push_back({" A", double(dice() % most)});
        }
        const ChartPlan plan = PlanOf(ChartType::Area3D, rows,
                                      {double(220 + dice() % 600), double(160 + dice() % 300)});
        const ChartSlab slab = BodySlab(plan.type);
        QPainterPath solid;
        for (int layer = 0; layer <= 10; ++layer) {
            const double share = slab.near + (slab.far - slab.near) * layer / 10;
            QPainterPath face(plan.At(0, 0, share));
            for (const QPointF& point : ProfileOf(plan))
                face.lineTo(plan.At(point.x(), point.y(), share));
            face.lineTo(plan.At(double(rows.size()) - 1, 0, share));
            solid |= face;
        }
        for (const ChartText& text : plan.texts) {
            const QRectF box = text.Outline().boundingRect().adjusted(1, 1, -1, -1);
            onFace += text.onFace;
            EXPECT_TRUE(!text.onFace ||
                        (solid.contains(box.topLeft()) && solid.contains(box.topRight())))
                << series << ": " << text.text.toStdString();
        }
    }
    EXPECT_GT(onFace, 0);
}

TEST(ChartScale, RunsFromZeroInRoundSteps) {
    std::mt19937 random(1);
    for (int i = 0; i < 2000; ++i) {
        const int steps = 1 + int(random() % 9);
        std::vector<double> values;
        for (unsigned n = random() % 5; n > 0; --n)
            values.push_back(std::pow(10, int(random() % 18) - 2) * (int(random() % 300) - 20));
        const ChartScale scale = ChartScale::For(values, steps);
        SCOPED_TRACE(testing::Message() << testing::PrintToString(values) << " in " << steps);
        const double most = values.empty() ? 0 : *std::ranges::max_element(values);
        const double least = values.empty() ? 0 : *std::ranges::min_element(values);
        const double slack = scale.step * 1e-6;
        EXPECT_TRUE(scale.min <= std::min(0.0, least) + slack && scale.max >= most - slack);
        EXPECT_LE((scale.max - scale.min) / scale.step, std::max(steps, 2) + 1e-6);
        const double power = std::pow(10, std::floor(std::log10(scale.step) + 1e-9));
        EXPECT_TRUE(std::set({1L, 2L, 5L}).contains(std::lround(scale.step / power)));
        EXPECT_NEAR(scale.Ticks().back(), scale.max, slack);
    }
    const QLocale german(QLocale::German);
    EXPECT_EQ(ChartScale::For(std::vector<double>{0.5}, 5).TickText(0.1, german), "0,1");
    EXPECT_EQ(ChartValueText(12345, german), "12345");
    EXPECT_EQ(ChartValueText(2.5, german), "2,5");
    EXPECT_EQ(ChartValueText(1 / 3.0, QLocale::c()), "0.33");
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
