// Manual entry: one respondent's answers are typed in or changed, one question a page. It works on
// the tables of the open file; each page turn is written at once, as one batch.
#pragma once

#include <QDialog>

#include "collection/ManualEntryState.h"
#include "document/ApplicationState.h"

class QLabel;
class QPlainTextEdit;
class QPushButton;
class QScrollArea;

namespace pollarix {

class AnswerList;
class Grid;

class frmManualResponse : public QDialog {
    Q_OBJECT
  public:
    // Shows the first page of entry.CurrentRespondentID. A failure on the way is shown as one of
    // the running program, and leaves the window as far as it got: the user can go on from there.
    frmManualResponse(ApplicationState& state, ManualEntryState& entry, QWidget* parent);

    // Shows the page at CurrentPosition. False if no question has that position: the window then
    // stays as it was.
    bool RespondentAnswers_ShowQuestion();

    // Stores the answer of the page shown and sets the jump that it leads to, if any. All earlier
    // answers of the respondent to this question go first, whatever its kind.
    void ShowDCAnswer();

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void BuildQuestion();
    void BuildAnswers();
    void BuildFooter();
    void FitQuestion();
    void ShowPanel(QWidget* panel);
    bool HasAnswers() const; // the page shows something to answer with
    void Form_Load();

    void ShowOpenEnded(std::int64_t question);
    int LoadAnswers(AnswerList& list, std::int64_t question);
    bool IsAnswered(std::int64_t response, std::int64_t question);
    void ShowCheck(std::int64_t question);
    void ShowRadio(std::int64_t question);
    void ShowMatrix(std::int64_t question);
    bool LoadMatrixRows(std::int64_t question, std::int16_t& group);
    bool LoadMatrixPoints(std::int16_t group);
    void LoadMatrixAnswers(std::int64_t question);
    void AddMatrixHead(int row, int col, const QString& text);
    int ChosenCol(int row) const;

    void StoreOpenEnded(std::int64_t question);
    void StoreChecked(const AnswerList& list, std::int64_t question);
    void StoreMatrix(std::int64_t question);

    bool MoveTo(std::int32_t position);
    void cmdDCAnswersNext_Click();
    void cmdDCAnswersPrevious_Click();
    void gMatrix_Click();
    void gMatrix_KeyDown(QKeyEvent& event);

    ApplicationState& state_;
    ManualEntryState& entry_;
    bool isRead_ = false;         // a page was read, or is known not to exist
    std::int16_t JumpTarget = -1; // question.id that the chosen answer leads to; -1 for none

    QLabel* lblDCQuestion_;
    QScrollArea* scrollDCQuestion_;
    QWidget* picDCAnswers_;
    QWidget* picDCResponseSimple_;
    QPlainTextEdit* txtDCSimpleResponse_;
    AnswerList* chkDCCheck_; // picDCResponseCheck
    AnswerList* optDCRadio_; // picDCResponseRadio
    QWidget* picDCResponseMatrix_;
    Grid* gMatrix_;
    QPushButton* cmdDCAnswersPrevious_;
    QPushButton* cmdDCAnswersNext_;
    QPushButton* cmdDCAnswersCancel_;
};

} // namespace pollarix
