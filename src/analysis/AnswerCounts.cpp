#include "analysis/AnswerCounts.h"

namespace pollarix {

namespace {

constexpr const char* Choices = "SELECT id, name, responseMatrixGroupID FROM response "
                                "WHERE questionid = ? ORDER BY pos, id";
constexpr const char* Points = "SELECT id, name FROM responsematrix "
                               "WHERE responsematrixgroupid = ? ORDER BY pos, id";
// In two parts: where there is no point, as in most files everywhere, the index knows the range
// that is to be counted, and no row of it is compared with the question.
constexpr const char* ChoiceCount =
    "SELECT (SELECT COUNT(*) FROM respondent_responses WHERE responseid = ?1 "
    "AND responseMatrixID IS NULL AND questionid = ?2) + "
    "(SELECT COUNT(*) FROM respondent_responses WHERE responseid = ?1 "
    "AND responseMatrixID IS NOT NULL AND questionid = ?2)";
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

void AnswerCounts::LookAt(Connection& file) {
    Connection::Moment now = file.Now();
    if (file_ == &file && moment_ == now)
        return;
    file_ = &file;
    moment_ = std::move(now);
    totals_.reset();
    choices_.clear();
    points_.clear();
}

const SummaryTotals& AnswerCounts::Totals() {
    if (!totals_) {
        SummaryTotals totals;
        totals.all = file_->Count("SELECT count(*) FROM respondent");
        totals.manualEntry =
            file_->Count("SELECT count(*) FROM respondent WHERE source='Manual Entry'");
        totals.webBased = file_->Count("SELECT count(*) FROM respondent WHERE source='Web Based'");
        totals.imported = file_->Count("SELECT count(*) FROM respondent WHERE source='Imported'");
        totals_ = totals;
    }
    return *totals_;
}

std::int64_t AnswerCounts::Count(Counts& known, const char* sql, Ids ids) {
    const auto found = known.find(ids);
    if (found != known.end())
        return found->second;
    return known[ids] = file_->Count(sql, {ids.first, ids.second});
}

std::int64_t AnswerCounts::OfChoice(std::int64_t response, std::int64_t question) {
    return Count(choices_, ChoiceCount, {response, question});
}

std::int64_t AnswerCounts::OfPoint(std::int64_t response, std::int64_t point) {
    return Count(points_, PointCount, {response, point});
}

void CheckCounts(Connection& file) {
    for (const char* sql : {Choices, Points})
        file.Execute(sql, {nullptr});
    for (const char* sql : {ChoiceCount, PointCount})
        file.Execute(sql, {nullptr, nullptr});
}

} // namespace pollarix
