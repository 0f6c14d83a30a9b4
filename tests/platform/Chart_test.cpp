// The chart as a person meets it, in each style: texts that can be read, marks that follow the
// values, tips, description, menu. The styles themselves, picture and clipboard are walked through
// on the Analyze screen.
#include "platform/charts/Chart.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QMenu>
#include <QTest>
#include <QTextDocumentFragment>
#include <QToolTip>

#include <cmath>
#include <random>
#include <set>

#include "platform/base/Handlers.h"
#include "platform/charts/ChartPlan.h"

using namespace pollarix;

namespace {

using Rows = std::vector<ChartRow>;

// Values that jump, so that slopes and neighbours get in the way of labels; 0 is among them.
Rows ManyRows(int count, const char* label) {
    Rows rows;
    for (int i = 0; i < count; ++i)
        rows.push_back({QString(label).arg(i + 1), double((i * 37 + 5) % 59)});
    return rows;
}
constexpr const char* Short = " Answer %1";
constexpr const char* Long = " %1 of all the long answers that people write when nobody stops them";

ChartPlan PlanOf(ChartType type, Rows rows, const QSizeF& size = {640, 400}) {
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

// Grid, walls and words are grey: colour is what the values are drawn in.
int ColourOf(QRgb pixel) {
    return std::max({qRed(pixel), qGreen(pixel), qBlue(pixel)}) -
           std::min({qRed(pixel), qGreen(pixel), qBlue(pixel)});
}
bool Coloured(QRgb pixel) {
    return ColourOf(pixel) > 40;
}

struct ShownChart : Chart {
    ShownChart(ChartType type, Rows rows) {
        resize(640, 400);
        setFont(QFont("DejaVu Sans", 9));
        SetChartType(type);
        SetChartData(std::move(rows));
    }
    QString TipAt(const QPointF& position) {
        QHelpEvent event(QEvent::ToolTip, position.toPoint(), mapToGlobal(position.toPoint()));
        QApplication::sendEvent(this, &event);
        return QTextDocumentFragment::fromHtml(QToolTip::text()).toPlainText();
    }
};

class ChartStyle : public testing::TestWithParam<ChartType> {};

} // namespace

TEST_P(ChartStyle, EachTextIsWholeAndNoneOverlapsAnother) {
    const Rows mostlyZeros = {{" A", 0}, {" B", 0}, {" C", 9}, {" D", 0}};
    for (const QSizeF size : {QSizeF(200, 150), QSizeF(320, 240), QSizeF(640, 400),
                              QSizeF(800, 430), QSizeF(380, 700), QSizeF(1900, 950)})
        for (const Rows& rows :
             {ManyRows(1, Short), ManyRows(2, Short), ManyRows(5, Short), ManyRows(12, Short),
              ManyRows(30, Short), ManyRows(2, Long), ManyRows(5, Long), ManyRows(30, Long),
              ManyRows(300, Long), mostlyZeros}) {
            SCOPED_TRACE(testing::Message()
                         << rows.size() << " at " << size.width() << "x" << size.height());
            const ChartPlan plan = PlanOf(GetParam(), rows, size);
            const QRectF whole = QRectF(QPointF(), size).adjusted(-1, -1, 1, 1);
            std::set<int> named, valued;
            for (std::size_t i = 0; i < plan.texts.size(); ++i) {
                const ChartText& text = plan.texts[i];
                EXPECT_TRUE(whole.contains(text.Outline().boundingRect()))
                    << text.text.toStdString();
                for (std::size_t j = i + 1; j < plan.texts.size(); ++j)
                    EXPECT_FALSE(Overlap(text, plan.texts[j]))
                        << text.text.toStdString() << " / " << plan.texts[j].text.toStdString();
                if (text.row < 0)
                    continue;
                const bool isValue =
                    text.text == plan.ValueText(text.row) && text.kind != ChartText::Kind::Category;
                if (isValue || text.elided ||
                    QString(text.text).replace('\n', ' ').contains(plan.rows[text.row].label))
                    (isValue ? valued : named).insert(text.row);
            }
            // At a common size nothing is left out.
            EXPECT_TRUE(size.height() != 430 || rows.size() == 300 ||
                        (named.size() == rows.size() && valued.size() == rows.size()));
        }
}

TEST_P(ChartStyle, DrawsTheValuesWhereTheMouseFindsThem) {
    ShownChart chart(GetParam(), {});
    for (const QSize size : {QSize(1, 1), QSize(900, 30), QSize(640, 400)}) {
        const QImage empty = chart.Picture(size);
        for (int y = 0; y < size.height(); ++y)
            for (int x = 0; x < size.width(); ++x)
                ASSERT_FALSE(Coloured(empty.pixel(x, y)));
    }
    const Rows rows = {{" a", 4}, {" b", 9}, {" c", 1}, {" d", 9}, {" e", 0}};
    chart.SetChartData(rows);
    EXPECT_EQ(chart.Picture({1, 1}).size(), QSize(1, 1));
    const QImage image = chart.Picture(chart.size());
    const ChartPlan plan = PlanOf(GetParam(), rows);
    for (const ChartSlice& slice : plan.slices) {
        const double middle = (slice.start + slice.span / 2) * M_PI / 180;
        EXPECT_NEAR(slice.span, rows[std::size_t(slice.row)].value / 23 * 360, 1e-9);
        const QPointF within =
            plan.centre + QPointF(std::sin(middle), -std::cos(middle)) * plan.radius * 0.7;
        EXPECT_EQ(image.pixelColor(within.toPoint()), slice.colour);
        EXPECT_EQ(plan.RowAt(within), slice.row);
    }
    EXPECT_EQ(plan.RowAt({2, 2}), -1);
    for (int row = 0; row < 4 && !plan.IsPie(); ++row) {
        const double value = plan.rows[std::size_t(row)].value;
        const QPointF peak = plan.At(row, value, BodySlab(plan.type).near);
        bool onPeak = false;
        for (int y = -1; y <= 2; ++y)
            onPeak = onPeak || Coloured(image.pixel(peak.toPoint() + QPoint(0, y)));
        EXPECT_TRUE(onPeak) << "row " << row;
        EXPECT_EQ(plan.RowAt(peak), row);
        const QPoint little(0, 6);
        const int edge = qGray(image.pixel(peak.toPoint() - little)) -
                         qGray(image.pixel(peak.toPoint() + little));
        EXPECT_TRUE(!plan.HasBars() || !plan.IsSolid() || edge > 20) << "row " << row;
        // Bars, areas and steps reach down to the floor, lines and points do not.
        const bool reaches =
            plan.HasBars() || (plan.type >= ChartType::Area3D && plan.type <= ChartType::Step2D);
        const QPointF below = plan.At(row, value / 2, BodySlab(plan.type).near);
        EXPECT_TRUE(value < 9 || (ColourOf(image.pixel(below.toPoint())) > 10) == reaches);
        // Over the point nothing stands, half way up to the largest value.
        const QPointF above = plan.At(row, (value + 9) / 2);
        EXPECT_TRUE(value == 9 || (!Coloured(image.pixel(above.toPoint())) &&
                                   (row == 0 || plan.RowAt(above) == -1)))
            << "row " << row;
    }
}

INSTANTIATE_TEST_SUITE_P(Styles, ChartStyle,
                         testing::Values(ChartType::Bar3D, ChartType::Bar2D, ChartType::Line3D,
                                         ChartType::Line2D, ChartType::Area3D, ChartType::Area2D,
                                         ChartType::Step3D, ChartType::Step2D,
                                         ChartType::Combination3D, ChartType::Combination2D,
                                         ChartType::Pie2D, ChartType::XY2D),
                         [](const auto& info) { return "Type" + std::to_string(int(info.param)); });

// White letters are for the face; half on the wall they could not be read.
TEST(ChartPlan, ValuesInTheLettersOfAnAreaStandOnItWhole) {
    std::mt19937 dice(7);
    int onFace = 0;
    for (int series = 0; series < 200; ++series) {
        Rows rows;
        for (int i = 0; i < 3 + series % 23; ++i)
            rows.push_back({" A", double(dice() % (dice() % 3 == 0 ? 20 : 1000))});
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
        std::vector<double> values = {0};
        for (unsigned n = random() % 5; n > 0; --n)
            values.push_back(std::pow(10, int(random() % 18) - 2) * (int(random() % 300) - 20));
        const ChartScale scale = ChartScale::For(values, steps);
        SCOPED_TRACE(testing::Message() << testing::PrintToString(values) << " in " << steps);
        const auto [least, most] = std::ranges::minmax(values);
        const double slack = scale.step * 1e-6;
        EXPECT_TRUE(scale.min <= least + slack && scale.max >= most - slack);
        EXPECT_LE((scale.max - scale.min) / scale.step, std::max(steps, 2) + 1e-6);
        const double power = std::pow(10, std::floor(std::log10(scale.step) + 1e-9));
        EXPECT_TRUE(std::set({1L, 2L, 5L}).contains(std::lround(scale.step / power)));
        EXPECT_NEAR(scale.Ticks().back(), scale.max, slack);
    }
    const QLocale german(QLocale::German);
    EXPECT_EQ(ChartScale::For(std::vector<double>{0.5}, 5).TickText(0.1, german), "0,1");
    EXPECT_EQ(ChartValueText(12345, german), "12345");
    EXPECT_EQ(ChartValueText(2.5, german), "2,5");
}

TEST(Chart, TellsItsRowsByTipAndDescription) {
    const Rows rows = {{" <b>Leek</b> & co", 8}, {" Onion", 0}};
    ShownChart bars(ChartType::Bar3D, {});
    EXPECT_EQ(bars.accessibleDescription(), "No answers to show");
    bars.SetChartData(rows);
    EXPECT_EQ(bars.accessibleDescription(), "2 answers. <b>Leek</b> & co 8, Onion 0.");
    const ChartPlan plan = PlanOf(ChartType::Bar3D, rows);
    EXPECT_EQ(bars.TipAt(plan.At(0, 4, 0.2)), "<b>Leek</b> & co: 8");
    EXPECT_EQ(bars.TipAt(plan.At(1, 0, 0.2)), "Onion: 0");
    bars.TipAt(plan.At(1, 7, 0.2));
    EXPECT_TRUE(QTest::qWaitFor([] { return !QToolTip::isVisible(); })) << "nothing stands there";
}

TEST(Chart, AMenuWhoseSavingFailsTellsIt) {
    ShownChart chart(ChartType::Bar2D, ManyRows(5, Short));
    int reported = 0;
    SetFailureReporter([&reported](const Failure& failure) { reported = failure.Number(); });
    chart.SavePicture = [](const QImage&) { throw Failure(failure::PathOrFileAccess); };
    QContextMenuEvent event(QContextMenuEvent::Keyboard, {9, 9}, chart.mapToGlobal(QPoint(9, 9)));
    QApplication::sendEvent(&chart, &event);
    chart.findChild<QMenu*>()->actions().first()->trigger();
    SetFailureReporter({});
    EXPECT_EQ(reported, failure::PathOrFileAccess);
}
