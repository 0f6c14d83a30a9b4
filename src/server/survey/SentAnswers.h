// Takes answers out of the fields that a form sends, and checks them against the questions that
// were asked. Names of fields are "q12" for question 12, and "q14.50" for its sub question 50; the
// values are ids, or the text.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "exchange/Questionnaire.h"

namespace pollarix::server {

constexpr std::size_t LongestAnswer = 10000; // letters of an open ended answer

// Questions by their places, up to but not including last.
struct QuestionRange {
    std::size_t first = 0;
    std::size_t last = 0;
    bool Holds(std::size_t question) const { return question >= first && question < last; }
};

struct SentAnswers {
    exchange::Answers answers;        // also a text that is too long, so that it can be shown again
    std::vector<std::size_t> tooLong; // the questions whose text is, rising
    bool isForeign = false;           // the form's own buttons and boxes can't have sent that
};

// The answers to the questions of the range become what the fields say, a box that isn't among them
// being unticked. The others stay as they were before.
SentAnswers ReadSentAnswers(const exchange::Questionnaire& questionnaire, QuestionRange shown,
                            exchange::Answers before,
                            std::span<const std::pair<std::string, std::string>> fields);

// Valid UTF-8 with "\n" between lines and no other control characters than tabs.
std::string CleanAnswer(std::string_view text);
// What comes out of the above, and not too long.
bool IsFitAnswer(std::string_view text);

} // namespace pollarix::server
