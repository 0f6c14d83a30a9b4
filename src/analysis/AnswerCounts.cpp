#include "analysis/AnswerCounts.h"

namespace pollarix {

namespace {

constexpr const char* Choices = "SELECT id, name, responseMatrixGroupID FROM response "
                                "WHERE questionid = ? ORDER BY pos, id";
constexpr const char* Points = "SELECT id, name FROM responsematrix "
                               "WHERE responsematrixgroupid = ? ORDER BY pos, id";
constexpr const char* ChoiceCount = "SELECT COUNT(*) FROM respondent_responses "
                                    "WHERE responseid = ? AND questionid = ?";
constexpr const char* PointCount = "SELECT COUNT(*) FROM respondent_responses "
                                   "WHERE responseid = ? AND responseMatrixID = ?";

} // namespace

std::vector<Choice> ChoicesOf(Connection& file, std::int64_t question) {
    std::vector<Choice> choices;
    for (Recordset row = file.Execute(Choices, {question}); !row.AtEnd(); row.MoveNext())
        choices.push_back({row.Integer(0), row.NullToString(1),
                           row.IsNull(2) ? std::nullopt : std::optional(row.Integer(2))});
    return choices;
}

std::vector<Point> PointsOf(Connection& file, std::optional<std::int64_t> group) {
    std::vector<Point> points;
    if (!group)
        return points;
    for (Recordset row = file.Execute(Points, {*group}); !row.AtEnd(); row.MoveNext())
        points.push_back({row.Integer(0), row.NullToString(1)});
    return points;
}

std::int64_t CountOfChoice(Connection& file, std::int64_t response, std::int64_t question) {
    return file.Count(ChoiceCount, {response, question});
}

std::int64_t CountOfPoint(Connection& file, std::int64_t response, std::int64_t point) {
    return file.Count(PointCount, {response, point});
}

void CheckCounts(Connection& file) {
    for (const char* sql : {Choices, Points})
        file.Execute(sql, {nullptr});
    for (const char* sql : {ChoiceCount, PointCount})
        file.Execute(sql, {nullptr, nullptr});
}

} // namespace pollarix
