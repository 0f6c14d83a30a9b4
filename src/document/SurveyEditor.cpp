#include "document/SurveyEditor.h"

#include <utility>

namespace pollarix {

DesignState SurveyEditor::Now() const {
    return {SurveySnapshot::Take(state_.CurrentSurvey, screen_.SelectedQuestionKey()),
            screen_.NodeLabels(), state_.FileChanged()};
}

void SurveyEditor::KeepState() {
    EndOfTyping();
    if (together_ == Together::Kept)
        return;
    if (together_ == Together::Yes)
        together_ = Together::Kept;
    state_.History.Keep(Now());
}

bool SurveyEditor::GoTo(std::optional<DesignState> state) {
    EndOfTyping();
    if (!state)
        return false;
    state->survey.PutInto(state_.CurrentSurvey);
    screen_.ShowState(*state);
    // Last: showing a question of another kind has marked the survey.
    if (state->changed)
        state_.MarkFileChanged();
    else
        state_.MarkFileUnchanged();
    return true;
}

bool SurveyEditor::Undo() {
    return GoTo(state_.History.Undo(Now()));
}

bool SurveyEditor::Redo() {
    return GoTo(state_.History.Redo(Now()));
}

QString SurveyEditor::AddQuestion(std::int32_t qType, std::int16_t ResponseMatrixGroupID) {
    KeepState();
    const QString key = state_.CurrentSurvey.AddQ("", qType, -1, ResponseMatrixGroupID);
    state_.MarkFileChanged();
    return key;
}

void SurveyEditor::SwapQuestions(const QString& key, const QString& neighbour) {
    KeepState();
    state_.CurrentSurvey.SwapQ(key, neighbour);
    state_.CurrentSurvey.ReorderQ_QuestionNos();
    state_.MarkFileChanged();
}

void SurveyEditor::DeleteQuestion(const QString& key) {
    KeepState();
    state_.CurrentSurvey.DeleteQ(key);
    state_.CurrentSurvey.ReorderQ_QuestionNos();
    state_.MarkFileChanged();
}

void SurveyEditor::SetKind(clsQ& q, std::int32_t qType) {
    if (q.qType == qType)
        return;
    KeepState();
    state_.CurrentSurvey.UpdateQuestionType(q.Key, qType);
}

void SurveyEditor::SetText(clsQ& q, const QString& rtf, bool edited) {
    if (rtf == q.Question)
        return;
    if (edited && typedInto_ != q.Key) {
        KeepState();
        typedInto_ = q.Key;
    }
    state_.CurrentSurvey.UpdateQuestion(q.Key, rtf);
}

void SurveyEditor::SetNoOfRows(clsQ& q, std::int16_t rows) {
    if (q.OpenEnded_NoOfRows == rows)
        return;
    KeepState();
    q.OpenEnded_NoOfRows = rows;
}

void SurveyEditor::AddResponses(clsQ& q, const QStringList& texts) {
    if (!texts.isEmpty())
        KeepState();
    for (const QString& text : texts)
        q.AddResponse(text, -1, -1, "");
    state_.MarkFileChanged();
}

void SurveyEditor::DeleteResponse(clsQ& q, std::int16_t position) {
    KeepState();
    q.RemoveResponse(position);
    state_.MarkFileChanged();
}

void SurveyEditor::SwapResponses(clsQ& q, std::int16_t position, std::int16_t neighbour) {
    KeepState();
    const std::shared_ptr<clsResponse> moved = q.GetResponse(position);
    q.UpdateResponse(position, q.GetResponse(neighbour));
    q.UpdateResponse(neighbour, moved);
    state_.MarkFileChanged();
}

void SurveyEditor::ChooseScale(clsQ& q, std::int16_t ResponseMatrixGroupID) {
    if (q.ResponseMatrixGroupID == ResponseMatrixGroupID)
        return;
    // The combo box gives its scale to questions of other kinds as well, where it means nothing.
    if (q.qType == kind::Matrix)
        KeepState();
    q.ResponseMatrixGroupID = ResponseMatrixGroupID;
}

void SurveyEditor::SetJump(clsQ& q, std::int16_t position, const QString& targetKey) {
    if (q.GetResponse(position)->LogicJumpToQuestionKey != targetKey)
        KeepState();
    const std::shared_ptr<clsResponse> r = q.GetResponse(position);
    r->LogicJumpToQuestionID = -1;
    r->LogicJumpToQuestionKey = targetKey;
}

} // namespace pollarix
