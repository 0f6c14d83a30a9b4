// What the panels of answers (picCheck) and of sub questions (picMatrix) have in common: the box
// with its Add button, the list, Delete, and the focus. How an entry moves up or down is each
// panel's own, since the two differ there.
#pragma once

#include <QWidget>

#include "document/ApplicationState.h"
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
    void ClearList() { list_->Clear(); }

  protected:
    // The controls' names and captions. "What" is an entry in a screen reader's words.
    struct Words {
        const char *panel, *boxHeading, *boxCaption, *box, *add, *listHeading, *listCaption, *list,
            *up, *down, *remove, *what;
    };
    ResponsePanel(const Words& words, ApplicationState& state, TreeView& tvTreeView,
                  QWidget* parent);

    std::shared_ptr<clsQ> CurrentQuestion() const;

    void Add_Click();
    void Delete_Click();
    void List_Click();
    virtual void Up_Click() = 0;
    virtual void Down_Click() = 0;

    // Exchanges the texts of two neighbours in the list; their ItemData stays with the place.
    void ExchangeTexts(int index, int neighbour);

    QVBoxLayout& ButtonColumn() { return *column_; }
    // Below list and buttons, over the whole width.
    void AddRow(QWidget* label, QWidget* field, QWidget* button);

    ApplicationState& state_;
    TreeView& tvTreeView_;
    ListBox* list_;

  private:
    bool eventFilter(QObject* watched, QEvent* event) override;

    QLineEdit* box_;
    QPushButton* add_;
    QToolButton* up_;
    QToolButton* down_;
    QPushButton* delete_;
    QVBoxLayout* column_;
    QGridLayout* grid_;
};

} // namespace pollarix
