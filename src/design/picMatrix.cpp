#include "design/picMatrix.h"

#include <QLabel>
#include <QPushButton>

#include "design/ResponseScales.h"
#include "design/frmMatrixDefine.h"
#include "platform/controls/OnClick.h"

namespace pollarix {

picMatrix::picMatrix(ApplicationState& state, TreeView& tvTreeView, QWidget* parent)
    : ResponsePanel({"picMatrix", "Label1(8)", "Sub Question:", "txtMatrixResponse", "cmdMatrixAdd",
                     "Label1(7)", "Added Sub Questions:", "lstMatrixResponses", "cmdMatrixUp",
                     "cmdMatrixDown", "cmdMatrixDelete", "sub question"},
                    state, tvTreeView, parent),
      cmbMatrixResponses_(new ComboBox(this)) {
    auto* const heading = new QLabel("Responses:", this);
    heading->setObjectName("Label1(9)");
    cmbMatrixResponses_->setObjectName("cmbMatrixResponses");
    cmbMatrixResponses_->setAccessibleName("Responses");
    auto* const cmdMatrixDefine = new QPushButton("Define...", this);
    cmdMatrixDefine->setObjectName("cmdMatrixDefine");
    cmdMatrixDefine->setAccessibleName("Define responses");
    AddRow(heading, cmbMatrixResponses_, cmdMatrixDefine);

    cmbMatrixResponses_->Click = [this] { cmbMatrixResponses_Click(); };
    OnClick(cmdMatrixDefine, this, &picMatrix::cmdMatrixDefine_Click);
}

void picMatrix::LoadMatrixResponses() {
    const int remembered = cmbMatrixResponses_->ListIndex();
    // Read before the box is cleared: a file that gives none leaves the box as it was.
    const std::vector<ResponseScale> scales = ReadResponseScales(state_.SurveyConnection);
    cmbMatrixResponses_->Clear();
    for (const ResponseScale& scale : scales) {
        cmbMatrixResponses_->AddItem(scale.text);
        cmbMatrixResponses_->SetItemData(cmbMatrixResponses_->NewIndex(), scale.id);
    }
    cmbMatrixResponses_->SetListIndex(remembered);
    if (cmbMatrixResponses_->ListCount() > 0 && cmbMatrixResponses_->ListIndex() == -1)
        cmbMatrixResponses_->SetListIndex(0);
}

void picMatrix::SelectScale(std::int16_t ResponseMatrixGroupID) {
    SelectComboItemByData(*cmbMatrixResponses_, QString::number(ResponseMatrixGroupID));
}

std::int64_t picMatrix::SelectedScale() const {
    const int index = cmbMatrixResponses_->ListIndex();
    return index == -1 ? 1 : cmbMatrixResponses_->ItemData(index);
}

void picMatrix::SetCovered(bool covered) {
    static constexpr const char* Policy = "ownFocusPolicy";
    for (QWidget* const control : findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
        if (!control->property(Policy).isValid())
            control->setProperty(Policy, static_cast<int>(control->focusPolicy()));
        control->setFocusPolicy(
            covered ? Qt::NoFocus
                    : static_cast<Qt::FocusPolicy>(control->property(Policy).toInt()));
    }
}

// Choosing a scale alone does not mark the survey as changed.
void picMatrix::cmbMatrixResponses_Click() {
    const int index = cmbMatrixResponses_->ListIndex();
    const std::shared_ptr<clsQ> q = CurrentQuestion();
    if (index == -1 || !q)
        return;
    q->ResponseMatrixGroupID = Narrow16(cmbMatrixResponses_->ItemData(index));
    state_.CurrentSurvey.SetQ(q->Key, q);
}

void picMatrix::cmdMatrixDefine_Click() {
    frmMatrixDefine(state_, window()).exec();
    LoadMatrixResponses();
}

void picMatrix::cmdMatrixUp_Click() {
    if (list_->ListIndex() > 0)
        Move(-1);
}

void picMatrix::cmdMatrixDown_Click() {
    if (list_->ListIndex() != -1 && list_->ListIndex() != list_->ListCount() - 1)
        Move(1);
}

// Moves in the list only: the question keeps its order and the survey its changed flag, and the
// next filling of the list shows the old order again. Until then Delete takes another sub question
// out of the question than out of the list. Required behaviour, unlike the choice lists'.
void picMatrix::Move(int step) {
    const int index = list_->ListIndex();
    ExchangeTexts(index, index + step);
    list_->SetListIndex(index + step);
}

} // namespace pollarix
