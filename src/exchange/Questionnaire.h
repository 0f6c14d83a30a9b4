// A survey as it stands in the document that the program publishes, and one respondent's answers to
// it. Plain values; texts are UTF-8 with "\n" between lines.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace pollarix::exchange {

// The numbers are those of both documents.
enum class Kind { OpenEnded = 0, Check = 1, Radio = 2, Matrix = 3, Text = 4 };

// One of a question's responses, or a point of its scale.
struct Choice {
    std::int32_t id = 0;
    std::string text;
};

struct Question {
    std::int32_t id = 0;
    Kind kind = Kind::OpenEnded;
    std::string text;
    std::string number;          // shown before the text; an instruction text's isn't shown
    std::int32_t rows = 0;       // of the box for an open ended answer, as the author left it
    std::vector<Choice> choices; // of Check and Radio; the sub questions of Matrix
    std::vector<Choice> scale;   // of Matrix
};

struct Questionnaire {
    std::vector<Question> questions;
};

// What was answered to one question. Places count from 0.
struct Answer {
    std::string text; // OpenEnded
    std::vector<std::size_t>
        ticked;              // Check, Radio: places in choices, rising; Radio has at most one
    std::vector<int> points; // Matrix: for each choice the place in scale, -1 for none

    bool operator==(const Answer&) const = default;
};

// One for each question, in its order.
using Answers = std::vector<Answer>;

// Answers with nothing in them, of the right shape.
inline Answers NoAnswers(const Questionnaire& questionnaire) {
    Answers answers(questionnaire.questions.size());
    for (std::size_t i = 0; i < answers.size(); ++i)
        if (questionnaire.questions[i].kind == Kind::Matrix)
            answers[i].points.assign(questionnaire.questions[i].choices.size(), -1);
    return answers;
}

} // namespace pollarix::exchange
