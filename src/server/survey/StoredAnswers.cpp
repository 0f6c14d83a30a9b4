#include "server/survey/StoredAnswers.h"

#include <charconv>

#include "server/survey/SentAnswers.h"

namespace pollarix::server {

using exchange::Answer;
using exchange::Answers;
using exchange::Choice;
using exchange::Kind;
using exchange::Question;
using exchange::Questionnaire;

namespace {

std::string Escaped(std::string_view text) {
    std::string escaped;
    escaped.reserve(text.size());
    for (const char c : text) {
        if (c == '\\')
            escaped += "\\\\";
        else if (c == '\n')
            escaped += "\\n";
        else if (c == ';')
            escaped += "\\s";
        else
            escaped += c;
    }
    return escaped;
}

std::string Unescaped(std::string_view escaped) {
    std::string text;
    text.reserve(escaped.size());
    for (std::size_t i = 0; i < escaped.size(); ++i) {
        if (escaped[i] != '\\' || i + 1 == escaped.size()) {
            text += escaped[i];
            continue;
        }
        const char mark = escaped[++i];
        text += mark == 'n' ? '\n' : mark == 's' ? ';' : mark;
    }
    return text;
}

// Takes what stands before the mark off the text, and the mark with it.
std::string_view Take(std::string_view& text, char mark) {
    const std::size_t end = text.find(mark);
    const std::string_view taken = text.substr(0, end);
    text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    return taken;
}

// -1 when there is no such id.
int PlaceOf(const std::vector<Choice>& choices, std::string_view id) {
    std::int32_t number = 0;
    const auto [stop, error] = std::from_chars(id.data(), id.data() + id.size(), number);
    if (error != std::errc() || stop != id.data() + id.size())
        return -1;
    for (std::size_t i = 0; i < choices.size(); ++i)
        if (choices[i].id == number)
            return static_cast<int>(i);
    return -1;
}

bool ReadValue(const Question& q, std::string_view value, Answer& answer) {
    if (q.kind == Kind::OpenEnded) {
        answer.text = Unescaped(value);
        return IsFitAnswer(answer.text);
    }
    while (!value.empty()) {
        std::string_view item = Take(value, ',');
        const int choice = PlaceOf(q.choices, Take(item, ':'));
        if (choice < 0)
            return false;
        if (q.kind == Kind::Matrix) {
            const int point = PlaceOf(q.scale, item);
            if (point < 0)
                return false;
            answer.points[static_cast<std::size_t>(choice)] = point;
        } else {
            const auto place = static_cast<std::size_t>(choice);
            if (!answer.ticked.empty() && answer.ticked.back() >= place)
                return false;
            answer.ticked.push_back(place);
        }
    }
    return q.kind != Kind::Radio || answer.ticked.size() == 1;
}

} // namespace

std::string StoredAnswers(const Questionnaire& questionnaire, const Answers& answers) {
    std::string stored;
    for (std::size_t i = 0; i < questionnaire.questions.size(); ++i) {
        const Question& q = questionnaire.questions[i];
        const Answer& answer = answers.at(i);
        std::string value = Escaped(answer.text);
        const auto separate = [&] {
            if (!value.empty())
                value += ',';
        };
        for (const std::size_t place : answer.ticked) {
            separate();
            value += std::to_string(q.choices.at(place).id);
        }
        for (std::size_t row = 0; row < answer.points.size(); ++row) {
            if (answer.points[row] < 0)
                continue;
            separate();
            value += std::to_string(q.choices.at(row).id) + ':' +
                     std::to_string(q.scale.at(static_cast<std::size_t>(answer.points[row])).id);
        }
        if (value.empty())
            continue;
        if (!stored.empty())
            stored += ';';
        stored += std::to_string(q.id) + '=' + value;
    }
    return stored;
}

std::optional<Answers> ReadStoredAnswers(const Questionnaire& questionnaire,
                                         std::string_view stored) {
    Answers answers = exchange::NoAnswers(questionnaire);
    std::size_t next = 0; // the questions come in their order
    for (std::string_view rest = stored; !rest.empty();) {
        std::string_view value = Take(rest, ';');
        const std::string_view id = Take(value, '=');
        while (next < questionnaire.questions.size() &&
               std::to_string(questionnaire.questions[next].id) != id)
            ++next;
        if (next == questionnaire.questions.size() ||
            !ReadValue(questionnaire.questions[next], value, answers[next]))
            return std::nullopt;
        ++next;
    }
    // Written again it has to be the same: that tells doubled, turned round and half values.
    if (StoredAnswers(questionnaire, answers) != stored)
        return std::nullopt;
    return answers;
}

} // namespace pollarix::server
