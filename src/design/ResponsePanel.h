// What the panels of answers (picCheck) and of sub questions (picMatrix) have in common: the box
// with its Add button, the list, its moves and Delete, and the focus. What of a move reaches the
// question is each panel's own, since the two differ there.
#pragma once

#include <QWidget>

#include <memory>
#include <vector>

#include "document/SurveyEditor.h"
#include "platform/controls/ListBox.h"
#include "platform/controls/TreeView.h"

class QGridLayout;
class QLineEdit;
class QPushButton;
class QToolButton;
class QVBoxLayout;

namespace pollarix {

class ResponsePanel : public QWidget {
    Q_OBJECT
  public:
    // Fills the list from the question's responses, in model order.
    void Fill(const clsQ& q);
    // Puts the caret into the box.
    void FocusBox();
    void ClearList();
    // Selects an entry of the list, from 1, which takes the focus; none that is not there.
    void ShowResponse(int response);

  protected:
    // The controls' names and captions. "What" is an entry in a screen reader's words.
    struct Words {
        const char* panel;
        const char* boxHeading;
        const char* boxCaption;
        const char* box;
        const char* add;
        const char* listHeading;
        const char* listCaption;
        const char* list;
        const char* up;
        const char* down;
        const char* remove;
        const char* what;
    };
    ResponsePanel(const Words& words, ApplicationState& state, SurveyEditor& editor,
                  TreeView& tvTreeView, QWidget* parent);

    std::shared_ptr<clsQ> CurrentQuestion() const;
    // The current question, if the list shows its responses. A list that doesn't, as after a save
    // with the root selected, is filled anew, and no object is given: whatever was asked for would
    // meet another response than the one in sight.
    std::shared_ptr<clsQ> QuestionOfList();

    bool ShowsResponsesOf(const clsQ& q) const;

    // Gives the response that a row of the list shows another text.
    void EditResponse(int row, const QString& text);

    void Add_Click();
    void Delete_Click();
    void List_Click();
    void Up_Click() { Move(-1); }
    void Down_Click() { Move(1); }
    // Shows the question's responses, and what else the panel shows of it.
    virtual void Refill(const clsQ& q) { Fill(q); }
    // Called after the list has come to show the question's responses otherwise than before.
    virtual void ListChanged(const clsQ& q) = 0;
    // Called before two neighbours change places in the list; positions are 1-based.
    virtual void MoveInQuestion(clsQ& q, std::int16_t position, std::int16_t neighbour) = 0;

    QVBoxLayout& ButtonColumn() { return *column_; }
    // Below list and buttons, over the whole width.
    void AddRow(QWidget* label, QWidget* field, QWidget* button);

    ApplicationState& state_;
    SurveyEditor& editor_;
    TreeView& tvTreeView_;
    ListBox* list_;

  private:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void Move(int step);
    void SetArrow(QToolButton& arrow, bool on);

    // What the list was last filled with, in the question's order. The list itself may have another
    // one: that of the sub questions moves by itself.
    std::vector<std::shared_ptr<clsResponse>> shown_;

    QLineEdit* box_;
    QPushButton* add_;
    QToolButton* up_;
    QToolButton* down_;
    QPushButton* delete_;
    QVBoxLayout* column_;
    QGridLayout* grid_;
};

} // namespace pollarix
