// Manual entry: one respondent's answers are typed in or changed, one question a page. It works on
// the tables of the open file; each page turn is written at once, as one batch.
#pragma once

#include <QDialog>

#include <vector>

#include "collection/ManualEntryState.h"
#include "document/ApplicationState.h"

class QAbstractButton;
class QButtonGroup;
class QLabel;
class QPlainTextEdit;
class QPushButton;
class QVBoxLayout;

namespace pollarix {

class Grid;

class frmManualResponse : public QDialog {
    Q_OBJECT
  public:
    // Shows the first page of entry.CurrentRespondentID.
    frmManualResponse(ApplicationState& state, ManualEntryState& entry, QWidget* parent);

    // Shows the page at CurrentPosition. False if no question has that position: the window then
    // stays as it was.
    bool RespondentAnswers_ShowQuestion();

    // Stores the answer of the page shown and sets the jump that it leads to, if any. All earlier
    // answers of the respondent to this question go first, whatever its kind.
    void ShowDCAnswer();

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    // One of the two lists of answers, check boxes or radio buttons. Its first button always exists
    // and is hidden when a question has no answers.
    struct AnswerButtons {
        QWidget* panel = nullptr;
        QVBoxLayout* column = nullptr;
        std::vector<QAbstractButton*> buttons;
        std::vector<QString> texts;
        std::vector<std::int64_t> tags; // response.id
    };

    void BuildPanels();
    QWidget* NewScrolledPanel(const char* name, QWidget* content);
    QAbstractButton* NewButton(AnswerButtons& list, bool radio);
    void ShowPanel(QWidget* panel);
    void WrapTexts(AnswerButtons& list);

    void ShowOpenEnded(std::int64_t question);
    int LoadButtons(AnswerButtons& list, bool radio, std::int64_t question);
    bool IsAnswered(std::int64_t response, std::int64_t question);
    void ShowCheck(std::int64_t question);
    void ShowRadio(std::int64_t question);
    void ShowMatrix(std::int64_t question);
    void AddMatrixHead(int row, int col, const QString& text);
    void StoreButtons(const AnswerButtons& list, bool radio, std::int64_t question);

    void cmdDCAnswersNext_Click();
    void cmdDCAnswersPrevious_Click();
    void gMatrix_Click();

    ApplicationState& state_;
    ManualEntryState& entry_;
    std::int16_t JumpTarget = -1; // question.id that the chosen answer leads to; -1 for none

    QLabel* lblDCQuestion_;
    QWidget* picDCAnswers_;
    QPlainTextEdit* txtDCSimpleResponse_;
    AnswerButtons chkDCCheck_;
    AnswerButtons optDCRadio_;
    QButtonGroup* radioGroup_;
    Grid* gMatrix_;
    std::vector<QWidget*> panels_; // picDCResponseSimple, -Check, -Radio, -Matrix
    QPushButton* cmdDCAnswersPrevious_;
    QPushButton* cmdDCAnswersNext_;
    QPushButton* cmdDCAnswersCancel_;
};

} // namespace pollarix
