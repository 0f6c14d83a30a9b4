#include "document/SurveySnapshot.h"

#include "document/clsSurvey.h"
#include "platform/base/Failure.h"

namespace pollarix {

SurveySnapshot SurveySnapshot::Take(const clsSurvey& survey, const QString& selectedKey) {
    SurveySnapshot snapshot;
    snapshot.selectedKey = selectedKey;
    snapshot.questions.reserve(static_cast<std::size_t>(survey.QCount()));
    for (int i = 1; i <= survey.QCount(); ++i) {
        const clsQ& q = *survey.GetQIndex(Narrow16(i));
        Question& question = snapshot.questions.emplace_back(Question{q.DatabaseID,
                                                                      q.Key,
                                                                      q.qType,
                                                                      q.Question,
                                                                      q.QuestionNo,
                                                                      q.OpenEnded_NoOfRows,
                                                                      q.ResponseMatrixGroupID,
                                                                      {}});
        question.responses.reserve(static_cast<std::size_t>(q.ResponsesCount()));
        for (int j = 1; j <= q.ResponsesCount(); ++j) {
            const clsResponse& r = *q.GetResponse(Narrow16(j));
            question.responses.push_back(
                {r.DatabaseID, r.Text, r.LogicJumpToQuestionID, r.LogicJumpToQuestionKey});
        }
    }
    return snapshot;
}

void SurveySnapshot::PutInto(clsSurvey& survey) const {
    survey.ClearAll();
    for (const Question& question : questions) {
        const auto q = std::make_shared<clsQ>();
        q->DatabaseID = question.DatabaseID;
        q->Key = question.Key;
        q->qType = question.qType;
        q->Question = question.Text;
        q->QuestionNo = question.QuestionNo;
        q->OpenEnded_NoOfRows = question.OpenEnded_NoOfRows;
        q->ResponseMatrixGroupID = question.ResponseMatrixGroupID;
        for (const Response& r : question.responses)
            q->AddResponse(r.Text, r.DatabaseID, r.LogicJumpToQuestionID, r.LogicJumpToQuestionKey);
        survey.Append(q);
    }
}

} // namespace pollarix
