#include "document/AnswerRows.h"

namespace pollarix {

namespace {

// Two statements in one order, so that a respondent's own texts are not read again with each
// answer. Indexes give the order: no sorting, no waiting before the first row.
constexpr const char* Respondents =
    "SELECT id, submitteddate, source FROM respondent ORDER BY submitteddate, id";
constexpr const char* Answers =
    "SELECT respondent.id, QuestionID, ResponseID, ResponseMatrixID, SimpleResponse "
    "FROM respondent CROSS JOIN respondent_responses AS answer ON RespondentID = respondent.id "
    "ORDER BY submitteddate, respondent.id, QuestionID, answer.id";

} // namespace

AnswerRows::AnswerRows(Connection& survey)
    : respondents_(survey.Execute(Respondents)), answers_(survey.Execute(Answers)) {}

bool AnswerRows::NextRespondent() {
    if (atRespondent_) {
        while (NextAnswer()) {
        }
        respondents_.MoveNext();
    }
    atRespondent_ = !respondents_.AtEnd();
    if (atRespondent_)
        id_ = respondents_.Integer(0);
    return atRespondent_;
}

bool AnswerRows::NextAnswer() {
    if (atAnswer_)
        answers_.MoveNext();
    atAnswer_ = !answers_.AtEnd() && answers_.Integer(0) == id_;
    return atAnswer_;
}

} // namespace pollarix
