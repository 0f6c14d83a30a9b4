#include "statistics/RespondentReader.h"

#include <algorithm>

#include "document/AnswerRows.h"
#include "document/clsQ.h"

namespace pollarix::statistics {

using namespace answer_rows;

RespondentReader::RespondentReader(Connection& survey, const SurveyVariables& variables)
    : variables_(variables), rows_(survey.Execute(AllAnswers)), codes_(variables.variables.size()),
      texts_(variables.variables.size()), answered_(variables.questions.size()),
      asked_(variables.questions.size()), jumped_(variables.questions.size()) {
    for (std::size_t i = 0; i < variables.questions.size(); ++i)
        questionPlaces_.insert(variables.questions[i].id, static_cast<int>(i));
}

bool RespondentReader::Next() {
    if (rows_.AtEnd())
        return false;
    std::fill(codes_.begin(), codes_.end(), LeftEmpty);
    std::fill(answered_.begin(), answered_.end(), 0);
    id_ = rows_.Integer(Field::Id);
    date_ = TextOrNull(rows_, Field::SubmittedDate);
    source_ = TextOrNull(rows_, Field::Source);
    do {
        if (!rows_.IsNull(AnswerId))
            ReadAnswer();
        rows_.MoveNext();
    } while (!rows_.AtEnd() && rows_.Integer(Field::Id) == id_);
    CompleteTicks();
    if (variables_.hasJumps)
        MarkNotAsked();
    return true;
}

void RespondentReader::ReadAnswer() {
    const int place =
        rows_.IsNull(QuestionId) ? -1 : questionPlaces_.value(rows_.Integer(QuestionId), -1);
    if (place < 0)
        return;
    const SurveyQuestion& question = variables_.questions[place];
    const std::size_t first = question.firstVariable;
    if (question.qtype == kind::OpenEnded) {
        // The first stored counts, also when it is empty.
        if (answered_[place])
            return;
        answered_[place] = 1;
        texts_[first] = rows_.NullToString(SimpleResponse);
        if (!texts_[first].isEmpty())
            codes_[first] = 0;
        return;
    }
    if (rows_.IsNull(ResponseId))
        return;
    const auto response = question.responses.constFind(rows_.Integer(ResponseId));
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
        const auto point =
            rows_.IsNull(PointId) ? points.cend() : points.constFind(rows_.Integer(PointId));
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
