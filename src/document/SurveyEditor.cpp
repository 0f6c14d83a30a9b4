#include "document/SurveyEditor.h"

#include <utility>

namespace pollarix {

DesignState SurveyEditor::Now() const {
    return {state_.History.Questions().Take(state_.CurrentSurvey), screen_.SelectedQuestionKey(),
            screen_.NodeLabels(), state_.FileChanged()};
}

void SurveyEditor::AsOneStep(const std::function<void()>& change) {
    if (inStep_) {
        change();
        return;
    }
    EndOfTyping();
    DesignState before = Now();
    const auto end = [&] {
        inStep_ = false;
        if (state_.History.Questions().Take(state_.CurrentSurvey) != before.questions)
            state_.History.Keep(std::move(before));
    };
    inStep_ = true;
    try {
        change();
    } catch (...) {
        end();
        throw;
    }
    end();
}

bool SurveyEditor::GoTo(std::optional<DesignState> state) {
    if (!state)
        return false;
    state_.History.Questions().PutInto(state_.CurrentSurvey, state->questions);
    screen_.ShowState(*state);
    // Last: showing a question of another kind has marked the survey.
    if (state->changed)
        state_.MarkFileChanged();
    else
        state_.MarkFileUnchanged();
    return true;
}

bool SurveyEditor::Undo() {
    EndOfTyping();
    return GoTo(state_.History.Undo(Now()));
}

bool SurveyEditor::Redo() {
    EndOfTyping();
    return GoTo(state_.History.Redo(Now()));
}

QString SurveyEditor::AddQuestion(std::int32_t qType, std::int16_t ResponseMatrixGroupID) {
    QString key;
    AsOneStep([&] {
        key = state_.CurrentSurvey.AddQ("", qType, -1, ResponseMatrixGroupID);
        state_.MarkFileChanged();
    });
    return key;
}

QString SurveyEditor::DuplicateQuestion(const QString& key) {
    QString copyKey;
    AsOneStep([&] {
        const std::shared_ptr<clsQ> original = state_.CurrentSurvey.GetQ(key);
        copyKey = AddQuestion(original->qType, original->ResponseMatrixGroupID);
        const std::shared_ptr<clsQ> copy = state_.CurrentSurvey.GetQ(copyKey);
        state_.History.Questions().Touch(*copy);
        copy->Question = original->Question;
        copy->OpenEnded_NoOfRows = original->OpenEnded_NoOfRows;
        for (int i = 1; i <= original->ResponsesCount(); ++i) {
            const clsResponse& r = *original->GetResponse(Narrow16(i));
            const QString& target = r.LogicJumpToQuestionKey;
            copy->AddResponse(r.Text, -1, -1, target == key ? copyKey : target);
        }
    });
    return copyKey;
}

void SurveyEditor::SwapQuestions(const QString& key, const QString& neighbour) {
    AsOneStep([&] {
        state_.CurrentSurvey.SwapQ(key, neighbour);
        state_.CurrentSurvey.ReorderQ_QuestionNos();
        state_.MarkFileChanged();
    });
}

void SurveyEditor::DeleteQuestion(const QString& key) {
    AsOneStep([&] {
        state_.CurrentSurvey.DeleteQ(key);
        state_.CurrentSurvey.ReorderQ_QuestionNos();
        state_.MarkFileChanged();
    });
}

void SurveyEditor::SetKind(clsQ& q, std::int32_t qType) {
    if (q.qType == qType)
        return;
    AsOneStep([&] {
        state_.History.Questions().Touch(q);
        state_.CurrentSurvey.UpdateQuestionType(q.Key, qType);
    });
}

void SurveyEditor::TextEdited() {
    if (!markBeforeKey_)
        markBeforeKey_ = state_.FileChanged();
    state_.MarkFileChanged();
}

void SurveyEditor::EndOfTyping() {
    typing_.reset();
    markBeforeKey_.reset();
}

void SurveyEditor::SetText(clsQ& q, const QString& rtf, Edit edit) {
    const std::optional<bool> markBefore = std::exchange(markBeforeKey_, std::nullopt);
    if (rtf == q.Question) {
        if (edit == Edit::TakenBack && !markBefore.value_or(true))
            state_.MarkFileUnchanged();
        return;
    }
    DesignHistory& history = state_.History;
    const bool typed = edit != Edit::None && !inStep_;
    std::optional<DesignState> before; // of a step that begins
    if (typed && (!typing_ || typing_->key != q.Key)) {
        before = Now();
        before->changed = markBefore.value_or(before->changed);
        typing_ = {q.Key, q.Question};
    }
    history.Questions().Touch(q);
    state_.CurrentSurvey.UpdateQuestion(q.Key, rtf);
    if (before)
        history.Keep(std::move(*before));
    if (!typed)
        return;
    bool marked = true;
    if (rtf == typing_->textBefore) {
        marked = history.Drop();
        EndOfTyping();
    }
    if (edit == Edit::TakenBack &&
        (!marked || history.HoldsWhatIsSaved(history.Questions().Take(state_.CurrentSurvey))))
        state_.MarkFileUnchanged();
}

void SurveyEditor::SetNoOfRows(clsQ& q, std::int16_t rows) {
    if (q.OpenEnded_NoOfRows == rows)
        return;
    AsOneStep([&] {
        state_.History.Questions().Touch(q);
        q.OpenEnded_NoOfRows = rows;
    });
}

void SurveyEditor::AddResponses(clsQ& q, const QStringList& texts) {
    AsOneStep([&] {
        state_.History.Questions().Touch(q);
        for (const QString& text : texts) {
            q.AddResponse(text, -1, -1, "");
            state_.MarkFileChanged();
        }
        state_.MarkFileChanged();
    });
}

void SurveyEditor::SetResponseText(clsQ& q, std::int16_t position, const QString& text) {
    if (q.GetResponse(position)->Text == text)
        return;
    AsOneStep([&] {
        state_.History.Questions().Touch(q);
        q.GetResponse(position)->Text = text;
        state_.MarkFileChanged();
    });
}

void SurveyEditor::DeleteResponse(clsQ& q, std::int16_t position) {
    AsOneStep([&] {
        state_.History.Questions().Touch(q);
        q.RemoveResponse(position);
        state_.MarkFileChanged();
    });
}

void SurveyEditor::SwapResponses(clsQ& q, std::int16_t position, std::int16_t neighbour) {
    AsOneStep([&] {
        state_.History.Questions().Touch(q);
        const std::shared_ptr<clsResponse> moved = q.GetResponse(position);
        q.UpdateResponse(position, q.GetResponse(neighbour));
        q.UpdateResponse(neighbour, moved);
        state_.MarkFileChanged();
    });
}

void SurveyEditor::ChooseScale(clsQ& q, std::int16_t ResponseMatrixGroupID) {
    if (q.ResponseMatrixGroupID == ResponseMatrixGroupID)
        return;
    const auto choose = [&] {
        state_.History.Questions().Touch(q);
        q.ResponseMatrixGroupID = ResponseMatrixGroupID;
    };
    // The combo box gives its scale to questions of other kinds as well, where it means nothing.
    if (q.qType == kind::Matrix)
        AsOneStep(choose);
    else
        choose();
}

void SurveyEditor::SetJump(clsQ& q, std::int16_t position, const QString& targetKey) {
    const std::shared_ptr<clsResponse> r = q.GetResponse(position);
    const auto jump = [&] {
        state_.History.Questions().Touch(q);
        r->LogicJumpToQuestionID = -1;
        r->LogicJumpToQuestionKey = targetKey;
    };
    // Only the number of the target as it was read goes where the target stays.
    if (r->LogicJumpToQuestionKey != targetKey)
        AsOneStep(jump);
    else
        jump();
}

} // namespace pollarix
