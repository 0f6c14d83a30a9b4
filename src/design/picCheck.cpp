#include "design/picCheck.h"

#include <QPushButton>
#include <QVBoxLayout>

#include "design/frmLogic.h"
#include "platform/controls/OnClick.h"

namespace pollarix {

picCheck::picCheck(ApplicationState& state, TreeView& tvTreeView, QWidget* parent)
    : ResponsePanel({"picCheck", "Label1(5)", "Response:", "txtCheckResponse", "cmdCheckAdd",
                     "Label1(6)", "Added responses:", "lstCheckResponses", "cmdCheckUp",
                     "cmdCheckDown", "cdmCheckDelete", "response"},
                    state, tvTreeView, parent),
      cmdRadioLogic_(new QPushButton("Logic...", this)) {
    cmdRadioLogic_->setObjectName("cmdRadioLogic");
    cmdRadioLogic_->setAccessibleName("Logic of the response");
    cmdRadioLogic_->setToolTip("Choose the question that follows the selected response");
    ButtonColumn().addWidget(cmdRadioLogic_);
    OnClick(cmdRadioLogic_, this, &picCheck::cmdRadioLogic_Click);
}

void picCheck::SetLogicVisible(bool on) {
    cmdRadioLogic_->setVisible(on);
}

void picCheck::cmdCheckUp_Click() {
    if (list_->ListIndex() > 0)
        Move(-1);
}

void picCheck::cmdCheckDown_Click() {
    if (list_->ListIndex() != -1 && list_->ListIndex() != list_->ListCount() - 1)
        Move(1);
}

// The responses themselves move, so each keeps its row and its jump.
void picCheck::Move(int step) {
    const std::shared_ptr<clsQ> q = CurrentQuestion();
    if (!q)
        return;
    const int index = list_->ListIndex();
    const std::int16_t i = Narrow16(index + 1);
    const std::int16_t neighbour = Narrow16(i + step);
    const std::shared_ptr<clsResponse> moved = q->GetResponse(i);
    const std::shared_ptr<clsResponse> other = q->GetResponse(neighbour);
    q->UpdateResponse(i, other);
    q->UpdateResponse(neighbour, moved);
    ExchangeTexts(index, index + step);
    list_->SetListIndex(index + step);
    state_.MarkFileChanged();
}

void picCheck::cmdRadioLogic_Click() {
    if (list_->ListIndex() == -1) {
        state_.dialogs.MsgBox("Please select a response to apply logic to.", MsgIcon::Critical);
        return;
    }
    // The panel may still show a deleted question, so that the selected one has no such response.
    const std::shared_ptr<clsQ> LogicQuestion = CurrentQuestion();
    const std::int16_t LogicResponseIndex = Narrow16(list_->ListIndex() + 1);
    const std::shared_ptr<clsResponse> LogicResponse =
        LogicQuestion && LogicResponseIndex <= LogicQuestion->ResponsesCount
            ? LogicQuestion->GetResponse(LogicResponseIndex)
            : nullptr;
    if (!LogicResponse) {
        state_.dialogs.MsgBox("Unable to set logic for this response.", MsgIcon::Critical);
        return;
    }
    frmLogic(state_, LogicQuestion, LogicResponse, LogicResponseIndex, window()).exec();
    // Whichever way the dialog was left: Cancel marks the survey as well.
    state_.MarkFileChanged();
}

} // namespace pollarix
