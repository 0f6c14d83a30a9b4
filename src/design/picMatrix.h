// The sub questions of a matrix question and the scale they are answered on.
#pragma once

#include "design/ResponsePanel.h"
#include "platform/controls/ComboBox.h"

namespace pollarix {

class picMatrix : public ResponsePanel {
    Q_OBJECT
  public:
    picMatrix(ApplicationState& state, SurveyEditor& editor, TreeView& tvTreeView, QWidget* parent);

    // Refills cmbMatrixResponses from the open survey file; one that can't be read leaves it empty.
    // The index that was selected is put back unguarded: InvalidArgument when there are fewer
    // scales than that.
    void LoadMatrixResponses();

    // Selects the scale, if it is there; raises the combo box's click.
    void SelectScale(std::int16_t ResponseMatrixGroupID);
    // Item data of the selected scale, or 1 if none is.
    std::int64_t SelectedScale() const;

    // While another panel lies over this one, the Tab key passes its controls by.
    void SetCovered(bool covered);

    void cmdMatrixAdd_Click() { Add_Click(); }
    void cmdMatrixUp_Click() { Up_Click(); }
    void cmdMatrixDown_Click() { Down_Click(); }
    void cmdMatrixDelete_Click() { Delete_Click(); }
    void lstMatrixResponses_Click() { List_Click(); }
    void cmbMatrixResponses_Click();
    void cmdMatrixDefine_Click();

  private:
    void Refill(const clsQ& q) override;
    void ListChanged(const clsQ&) override {}
    void MoveInQuestion(clsQ& q, std::int16_t position, std::int16_t neighbour) override;

    ComboBox* cmbMatrixResponses_;
};

} // namespace pollarix
