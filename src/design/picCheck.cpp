#include "design/picCheck.h"

#include <QPushButton>
#include <QVBoxLayout>

#include "design/JumpDelegate.h"
#include "design/JumpTexts.h"
#include "design/frmLogic.h"
#include "platform/controls/OnClick.h"

namespace pollarix {

picCheck::picCheck(ApplicationState& state, SurveyEditor& editor, TreeView& tvTreeView,
                   QWidget* parent)
    : ResponsePanel({.panel = "picCheck",
                     .boxHeading = "Label1(5)",
                     .boxCaption = "Response:",
                     .box = "txtCheckResponse",
                     .add = "cmdCheckAdd",
                     .listHeading = "Label1(6)",
                     .listCaption = "Added responses:",
                     .list = "lstCheckResponses",
                     .up = "cmdCheckUp",
                     .down = "cmdCheckDown",
                     .remove = "cdmCheckDelete",
                     .what = "response"},
                    state, editor, tvTreeView, parent),
      cmdRadioLogic_(new QPushButton("Logic...", this)) {
    cmdRadioLogic_->setObjectName("cmdRadioLogic");
    cmdRadioLogic_->setAccessibleName("Logic of the response");
    cmdRadioLogic_->setToolTip("Choose the question that follows the selected response");
    ButtonColumn().addWidget(cmdRadioLogic_);
    EditInPlace(*list_, new JumpDelegate(*list_, [this](int row, const QString& text) {
        EditResponse(row, text);
    }));
    OnClick(cmdRadioLogic_, this, &picCheck::cmdRadioLogic_Click);
}

void picCheck::SetLogicVisible(bool on) {
    cmdRadioLogic_->setVisible(on);
}

void picCheck::ListChanged(const clsQ& q) {
    const bool jumps = !cmdRadioLogic_->isHidden();
    for (int i = 0; i < list_->ListCount(); ++i) {
        const QString target =
            jumps ? JumpTarget(editor_.Survey(), *q.GetResponse(Narrow16(i + 1))) : QString();
        QListWidgetItem& entry = *list_->item(i);
        entry.setData(JumpDelegate::JumpRole,
                      target.isEmpty() ? QVariant() : QString(u'\u2192') + ' ' + target);
        entry.setData(Qt::AccessibleTextRole,
                      target.isEmpty() ? QVariant() : entry.text() + ", jumps to " + target);
    }
}

void picCheck::ShowJumps() {
    if (const std::shared_ptr<clsQ> q = CurrentQuestion(); q && ShowsResponsesOf(*q))
        ListChanged(*q);
}

// The responses themselves move, so each keeps its row and its jump.
void picCheck::MoveInQuestion(clsQ& q, std::int16_t position, std::int16_t neighbour) {
    editor_.SwapResponses(q, position, neighbour);
}

void picCheck::cmdRadioLogic_Click() {
    // The panel of a deleted question has none whose list could be filled.
    if (CurrentQuestion() && !QuestionOfList())
        return;
    if (list_->ListIndex() == -1) {
        state_.dialogs.MsgBox("Please select a response to apply logic to.", MsgIcon::Critical);
        return;
    }
    const std::shared_ptr<clsQ> LogicQuestion = CurrentQuestion();
    if (!LogicQuestion) {
        state_.dialogs.MsgBox("Unable to set logic for this response.", MsgIcon::Critical);
        return;
    }
    frmLogic(editor_, LogicQuestion, Narrow16(list_->ListIndex() + 1), window()).exec();
    editor_.JumpAsked();
    ShowJumps();
}

} // namespace pollarix
