// The one door through which the Design screen changes the survey. Each operation is a step of the
// user's, or what showing a question does to it; which of them mark the survey as changed is told
// here and nowhere else, and so is which of them can be undone. Each names the question it changes,
// so that a step keeps that one alone. Changes the model only: tree and panels follow, file and
// respondents are others' business.
#pragma once

#include <QStringList>

#include <functional>
#include <optional>

#include "document/ApplicationState.h"

namespace pollarix {

// What the editor asks of the screen that shows the survey.
class EditorScreen {
  public:
    virtual ~EditorScreen() = default;

    // The question nodes of the tree, in its collection order.
    virtual std::vector<NodeLabel> NodeLabels() const = 0;
    virtual QString SelectedQuestionKey() const = 0; // "" for none or the root
    // Shows a state that the model has already taken.
    virtual void ShowState(const DesignState& state) = 0;
};

class SurveyEditor {
  public:
    SurveyEditor(ApplicationState& state, EditorScreen& screen) : state_(state), screen_(screen) {}

    const clsSurvey& Survey() const { return state_.CurrentSurvey; }

    // Adds a question without text or row at the end and gives its key. Marks. Nothing else is
    // numbered anew. Throws Overflow for a 32768th question.
    QString AddQuestion(std::int32_t qType, std::int16_t ResponseMatrixGroupID);

    // Adds a copy of a question at the end, as every addition, and gives its key. Its responses
    // have no rows yet; their jumps lead where those of the question do, and to the copy where
    // those lead to the question itself. Marks. The key must be known. Throws Overflow as
    // AddQuestion does.
    QString DuplicateQuestion(const QString& key);

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
    // So a text that the library put into an empty question marks nothing either. All that is typed
    // into one question until EndOfTyping is one step, and none once the text is again what it was.
    enum class Edit {
        None,     // the text only reads otherwise than the question's, and means the same
        Typed,    // or pasted, or anything else that the user did to it
        TakenBack // by the box's own undo, to what it was when the question came into the box: if
                  // that is what the file holds, the survey is not marked any more
    };
    void SetText(clsQ& q, const QString& rtf, Edit edit);
    void TextEdited();
    void EndOfTyping();

    // Marks nothing: the number is in no file.
    void SetNoOfRows(clsQ& q, std::int16_t rows);

    // Appends responses without row or jump. Marks also when there is none to add. Throws Overflow
    // for a 32768th one; those before it are added then, and mark.
    void AddResponses(clsQ& q, const QStringList& texts);
    // Another text for a response, which keeps its row and so its answers. The position is 1-based.
    // Marks. Throws Subscript.
    void SetResponseText(clsQ& q, std::int16_t position, const QString& text);
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

    // Go one step back, or forth again, and show it. False when there is none. The survey is then
    // marked if it was in that state, unless its file holds just that.
    bool Undo();
    bool Redo();

    // What the change does through the editor is one step. Where it fails, it is as far as it got,
    // and none if it did nothing. Throws what the change throws.
    void AsOneStep(const std::function<void()>& change);

  private:
    // What is typed into one question.
    struct Typing {
        QString key;
        QString textBefore;
    };

    DesignState Now() const;
    bool GoTo(std::optional<DesignState> state);

    ApplicationState& state_;
    EditorScreen& screen_;
    std::optional<Typing> typing_; // whose step takes what is typed next
    // Whether the survey was marked before the key whose text was not set yet.
    std::optional<bool> markBeforeKey_;
    bool inStep_ = false;
};

} // namespace pollarix
