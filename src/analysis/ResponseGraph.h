// What the chart shows for a row of the summary: how many respondents gave each answer of the row's
// question or, for a matrix, each scale point of the row's sub question.
#pragma once

#include <optional>
#include <vector>

#include "platform/Chart.h"
#include "platform/Database.h"

namespace pollarix {

struct ResponseGraph {
    bool hidden = false; // chart and button are hidden, whatever the table holds
    // None: the chart keeps what it showed.
    std::optional<std::vector<ChartRow>> table;
};

// RowData of the row, and its entry of SummaryKeys (-1 for none). The entry decides which sub
// question of a matrix is drawn; one of another question gives rows without label and value.
ResponseGraph ReadGraph(Connection& file, std::int64_t RowData, std::int16_t Key);

// Entry of the style list, from 0, to the chart's own number.
ChartType ChartTypeOfStyle(int ListIndex);

} // namespace pollarix
