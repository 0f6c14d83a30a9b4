#include "design/picTreeView.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QToolButton>

#include "design/ArrowButton.h"
#include "design/JumpDelegate.h"
#include "design/JumpTexts.h"
#include "document/QuestionLabels.h"
#include "document/SurveyViews.h"
#include "platform/controls/OnClick.h"
#include "platform/controls/Twips.h"
#include "platform/richtext/RichText.h"

namespace pollarix {

picTreeView::picTreeView(ApplicationState& state, SurveyEditor& editor, QWidget* parent)
    : ListPanel("picTreeView", "picBlankPanel", 20, "Questions", parent), state_(state),
      editor_(editor), tvTreeView_(new TreeView(parent)),
      cmdUp_(NewArrowButton("cmdUp", "up", "Move question up", this)),
      cmdDown_(NewArrowButton("cmdDown", "down", "Move question down", this)),
      cmdDelete_(new QPushButton("Delete", this)) {
    tvTreeView_->setObjectName("tvTreeView");
    tvTreeView_->setAccessibleName("Questions");
    tvTreeView_->setFrameShape(QFrame::NoFrame);
    tvTreeView_->setItemDelegate(new TipDelegate(tvTreeView_, [this](const QModelIndex& index) {
        const auto* const node = static_cast<TreeNode*>(tvTreeView_->itemFromIndex(index));
        const QString from = JumpsTo(editor_.Survey(), node->Key());
        return from.isEmpty() ? from : "Jumped to from:\n" + from;
    }));
    cmdDelete_->setObjectName("cmdDelete");
    cmdDelete_->setAccessibleName("Delete question");

    ButtonRow().addWidget(cmdUp_);
    ButtonRow().addWidget(cmdDown_);
    ButtonRow().addStretch(1);
    ButtonRow().addWidget(cmdDelete_);

    OnClick(cmdUp_, this, &picTreeView::cmdUp_Click);
    OnClick(cmdDown_, this, &picTreeView::cmdDown_Click);
    OnClick(cmdDelete_, this, &picTreeView::cmdDelete_Click);
}

void picTreeView::LayOutTree() {
    const int top = y() + StripHeight();
    int height = this->height() - top + ToPixels(500);
    // In a window too small for that, what the panel has between strip and buttons: the tree would
    // else stand where it was, in front of something else.
    if (height <= 0)
        height = this->height() - StripHeight() - ButtonRowHeight();
    if (height > 0 && width() > 2)
        tvTreeView_->setGeometry(x() + 1, top, width() - 2, height);
    tvTreeView_->raise();
}

void picTreeView::ReindexTreeQuestionNos() {
    QString prefix;
    for (int i = 1; i <= tvTreeView_->Count(); ++i) {
        TreeNode& node = tvTreeView_->Item(i);
        if (node.Key() == RootKey)
            continue;
        const std::shared_ptr<clsQ> q = editor_.Survey().GetQ(node.Key());
        if (!q)
            continue;
        // An instruction text carries on the prefix of the question visited before it: the prefix
        // is not cleared for it, on purpose.
        if (IsNumbered(q->qType))
            prefix = NumberPrefix(q->QuestionNo);
        // It is the node's present text that is asked, not the question's: a question without text
        // keeps its bare number, and an instruction text without one changes at each turn.
        node.SetText(prefix +
                     (node.Text().isEmpty() ? QString(NoTextYet) : PlainTextOf(q->Question)));
    }
    if (Renumbered)
        Renumbered();
}

TreeNode& picTreeView::MoveTo(const TreeNode& neighbour, TreeView::Relationship side,
                              const TreeNode& moved) {
    // Copies: the node itself goes.
    const QString key = moved.Key();
    const QString text = moved.Text();
    editor_.SwapQuestions(key, neighbour.Key());
    tvTreeView_->Remove(key);
    TreeNode& node = tvTreeView_->Add(neighbour.Key(), side, key, text);
    node.SetSelected();
    return node;
}

void picTreeView::Relabel(TreeNode& node) {
    const clsSurvey& survey = editor_.Survey();
    if (const std::shared_ptr<clsQ> q = survey.GetQ(node.Key()))
        node.SetText(NumberAndDot(QString::number(survey.GetQIndexFromKey(node.Key()))) +
                     PlainTextOf(q->Question));
}

void picTreeView::cmdUp_Click() {
    const TreeNode* const selected = tvTreeView_->SelectedItem();
    TreeNode* const previous = selected ? selected->Previous() : nullptr;
    if (!previous)
        return;
    TreeNode& moved = MoveTo(*previous, TreeView::tvwPrevious, *selected);
    // Only Up relabels: afterwards neither node is empty, so the reindexing gives them their bare
    // number where after Down it gives the words for a missing text.
    Relabel(moved);
    Relabel(*previous);
    ReindexTreeQuestionNos();
}

void picTreeView::cmdDown_Click() {
    const TreeNode* const selected = tvTreeView_->SelectedItem();
    const TreeNode* const next = selected ? selected->Next() : nullptr;
    if (!next)
        return;
    MoveTo(*next, TreeView::tvwNext, *selected);
    ReindexTreeQuestionNos();
}

void picTreeView::cmdDelete_Click() {
    if (editor_.Survey().QCount() == 1) {
        state_.dialogs.MsgBox("Can't delete last question.", MsgIcon::Critical);
        return;
    }
    const TreeNode* const selected = tvTreeView_->SelectedItem();
    if (!selected || selected->Key() == RootKey)
        return;
    const QString key = selected->Key();
    editor_.DeleteQuestion(key);
    // The root inherits the selection. The panel goes on showing the deleted question until the
    // next click on a node, and what is entered there must not become a neighbour's.
    if (TreeNode* const root = tvTreeView_->Find(RootKey))
        root->SetSelected();
    tvTreeView_->Remove(key);
    ReindexTreeQuestionNos();
}

} // namespace pollarix
