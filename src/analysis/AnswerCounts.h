// The choices of a question, the points of a scale, and how many respondents gave each: what the
// summary, the graph and the paper form read of a survey file besides its questions. Nothing here
// knows how it is shown.
#pragma once

#include <QString>

#include <cstdint>
#include <optional>
#include <unordered_map>
#include <utility>
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

// By pos. All here throw what the database throws, and TypeMismatch for a value of another kind.
std::vector<Choice> ChoicesOf(Connection& file, std::int64_t question);
std::vector<Point> PointsOf(Connection& file, std::optional<std::int64_t> group); // none for none

// How many respondents there are, by where their answers came from. Those from the web by this
// program's own import ("Web") count in the first number only.
struct SummaryTotals {
    std::int64_t all = 0;
    std::int64_t manualEntry = 0;
    std::int64_t webBased = 0;
    std::int64_t imported = 0;
};

// Counts, each of which is read once as long as the file's content stays as it is.
class AnswerCounts {
  public:
    // To be called before each look at a file: what was counted is forgotten if this is another
    // file or its content has changed since.
    void LookAt(Connection& file);

    // Of the file last looked at, which must still be open.
    const SummaryTotals& Totals();
    // Answers with this response to this question.
    std::int64_t OfChoice(std::int64_t response, std::int64_t question);
    // Answers with this sub question and point. They are not limited to a question: required.
    std::int64_t OfPoint(std::int64_t response, std::int64_t point);

  private:
    using Ids = std::pair<std::int64_t, std::int64_t>;
    struct Hash {
        std::size_t operator()(const Ids& ids) const {
            return std::hash<std::int64_t>()(ids.first * 1'000'003 + ids.second);
        }
    };
    using Counts = std::unordered_map<Ids, std::int64_t, Hash>;
    std::int64_t Count(Counts& known, const char* sql, Ids ids);

    Connection* file_ = nullptr;
    Connection::Moment moment_;
    std::optional<SummaryTotals> totals_;
    Counts choices_;
    Counts points_;
};

// Throws what the others would throw for a file that lacks tables or columns, without counting.
void CheckCounts(Connection& file);

} // namespace pollarix
