// The choices of a question, the points of a scale, and how many respondents gave each: what the
// summary, the graph and the paper form read of a survey file besides its questions. Nothing here
// knows how it is shown.
#pragma once

#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

#include "platform/database/Database.h"

namespace pollarix {

// A response of a question, or a sub question of a matrix.
struct Choice {
    std::int64_t id = 0; // response.id
    QString name;
    std::optional<std::int64_t> group; // responsematrixgroup.id of a sub question's scale
};

struct Point {
    std::int64_t id = 0; // responsematrix.id
    QString name;
};

// By pos. All throw what the database throws, and TypeMismatch for a value of another kind.
std::vector<Choice> ChoicesOf(Connection& file, std::int64_t question);
std::vector<Point> PointsOf(Connection& file, std::optional<std::int64_t> group); // none for none

// Answers with this response to this question.
std::int64_t CountOfChoice(Connection& file, std::int64_t response, std::int64_t question);
// Answers with this sub question and point. They are not limited to a question: required.
std::int64_t CountOfPoint(Connection& file, std::int64_t response, std::int64_t point);

// Throws what the others would throw for a file that lacks tables or columns, without counting.
void CheckCounts(Connection& file);

} // namespace pollarix
