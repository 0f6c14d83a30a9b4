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

    // Selects nothing for 0, the value of a question read from a file. InvalidArgument beyond 6.
    void ShowNoOfRows(std::int16_t rows);

    // Stores the number. With no entry selected there is none to read, which is a failure
    // (TypeMismatch): it comes when the box is entered and left on a question read from a file.
    void cmdOpenEndedNoOfRows_LostFocus();

  private:
    ApplicationState& state_;
    SurveyEditor& editor_;
    TreeView& tvTreeView_;
    ComboBox* cmdOpenEndedNoOfRows_;
};

} // namespace pollarix
