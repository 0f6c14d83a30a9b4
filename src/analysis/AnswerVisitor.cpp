#include "analysis/AnswerVisitor.h"

#include "document/Kinds.h"
#include "platform/base/Failure.h"

namespace pollarix {

const QByteArray* QuestionAnswers::Text() const {
    if (stored.empty())
        return nullptr;
    if (!stored.front().simpleresponse)
        throw Failure(failure::InvalidNull);
    return &*stored.front().simpleresponse;
}

void VisitAnswers(Connection& survey, const ReportSurvey& layout, AnswerVisitor& visitor,
                  const ProgressStep& step) {
    const std::int64_t count = survey.Count("SELECT count(*) FROM respondent");
    AnswerReader reader(survey, layout);
    for (std::int64_t done = 0; reader.Next(); ++done) {
        visitor.Begin(reader.Current());
        for (std::size_t place = 0; place < layout.questions.size(); ++place) {
            step(done, count);
            const ReportQuestion& question = layout.questions[place];
            visitor.Ask(place, question);
            const QuestionAnswers answers{place, question, reader.AnswersTo(place), reader};
            switch (question.AnswerShape()) {
            case Shape::Text:
                visitor.OpenEnded(answers);
                break;
            case Shape::Grid:
                visitor.Matrix(answers);
                break;
            default:
                visitor.Choices(answers);
            }
        }
        visitor.End();
    }
}

} // namespace pollarix
