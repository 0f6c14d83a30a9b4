// The list of respondents with a sample answer each, and the buttons that add, edit and delete one.
// It works on the open file, never on the model; it does not follow changes by itself.
#pragma once

#include <QWidget>

#include <functional>
#include <optional>

#include "collection/ManualEntryState.h"
#include "document/ApplicationState.h"
#include "platform/controls/ColumnWidths.h"

class QKeyEvent;
class QLabel;
class QPushButton;

namespace pollarix {

class ComboBox;
class Grid;

class picRespondentList : public QWidget {
    Q_OBJECT
  public:
    picRespondentList(ApplicationState& state, QWidget* parent);

    // Steps of the start-up, in their order.
    void PrepareGrid(); // 3 columns, the head row alone
    void WriteHeads();
    void WidenGrid(); // column 1 fills what the others leave

    // Rebuilds the list, newest first; of equal dates the higher id comes first. Row is the grid
    // row to select, overridden by the row of the respondent with RespondentID if it is listed.
    // While the list is hidden, the respondents are read when it is shown; until then it is its
    // head alone. Throws what the database throws; no respondent is listed then. The sample
    // question is the one at the place of the one before, the first where there is none at that
    // place.
    void RefreshRespondentList(std::int64_t Row, std::int64_t RespondentID);

    // Refreshes the list and selects a respondent. The sample answers become those to the question,
    // if it is one of those that are offered.
    void ShowAnswer(std::int64_t RespondentID, std::int64_t QuestionID);

    // Places what lies inside. The window's outer size, and the height that shows of this panel, in
    // pixels.
    void LayOut(int windowWidth, int windowHeight, int visibleHeight);

    // Shows the screen of the main window that this list is on; set by it.
    std::function<void()> ShowRespondentScreen;

    // False while a refresh sets the combo's index, so that its click does not refresh again.
    bool ExampleQuestionEventsOn = false;

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    void FillExampleQuestions();
    bool ListsAsItStands() const;
    std::vector<std::int64_t> ReadIds();
    void FillList(std::int64_t Row, std::int64_t RespondentID);
    void FillWaitingList();
    QString CellText(int row, int col) const;
    QString SampleAnswer(std::int64_t respondent) const;
    bool IsOneSelected() const;
    void EnterAnswers();
    void RequireWritableForEntry();
    void FitSample();
    void FitTexts();

    void cboDCExampleQuestion_Click();
    void cmdCreateResponse_Click();
    void gRespondents_DblClick();
    void gRespondents_KeyDown(QKeyEvent& key);
    void cmdDeleteResponse_Click();

    ApplicationState& state_;
    ManualEntryState entry_;
    QString listedFile_;                       // path of the survey whose rows are listed
    std::optional<Connection::Moment> listed_; // as of when
    struct Selection {
        std::int64_t Row;
        std::int64_t RespondentID;
    };
    std::optional<Selection> waiting_; // a refresh that waits until the list is shown

    QLabel* lblSample_;
    ComboBox* cboDCExampleQuestion_;
    Grid* gRespondents_;
    ColumnWidths widths_;
    QPushButton* cmdCreateResponse_;
    QPushButton* cmdEditResponse_;
    QPushButton* cmdDeleteResponse_;
};

} // namespace pollarix
