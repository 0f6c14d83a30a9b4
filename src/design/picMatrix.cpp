#include "design/picMatrix.h"

#include <QLabel>
#include <QPushButton>

#include "design/EditInPlace.h"
#include "design/ResponseScales.h"
#include "design/frmMatrixDefine.h"
#include "platform/controls/OnClick.h"

namespace pollarix {

picMatrix::picMatrix(ApplicationState& state, SurveyEditor& editor, TreeView& tvTreeView,
                     QWidget* parent)
    : ResponsePanel({.panel = "picMatrix",
                     .boxHeading = "Label1(8)",
                     .boxCaption = "Sub Question:",
                     .box = "txtMatrixResponse",
                     .add = "cmdMatrixAdd",
                     .listHeading = "Label1(7)",
                     .listCaption = "Added Sub Questions:",
                     .list = "lstMatrixResponses",
                     .up = "cmdMatrixUp",
                     .down = "cmdMatrixDown",
                     .remove = "cmdMatrixDelete",
                     .what = "sub question"},
                    state, editor, tvTreeView, parent),
      cmbMatrixResponses_(new ComboBox(this)) {
    EditInPlace(*list_, new EditableDelegate(*list_, [this](int row, const QString& text) {
        EditResponse(row, text);
    }));
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
    // Cleared before it is read: the scales of the survey before must not stand beside this one.
    cmbMatrixResponses_->Clear();
    for (const ResponseScale& scale : ReadResponseScales(state_.SurveyConnection)) {
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

void picMatrix::cmbMatrixResponses_Click() {
    const int index = cmbMatrixResponses_->ListIndex();
    const std::shared_ptr<clsQ> q = CurrentQuestion();
    if (index == -1 || !q)
        return;
    editor_.ChooseScale(*q, Narrow16(cmbMatrixResponses_->ItemData(index)));
}

void picMatrix::Refill(const clsQ& q) {
    Fill(q);
    SelectScale(q.ResponseMatrixGroupID);
}

void picMatrix::cmdMatrixDefine_Click() {
    // After a save with the root selected the box shows another question's scale. Loading the
    // scales below gives the question the one that is shown, so that it has to be its own.
    if (const std::shared_ptr<clsQ> q = CurrentQuestion())
        SelectScale(q->ResponseMatrixGroupID);
    frmMatrixDefine(state_, window()).exec();
    LoadMatrixResponses();
}

// Nothing of it: the question keeps its order and the survey its changed flag, and the next filling
// of the list shows the old order again. Until then Delete takes another sub question out of the
// question than out of the list. Required behaviour, unlike the choice lists'.
void picMatrix::MoveInQuestion(clsQ&, std::int16_t, std::int16_t) {}

} // namespace pollarix
