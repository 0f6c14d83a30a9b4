// The one walk over all respondents and their answers to each question, which every export and
// report takes. What is made of them is the visitor's; the reading is the AnswerReader's.
#pragma once

#include "analysis/AnswerReader.h"
#include "platform/desktop/LongWork.h"

namespace pollarix {

// What one respondent answered to one question.
struct QuestionAnswers {
    std::size_t place = 0; // in the survey's questions
    const ReportQuestion& question;
    std::span<const ReportAnswer> stored; // in the order in which they were stored
    AnswerReader& reader;

    // The first answer to each response or sub question, null for one without. It stands until the
    // next call.
    const std::vector<const ReportAnswer*>& ByResponse() const {
        return reader.FirstByResponse(place);
    }
    // The text of an open ended answer in UTF-8; null without a stored answer. Throws InvalidNull
    // for a stored one without text.
    const QByteArray* Text() const;
};

class AnswerVisitor {
  public:
    virtual ~AnswerVisitor() = default;

    virtual void Begin(const Respondent& respondent) = 0;
    // Before the answers to each question, with its place in the survey's questions.
    virtual void Ask(std::size_t /*place*/, const ReportQuestion& /*question*/) {}
    virtual void OpenEnded(const QuestionAnswers& answers) = 0;
    virtual void Choices(const QuestionAnswers& answers) = 0; // any kind but the two others
    virtual void Matrix(const QuestionAnswers& answers) = 0;
    virtual void End() = 0;
};

// Takes the visitor through all respondents, oldest first, and each through all questions. `step`
// is called before each question. Throws what the database and the visitor throw.
void VisitAnswers(Connection& survey, const ReportSurvey& layout, AnswerVisitor& visitor,
                  const ProgressStep& step);

} // namespace pollarix
