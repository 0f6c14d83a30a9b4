#include "document/SurveySnapshot.h"

#include "document/clsSurvey.h"
#include "platform/base/Failure.h"

namespace pollarix {

SurveySnapshot::Question SurveySnapshot::Take(const clsQ& q) {
    Question question{q.DatabaseID,
                      q.Key,
                      q.qType,
                      q.Question,
                      q.QuestionNo,
                      q.OpenEnded_NoOfRows,
                      q.ResponseMatrixGroupID,
                      {}};
    question.responses.reserve(static_cast<std::size_t>(q.ResponsesCount()));
    for (int j = 1; j <= q.ResponsesCount(); ++j) {
        const clsResponse& r = *q.GetResponse(Narrow16(j));
        question.responses.push_back(
            {r.DatabaseID, r.Text, r.LogicJumpToQuestionID, r.LogicJumpToQuestionKey});
    }
    return question;
}

SurveySnapshot SurveySnapshot::Take(const clsSurvey& survey, const QString& selectedKey) {
    SurveySnapshot snapshot;
    snapshot.selectedKey = selectedKey;
    snapshot.questions.reserve(static_cast<std::size_t>(survey.QCount()));
    for (int i = 1; i <= survey.QCount(); ++i)
        snapshot.questions.push_back(Take(*survey.GetQIndex(Narrow16(i))));
    return snapshot;
}

std::shared_ptr<clsQ> SurveySnapshot::Question::ToObject() const {
    auto q = std::make_shared<clsQ>();
    q->DatabaseID = DatabaseID;
    q->Key = Key;
    q->qType = qType;
    q->Question = Text;
    q->QuestionNo = QuestionNo;
    q->OpenEnded_NoOfRows = OpenEnded_NoOfRows;
    q->ResponseMatrixGroupID = ResponseMatrixGroupID;
    for (const Response& r : responses)
        q->AddResponse(r.Text, r.DatabaseID, r.LogicJumpToQuestionID, r.LogicJumpToQuestionKey);
    return q;
}

void SurveySnapshot::PutInto(clsSurvey& survey) const {
    survey.ClearAll();
    for (const Question& question : questions)
        survey.Append(question.ToObject());
}

} // namespace pollarix
