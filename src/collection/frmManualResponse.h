// Manual entry: one respondent's answers are typed in or changed, one question a page. It works on
// the tables of the open file; each page turn is written at once, as one batch. What a page shows
// and stores is its own class for each shape of answer.
#pragma once

#include <QDialog>

#include <array>
#include <optional>

#include "collection/ManualEntryState.h"
#include "document/ApplicationState.h"
#include "document/Kinds.h"
#include "platform/base/Failure.h"

class QLabel;
class QPushButton;
class QScrollArea;

namespace pollarix {

class AnswerPage;
struct AnswerPlace;

class frmManualResponse : public QDialog {
    Q_OBJECT
  public:
    // Shows the page at entry.FirstPosition of entry.CurrentRespondentID. A failure on the way is
    // shown as one of the running program, and leaves the window as far as it got: the user can go
    // on from there.
    frmManualResponse(ApplicationState& state, ManualEntryState& entry, QWidget* parent);

    // Shows the page at CurrentPosition. False if no question has that position: the window then
    // stays as it was.
    bool RespondentAnswers_ShowQuestion();

    // Stores the answer of the page shown and sets the jump that it leads to, if any. All earlier
    // answers of the respondent to this question go first, whatever its kind. A page that could not
    // be read does not take the place of answers that are stored: the failure of the reading is
    // thrown, and the page read once more for the next try. False, and nothing is stored, when no
    // question has the page's position. Needs a batch, whose owner takes it back at a failure.
    bool ShowDCAnswer();

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void BuildQuestion();
    void BuildAnswers();
    void BuildFooter();
    void FitQuestion();
    void ShowPlace(std::int64_t through, std::int64_t questions);
    void Form_Load();

    AnswerPage*& PageOf(Shape shape) { return pages_[static_cast<std::size_t>(shape)]; }
    AnswerPage* Page(); // of the question that shows; none where nothing is answered
    void ShowPage(const AnswerPlace& place);
    void ReadPage(const AnswerPlace& place);
    void RequireRead(const AnswerPlace& place);
    void PlaceFocus(bool isLost); // whether it was in what does not show any more
    bool Store();                 // false when the page is not to be left

    bool MoveTo(std::int32_t position);
    void cmdDCAnswersNext_Click();
    void cmdDCAnswersPrevious_Click();

    ApplicationState& state_;
    ManualEntryState& entry_;
    bool isRead_ = false;           // a page was read, or is known not to exist
    std::int64_t shown_ = 0;        // question.id of the page on the screen
    std::optional<Failure> unread_; // why the answers on file are not on the page that shows
    std::int16_t JumpTarget = -1;   // question.id that the chosen answer leads to; -1 for none

    QLabel* lblDCQuestion_;
    QScrollArea* scrollDCQuestion_;
    QWidget* picDCAnswers_;
    std::array<AnswerPage*, 5> pages_{}; // by shape of the answer; none for Shape::None
    QLabel* lblPlace_;
    QPushButton* cmdDCAnswersPrevious_;
    QPushButton* cmdDCAnswersNext_;
    QPushButton* cmdDCAnswersCancel_;
};

} // namespace pollarix
