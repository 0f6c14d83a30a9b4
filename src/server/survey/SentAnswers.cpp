#include "server/survey/SentAnswers.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>

#include "exchange/CodePage.h"

namespace pollarix::server {

using exchange::Answer;
using exchange::Choice;
using exchange::Kind;
using exchange::Question;
using exchange::Questionnaire;

namespace {

std::optional<std::int32_t> Number(std::string_view text) {
    std::int32_t number = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.empty() || error != std::errc() || stop != text.data() + text.size())
        return std::nullopt;
    return number;
}

// Where the entry of that id is. A form sends its fields in order, so the next one is mostly right
// behind the last.
template <typename Entry>
std::optional<std::size_t> Find(const std::vector<Entry>& entries, std::string_view id,
                                std::size_t from = 0) {
    const std::optional<std::int32_t> number = Number(id);
    for (std::size_t i = 0; number && i < entries.size(); ++i) {
        const std::size_t place = (from + i) % entries.size();
        if (entries[place].id == *number)
            return place;
    }
    return std::nullopt;
}

std::size_t Letters(std::string_view utf8) {
    return static_cast<std::size_t>(std::count_if(utf8.begin(), utf8.end(), [](char c) {
        return (static_cast<unsigned char>(c) & 0xC0U) != 0x80;
    }));
}

// False when the question offers no such answer, or has another one already.
bool TakeValue(const Question& q, std::string_view row, std::string_view value, Answer& answer) {
    switch (q.kind) {
    case Kind::OpenEnded:
        if (!row.empty() || !answer.text.empty())
            return false;
        answer.text = CleanAnswer(value);
        return true;
    case Kind::Check:
    case Kind::Radio: {
        const auto place = Find(q.choices, value);
        if (!row.empty() || !place || (q.kind == Kind::Radio && !answer.ticked.empty()))
            return false;
        const auto at = std::lower_bound(answer.ticked.begin(), answer.ticked.end(), *place);
        if (at != answer.ticked.end() && *at == *place)
            return false;
        answer.ticked.insert(at, *place);
        return true;
    }
    case Kind::Matrix: {
        const auto choice = Find(q.choices, row);
        const auto point = Find(q.scale, value);
        if (!choice || !point || answer.points[*choice] >= 0)
            return false;
        answer.points[*choice] = static_cast<int>(*point);
        return true;
    }
    case Kind::Text:
        break;
    }
    return false;
}

} // namespace

SentAnswers ReadSentAnswers(const Questionnaire& questionnaire, QuestionRange shown,
                            exchange::Answers before,
                            std::span<const std::pair<std::string, std::string>> fields) {
    SentAnswers sent;
    sent.answers = std::move(before);
    const exchange::Answers none = exchange::NoAnswers(questionnaire);
    for (std::size_t i = shown.first; i < shown.last; ++i)
        sent.answers[i] = none[i];
    std::size_t at = shown.first;
    for (const auto& [name, value] : fields) {
        if (!name.starts_with('q'))
            continue;
        const std::string_view id = std::string_view(name).substr(1);
        const std::size_t dot = id.find('.');
        const auto question = Find(questionnaire.questions, id.substr(0, dot), at);
        if (!question || !shown.Holds(*question)) {
            sent.isForeign = true;
            continue;
        }
        at = *question;
        const std::string_view row = dot == std::string_view::npos ? "" : id.substr(dot + 1);
        if (!TakeValue(questionnaire.questions[at], row, value, sent.answers[at]))
            sent.isForeign = true;
    }
    for (std::size_t i = shown.first; i < shown.last; ++i)
        if (Letters(sent.answers[i].text) > LongestAnswer)
            sent.tooLong.push_back(i);
    return sent;
}

std::string CleanAnswer(std::string_view text) {
    std::string clean;
    clean.reserve(text.size());
    while (!text.empty()) {
        const char32_t letter = exchange::TakeLetter(text);
        if (letter == '\r') {
            if (!text.starts_with('\n'))
                clean += '\n';
        } else if (letter == '\n' || letter == '\t' ||
                   (letter >= 0x20 && (letter < 0x7F || letter > 0x9F))) {
            exchange::AppendLetter(clean, letter);
        }
    }
    return clean;
}

bool IsFitAnswer(std::string_view text) {
    return Letters(text) <= LongestAnswer && CleanAnswer(text) == text;
}

} // namespace pollarix::server
