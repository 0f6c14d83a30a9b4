// Tables and styles that the tests of the chart share.
#pragma once

#include "platform/charts/Chart.h"

namespace pollarix::test {

inline std::vector<ChartType> AllChartTypes() {
    using enum ChartType;
    return {Bar3D,  Bar2D,  Line3D,        Line2D,        Area3D, Area2D,
            Step3D, Step2D, Combination3D, Combination2D, Pie2D,  XY2D};
}

inline std::string ChartTypeName(ChartType type) {
    return "Type" + std::to_string(int(type));
}

// Values that jump, so that slopes and neighbours get in the way of labels; 0 is among them.
inline std::vector<ChartRow> ShortRows(int count) {
    std::vector<ChartRow> rows;
    for (int i = 0; i < count; ++i)
        rows.push_back({QString(" Answer %1").arg(i + 1), double((i * 37 + 5) % 59)});
    return rows;
}

inline std::vector<ChartRow> LongRows(int count) {
    std::vector<ChartRow> rows;
    for (int i = 0; i < count; ++i)
        rows.push_back({QString(" %1 of all the long answers that people write when nobody "
                                "stops them")
                            .arg(i + 1),
                        double((i * 83 + 7) % 241)});
    return rows;
}

} // namespace pollarix::test

namespace pollarix {

inline void PrintTo(ChartType type, std::ostream* out) {
    *out << test::ChartTypeName(type);
}

} // namespace pollarix
