// The panel of questions without responses: how many lines an open ended answer gets. Instruction
// text shows it too. The number lives in memory only and never marks the survey as changed.
#pragma once

#include <QWidget>

#include "document/SurveyEditor.h"
#include "platform/controls/ComboBox.h"
#include "platform/controls/TreeView.h"

namespace pollarix {

class picOpenEnded : public QWidget {
    Q_OBJECT
  public:
    picOpenEnded(ApplicationState& state, SurveyEditor& editor, TreeView& tvTreeView,
                 QWidget* parent);

    // Shows the question's number, and selects nothing for 0, that of a question read from a file.
    // InvalidArgument beyond 6.
    void ShowNoOfRows(const clsQ& q);

    // Stores a number that was chosen while the box keeps the focus, as buttons of a toolbar and
    // menus leave it there.
    void CommitChosen();

    // Stores the number. With no entry selected there is none to read, which is a failure
    // (TypeMismatch): it comes when the box is entered and left on a question read from a file.
    void cmdOpenEndedNoOfRows_LostFocus();

  private:
    ApplicationState& state_;
    SurveyEditor& editor_;
    TreeView& tvTreeView_;
    ComboBox* cmdOpenEndedNoOfRows_;
    bool isChosen_ = false; // and not stored
};

} // namespace pollarix
