// What the chart shows for a row of the summary: how many respondents gave each answer of the row's
// question or, for a matrix, each scale point of the row's sub question.
#pragma once

#include <optional>
#include <vector>

#include "analysis/AnswerCounts.h"
#include "platform/charts/Chart.h"
#include "platform/database/Database.h"

namespace pollarix {

struct GraphQuestion {
    std::optional<std::int64_t> id; // none: there is nothing to draw
    std::int64_t qtype = 0;
    // Whether chart and button are shown; none leaves them as they are.
    std::optional<bool> shows;
};

// The question that the row with this RowData belongs to.
GraphQuestion QuestionOfGraph(Connection& file, std::int64_t RowData);

// The chart's table; none leaves what it showed. Key is the row's entry of SummaryKeys (-1 for
// none). It decides which sub question of a matrix is drawn; one of another question gives rows
// without label and value.
std::optional<std::vector<ChartRow>> ReadGraph(Connection& file, AnswerCounts& counts,
                                               std::int64_t question, std::int64_t qtype,
                                               std::int16_t Key);

// Entry of the style list, from 0, to the chart's own number.
ChartType ChartTypeOfStyle(int ListIndex);

} // namespace pollarix
