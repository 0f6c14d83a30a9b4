#include "statistics/RespondentReader.h"

#include <algorithm>

#include "document/clsQ.h"

namespace pollarix::statistics {

namespace {

std::optional<QString> TextOrNone(const std::optional<QByteArray>& utf8) {
    return utf8 ? std::optional(TextOfUtf8(*utf8)) : std::nullopt;
}

} // namespace

RespondentReader::RespondentReader(Connection& survey, const SurveyVariables& variables)
    : variables_(variables), rows_(survey), codes_(variables.variables.size()),
      texts_(variables.variables.size()), answered_(variables.questions.size()),
      asked_(variables.questions.size()), jumped_(variables.questions.size()) {
    for (std::size_t i = 0; i < variables.questions.size(); ++i)
        questionPlaces_.insert(variables.questions[i].id, static_cast<int>(i));
}

bool RespondentReader::Next() {
    if (!rows_.NextRespondent())
        return false;
    std::fill(codes_.begin(), codes_.end(), LeftEmpty);
    std::fill(answered_.begin(), answered_.end(), 0);
    id_ = rows_.Id();
    date_ = TextOrNone(rows_.SubmittedDate());
    source_ = TextOrNone(rows_.Source());
    while (rows_.NextAnswer())
        ReadAnswer();
    CompleteTicks();
    if (variables_.hasJumps)
        MarkNotAsked();
    return true;
}

void RespondentReader::ReadAnswer() {
    const std::optional<std::int64_t> answered = rows_.QuestionId();
    const int place = answered ? questionPlaces_.value(*answered, -1) : -1;
    if (place < 0)
        return;
    const SurveyQuestion& question = variables_.questions[place];
    const std::size_t first = question.firstVariable;
    if (question.qtype == kind::OpenEnded) {
        // The first stored counts, also when it is empty.
        if (answered_[place])
            return;
        answered_[place] = 1;
        texts_[first] = TextOfUtf8(rows_.SimpleResponse().value_or(QByteArray()));
        if (!texts_[first].isEmpty())
            codes_[first] = 0;
        return;
    }
    const std::optional<std::int64_t> chosen = rows_.ResponseId();
    if (!chosen)
        return;
    const auto response = question.responses.constFind(*chosen);
    if (response == question.responses.cend())
        return;
    if (question.qtype == kind::Check) {
        codes_[first + *response] = 1;
    } else if (question.qtype == kind::Radio) {
        if (codes_[first] != LeftEmpty)
            return;
        codes_[first] = *response;
    } else {
        const auto& points = question.points[*response];
        const std::optional<std::int64_t> given = rows_.PointId();
        const auto point = given ? points.constFind(*given) : points.cend();
        if (point == points.cend() || codes_[first + *response] != LeftEmpty)
            return;
        codes_[first + *response] = *point;
    }
    answered_[place] = 1;
}

void RespondentReader::CompleteTicks() {
    for (std::size_t i = 0; i < answered_.size(); ++i) {
        const SurveyQuestion& question = variables_.questions[i];
        if (!answered_[i] || question.qtype != kind::Check)
            continue;
        const auto begin = codes_.begin() + static_cast<std::ptrdiff_t>(question.firstVariable);
        std::replace(begin, begin + static_cast<std::ptrdiff_t>(question.variableCount), LeftEmpty,
                     Code{0});
    }
}

void RespondentReader::MarkNotAsked() {
    asked_ = answered_;
    std::fill(jumped_.begin(), jumped_.end(), 0);
    // Ends: between two jumps the walk only goes on, and each question's jump is followed once.
    for (std::size_t place = 0; place < asked_.size();) {
        asked_[place] = 1;
        const SurveyQuestion& question = variables_.questions[place];
        const Code code = question.jumps.empty() ? LeftEmpty : codes_[question.firstVariable];
        const int jump = IsAnswer(code) ? question.jumps[code] : SurveyQuestion::NoJump;
        if (jump >= 0 && !jumped_[place]) {
            jumped_[place] = 1;
            place = static_cast<std::size_t>(jump);
        } else {
            ++place;
        }
    }
    for (std::size_t i = 0; i < asked_.size(); ++i) {
        const SurveyQuestion& question = variables_.questions[i];
        if (asked_[i])
            continue;
        const auto begin = codes_.begin() + static_cast<std::ptrdiff_t>(question.firstVariable);
        std::fill_n(begin, question.variableCount, NotAsked);
    }
}

} // namespace pollarix::statistics
