// The kinds of question: what each is called in the file, and in what the five of them differ as
// far as data go. How a kind looks on a screen is the screen's own.
#pragma once

#include <array>
#include <cstdint>

namespace pollarix {

// Codes of clsQ::qType and of the column question.qtype.
namespace kind {
constexpr std::int32_t OpenEnded = 0;
constexpr std::int32_t Check = 1;  // many answers
constexpr std::int32_t Radio = 2;  // one answer
constexpr std::int32_t Matrix = 3; // its responses are the sub questions
constexpr std::int32_t Text = 4;   // instruction text
} // namespace kind

// What a respondent answers with: nothing, a text, one response, any of them, or a point of the
// scale for each.
enum class Shape { None, Text, One, Many, Grid };

struct Kind {
    std::int32_t code;
    bool numbered;
    Shape shape;
};

inline constexpr std::array Kinds = {
    Kind{kind::OpenEnded, true, Shape::Text}, Kind{kind::Check, true, Shape::Many},
    Kind{kind::Radio, true, Shape::One}, Kind{kind::Matrix, true, Shape::Grid},
    Kind{kind::Text, false, Shape::None}};

// A code that only a file from elsewhere can hold counts as a question that nothing answers.
constexpr Kind KindOf(std::int32_t qType) {
    for (const Kind& known : Kinds)
        if (known.code == qType)
            return known;
    return {qType, true, Shape::None};
}

constexpr bool IsNumbered(std::int32_t qType) {
    return KindOf(qType).numbered;
}

constexpr bool HasResponses(std::int32_t qType) {
    const Shape shape = KindOf(qType).shape;
    return shape == Shape::One || shape == Shape::Many || shape == Shape::Grid;
}

} // namespace pollarix
