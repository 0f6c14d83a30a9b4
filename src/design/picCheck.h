// The answers of a multiple choice question, of either kind. The list and the question's responses
// are two copies of one order; every button changes both.
#pragma once

#include "design/ResponsePanel.h"

namespace pollarix {

class picCheck : public ResponsePanel {
    Q_OBJECT
  public:
    picCheck(ApplicationState& state, SurveyEditor& editor, TreeView& tvTreeView, QWidget* parent);

    // Jumps belong to single-answer questions only. The list shows them from its next filling on.
    void SetLogicVisible(bool on);
    // Shows anew where the responses of the list lead, after questions got other numbers.
    void ShowJumps();

    void cmdCheckAdd_Click() { Add_Click(); }
    void cmdCheckUp_Click() { Up_Click(); }
    void cmdCheckDown_Click() { Down_Click(); }
    void cdmCheckDelete_Click() { Delete_Click(); }
    void lstCheckResponses_Click() { List_Click(); }
    void cmdRadioLogic_Click();

  private:
    void ListChanged(const clsQ& q) override;
    void MoveInQuestion(clsQ& q, std::int16_t position, std::int16_t neighbour) override;

    QPushButton* cmdRadioLogic_;
};

} // namespace pollarix
