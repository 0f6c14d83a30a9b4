// The one door through which the Design screen changes the survey. Each operation is a step of the
// user's, or what showing a question does to it; which of them mark the survey as changed is told
// here and nowhere else. Changes the model only: tree and panels follow, file and respondents are
// others' business.
#pragma once

#include <QStringList>

#include "document/ApplicationState.h"

namespace pollarix {

class SurveyEditor {
  public:
    explicit SurveyEditor(ApplicationState& state) : state_(state) {}

    const clsSurvey& Survey() const { return state_.CurrentSurvey; }

    // Adds a question without text or row at the end and gives its key. Marks. Nothing else is
    // numbered anew. Throws Overflow for a 32768th question.
    QString AddQuestion(std::int32_t qType, std::int16_t ResponseMatrixGroupID);

    // These two renumber, and mark. The keys are those of neighbours; that of the question to
    // delete must be known.
    void SwapQuestions(const QString& key, const QString& neighbour);
    void DeleteQuestion(const QString& key);

    // Gives the question a kind, as showing one does with the kind that it has. Marks nothing;
    // responses and number stay as they are.
    void SetKind(clsQ& q, std::int32_t qType);
    // An option went on, by hand or because a question of another kind was shown: that marks the
    // survey even where nothing was edited. Required.
    void KindClicked() { state_.MarkFileChanged(); }

    // The text of the box, rich. Marks nothing: the edits do that as they happen, by the second.
    // So a text that the library put into an empty question marks nothing either.
    void SetText(clsQ& q, const QString& rtf);
    void TextEdited() { state_.MarkFileChanged(); }

    // Marks nothing: the number is in no file.
    void SetNoOfRows(clsQ& q, std::int16_t rows);

    // Appends responses without row or jump. Marks also when there is none to add. Throws Overflow
    // for a 32768th one.
    void AddResponses(clsQ& q, const QStringList& texts);
    // Positions are 1-based. Both mark; a response that moves keeps its row and its jump. Throw
    // Subscript.
    void DeleteResponse(clsQ& q, std::int16_t position);
    void SwapResponses(clsQ& q, std::int16_t position, std::int16_t neighbour);

    // Choosing a scale alone marks nothing. Required.
    void ChooseScale(clsQ& q, std::int16_t ResponseMatrixGroupID);

    // The question to go on with after a response; "" for none. Marks nothing, but the dialog that
    // asks for it does, whichever way it is left: JumpAsked.
    void SetJump(clsQ& q, std::int16_t position, const QString& targetKey);
    void JumpAsked() { state_.MarkFileChanged(); }

  private:
    ApplicationState& state_;
};

} // namespace pollarix
