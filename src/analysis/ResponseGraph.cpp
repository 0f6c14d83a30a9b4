#include "analysis/ResponseGraph.h"

#include <algorithm>

#include "document/Kinds.h"
#include "platform/base/Failure.h"

namespace pollarix {

namespace {

ChartRow RowOf(const QString& name, std::int64_t count) {
    return {' ' + name, static_cast<double>(count)};
}

std::vector<ChartRow> GraphOfChoices(Connection& file, AnswerCounts& counts,
                                     std::int64_t question) {
    std::vector<ChartRow> table;
    for (const Choice& choice : ChoicesOf(file, question))
        table.push_back(RowOf(choice.name, counts.OfChoice(choice.id, question)));
    return table;
}

// The table has a row for each point of the scale of the sub question that was made first, whatever
// the scale of the one that is drawn.
std::optional<std::vector<ChartRow>> GraphOfMatrix(Connection& file, AnswerCounts& counts,
                                                   std::int64_t question, std::int16_t key) {
    const std::vector<Choice> subs = ChoicesOf(file, question);
    if (subs.empty())
        return std::nullopt;
    const auto first = std::ranges::min_element(subs, {}, &Choice::id);
    std::vector<ChartRow> table(PointsOf(file, first->group).size());
    const auto sub = std::ranges::find(subs, key, &Choice::id);
    if (sub == subs.end())
        return table; // the key belongs to another question: the rows stay empty
    const std::vector<Point> points = PointsOf(file, sub->group);
    for (std::size_t i = 0; i < points.size(); ++i) {
        const std::int64_t count = counts.OfPoint(sub->id, points[i].id);
        if (i >= table.size())
            throw Failure(failure::Subscript);
        table[i] = RowOf(points[i].name, count);
    }
    return table;
}

} // namespace

ChartType ChartTypeOfStyle(int ListIndex) {
    if (ListIndex == 10)
        return ChartType::Pie2D;
    if (ListIndex == 11)
        return ChartType::XY2D;
    return static_cast<ChartType>(ListIndex);
}

GraphQuestion QuestionOfGraph(Connection& file, std::int64_t RowData) {
    GraphQuestion question;
    const Recordset response =
        file.Execute("SELECT questionid FROM response WHERE id = ?", {RowData});
    if (response.AtEnd()) {
        question.shows = false;
        return question;
    }
    question.id = response.Integer(0);
    const Recordset row = file.Execute("SELECT qtype FROM question WHERE id = ?", {*question.id});
    if (!row.AtEnd()) {
        question.qtype = row.Integer(0);
        question.shows = question.qtype != kind::OpenEnded && question.qtype != kind::Text;
    }
    return question;
}

std::optional<std::vector<ChartRow>> ReadGraph(Connection& file, AnswerCounts& counts,
                                               std::int64_t question, std::int64_t qtype,
                                               std::int16_t Key) {
    if (qtype == kind::Matrix)
        return GraphOfMatrix(file, counts, question, Key);
    return GraphOfChoices(file, counts, question);
}

} // namespace pollarix
