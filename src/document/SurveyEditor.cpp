#include "document/SurveyEditor.h"

namespace pollarix {

QString SurveyEditor::AddQuestion(std::int32_t qType, std::int16_t ResponseMatrixGroupID) {
    const QString key = state_.CurrentSurvey.AddQ("", qType, -1, ResponseMatrixGroupID);
    state_.MarkFileChanged();
    return key;
}

void SurveyEditor::SwapQuestions(const QString& key, const QString& neighbour) {
    state_.CurrentSurvey.SwapQ(key, neighbour);
    state_.CurrentSurvey.ReorderQ_QuestionNos();
    state_.MarkFileChanged();
}

void SurveyEditor::DeleteQuestion(const QString& key) {
    state_.CurrentSurvey.DeleteQ(key);
    state_.CurrentSurvey.ReorderQ_QuestionNos();
    state_.MarkFileChanged();
}

void SurveyEditor::SetKind(clsQ& q, std::int32_t qType) {
    state_.CurrentSurvey.UpdateQuestionType(q.Key, qType);
}

void SurveyEditor::SetText(clsQ& q, const QString& rtf) {
    state_.CurrentSurvey.UpdateQuestion(q.Key, rtf);
}

void SurveyEditor::SetNoOfRows(clsQ& q, std::int16_t rows) {
    q.OpenEnded_NoOfRows = rows;
}

void SurveyEditor::AddResponses(clsQ& q, const QStringList& texts) {
    for (const QString& text : texts)
        q.AddResponse(text, -1, -1, "");
    state_.MarkFileChanged();
}

void SurveyEditor::DeleteResponse(clsQ& q, std::int16_t position) {
    q.RemoveResponse(position);
    state_.MarkFileChanged();
}

void SurveyEditor::SwapResponses(clsQ& q, std::int16_t position, std::int16_t neighbour) {
    const std::shared_ptr<clsResponse> moved = q.GetResponse(position);
    q.UpdateResponse(position, q.GetResponse(neighbour));
    q.UpdateResponse(neighbour, moved);
    state_.MarkFileChanged();
}

void SurveyEditor::ChooseScale(clsQ& q, std::int16_t ResponseMatrixGroupID) {
    q.ResponseMatrixGroupID = ResponseMatrixGroupID;
}

void SurveyEditor::SetJump(clsQ& q, std::int16_t position, const QString& targetKey) {
    const std::shared_ptr<clsResponse> r = q.GetResponse(position);
    r->LogicJumpToQuestionID = -1;
    r->LogicJumpToQuestionKey = targetKey;
}

} // namespace pollarix
