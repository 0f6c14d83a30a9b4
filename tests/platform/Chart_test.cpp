// The chart as a person meets it: what is painted, tips, menu, clipboard, description.
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

#include "platform/ChartTestRows.h"
#include "platform/base/Handlers.h"
#include "platform/charts/ChartPlan.h"

using namespace pollarix;
using namespace pollarix::test;

namespace {

const QSize Size(640, 400);

// Grid, walls and words are grey: colour is what the values are drawn in.
bool Coloured(QRgb pixel) {
    const QColor colour = QColor(pixel);
    return std::max({colour.red(), colour.green(), colour.blue()}) -
               std::min({colour.red(), colour.green(), colour.blue()}) >
           40;
}

int Count(const QImage& image, bool (*wanted)(QRgb)) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            count += wanted(image.pixel(x, y));
    return count;
}

struct ShownChart {
    explicit ShownChart(ChartType type, std::vector<ChartRow> rows) {
        chart.resize(Size);
        chart.setFont(QFont("DejaVu Sans", 9));
        chart.SetChartType(type);
        chart.SetChartData(std::move(rows));
    }

    ChartPlan Plan() const {
        return PlanChart({chart.chartType(), chart.ChartData(), QSizeF(chart.size()), chart.font(),
                          chart.palette(), chart.locale()});
    }

    QString TipAt(const QPointF& position) {
        QHelpEvent event(QEvent::ToolTip, position.toPoint(),
                         chart.mapToGlobal(position.toPoint()));
        QApplication::sendEvent(&chart, &event);
        return QTextDocumentFragment::fromHtml(QToolTip::text()).toPlainText();
    }

    QMenu* OpenMenu() {
        const QPoint middle = chart.rect().center();
        QContextMenuEvent event(QContextMenuEvent::Keyboard, middle, chart.mapToGlobal(middle));
        QApplication::sendEvent(&chart, &event);
        return chart.findChild<QMenu*>();
    }

    Chart chart;
};

} // namespace

class ChartStyle : public testing::TestWithParam<ChartType> {};

TEST_P(ChartStyle, PaintsTheValuesAndNothingForAnEmptyTable) {
    ShownChart shown(GetParam(), {});
    EXPECT_EQ(Count(shown.chart.Picture(Size), Coloured), 0);
    EXPECT_EQ(shown.Plan().texts.at(0).text, "No answers to show");
    shown.chart.SetChartData({{" a", 3}, {" b", 12}, {" c", 7}, {" d", 12}, {" e", 0}});
    const QImage image = shown.chart.Picture(Size);
    EXPECT_EQ(image.size(), Size);
    EXPECT_GT(Count(image, Coloured), 250);

    const ChartPlan plan = shown.Plan();
    const ChartSlab slab = BodySlab(plan.type);
    for (const ChartSlice& slice : plan.slices) {
        const double middle = (slice.start + slice.span / 2) * M_PI / 180;
        const QPointF within =
            plan.centre + QPointF(std::sin(middle), -std::cos(middle)) * plan.radius * 0.7;
        EXPECT_EQ(image.pixelColor(within.toPoint()), slice.colour);
    }
    for (int row = 0; row < 4 && !plan.IsPie(); ++row) {
        const double value = plan.rows[std::size_t(row)].value;
        const QPoint peak = plan.At(row, value, slab.near).toPoint();
        bool onPeak = false;
        for (int y = peak.y() - 1; y <= peak.y() + 2; ++y)
            onPeak = onPeak || Coloured(image.pixel(peak.x(), y));
        EXPECT_TRUE(onPeak) << "row " << row;
        // Over the point nothing stands, half way up to the largest value.
        if (value < 12) {
            EXPECT_FALSE(Coloured(image.pixel(plan.At(row, (value + 12) / 2).toPoint())))
                << "row " << row;
        }
    }
}

TEST_P(ChartStyle, RedrawsAtAnySizeWhileStylesAndTablesChange) {
    ShownChart shown(GetParam(), {});
    const auto objects = shown.chart.findChildren<QObject*>().size();
    const double nan = std::nan("");
    for (const QSize size : {QSize(1, 1), QSize(30, 400), QSize(200, 150), QSize(900, 60)})
        for (ChartType type : {GetParam(), ChartType::Pie2D, ChartType::Bar3D, GetParam()})
            for (const std::vector<ChartRow>& rows :
                 {ShortRows(30), LongRows(3), std::vector<ChartRow>{{"", nan}, {" x", -4}},
                  std::vector<ChartRow>{}}) {
                shown.chart.resize(size);
                shown.chart.SetChartType(type);
                shown.chart.SetChartData(rows);
                EXPECT_EQ(shown.chart.grab().toImage().size(), size);
            }
    EXPECT_EQ(shown.chart.findChildren<QObject*>().size(), objects);
}

INSTANTIATE_TEST_SUITE_P(Styles, ChartStyle, testing::ValuesIn(AllChartTypes()),
                         [](const auto& info) { return ChartTypeName(info.param); });

TEST(Chart, TipsNameTheRowUnderTheMouse) {
    ShownChart bars(ChartType::Bar3D, {{" <b>Leek</b> & co", 8}, {" Onion", 0}, {" Tomato", 3}});
    const ChartPlan plan = bars.Plan();
    EXPECT_EQ(bars.TipAt(plan.At(0, 4, 0.2)), "<b>Leek</b> & co: 8");
    EXPECT_EQ(bars.TipAt(plan.At(1, 0, 0.2)), "Onion: 0");
    EXPECT_EQ(bars.TipAt(plan.At(2, 2, 0.2)), "Tomato: 3");
    bars.TipAt(plan.At(1, 7, 0.2));
    EXPECT_TRUE(QTest::qWaitFor([] { return !QToolTip::isVisible(); })) << "nothing stands there";
}

TEST(Chart, TellsItsDataToAScreenReader) {
    ShownChart shown(ChartType::Pie2D, {});
    EXPECT_EQ(shown.chart.accessibleDescription(), "No answers to show");
    shown.chart.SetChartData({{" Tomato", 12}, {" Onion", 3}});
    EXPECT_EQ(shown.chart.accessibleDescription(), "2 answers. Tomato 12, Onion 3.");
}

// What the entries do is walked through where the picture is saved.
TEST(Chart, AMenuWhoseSavingFailsTellsIt) {
    ShownChart shown(ChartType::Bar2D, ShortRows(5));
    EXPECT_FALSE(shown.OpenMenu()->actions().first()->isEnabled());
    delete shown.chart.findChild<QMenu*>();
    int reported = 0;
    SetFailureReporter([&reported](const Failure& failure) { reported = failure.Number(); });
    shown.chart.SavePicture = [](const QImage&) { throw Failure(failure::PathOrFileAccess); };
    shown.OpenMenu()->actions().first()->trigger();
    SetFailureReporter({});
    EXPECT_EQ(reported, failure::PathOrFileAccess);
}
