// The panel with the question tree: shows the survey's questions in order, moves and deletes them.
// Adding and showing a question lie with picDesign and picQProperties.
#pragma once

#include "design/ListPanel.h"
#include "document/ApplicationState.h"
#include "platform/controls/TreeView.h"

class QPushButton;
class QToolButton;

namespace pollarix {

// What a question without text shows in the tree.
inline constexpr const char* NoTextYet = "<Text not yet entered>";

// The number with ". ", or "" where there is no number: never a lone ". ".
QString NumberPrefix(const QString& QuestionNo);

class picTreeView : public ListPanel {
    Q_OBJECT
  public:
    // The tree itself becomes a child of the parent and stands in front of this panel.
    picTreeView(ApplicationState& state, QWidget* parent);

    TreeView& Tree() { return *tvTreeView_; }

    // Lays the tree over the panel. The panel's own place is the parent's business.
    void LayOutTree();

    // Rewrites the text of all question nodes, in the tree's collection order.
    void ReindexTreeQuestionNos();

    void cmdUp_Click();
    void cmdDown_Click();
    void cmdDelete_Click();

  private:
    TreeNode& MoveTo(const TreeNode& neighbour, TreeView::Relationship side, TreeNode& moved);
    void Relabel(TreeNode& node);

    ApplicationState& state_;
    TreeView* tvTreeView_;
    QToolButton* cmdUp_;
    QToolButton* cmdDown_;
    QPushButton* cmdDelete_;
};

} // namespace pollarix
