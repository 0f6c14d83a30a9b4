// The panel with the question tree: shows the survey's questions in order, moves and deletes them.
// Adding and showing a question lie with picDesign and picQProperties.
#pragma once

#include <functional>

#include "design/ListPanel.h"
#include "document/SurveyEditor.h"
#include "platform/controls/TreeView.h"

class QPushButton;
class QToolButton;

namespace pollarix {

class picTreeView : public ListPanel {
    Q_OBJECT
  public:
    // The tree itself becomes a child of the parent and stands in front of this panel.
    picTreeView(ApplicationState& state, SurveyEditor& editor, QWidget* parent);

    TreeView& Tree() { return *tvTreeView_; }

    // Lays the tree over the panel. The panel's own place is the parent's business.
    void LayOutTree();

    // Called when questions have got other places and numbers.
    std::function<void()> Renumbered;

    // Rewrites the text of all question nodes, in the tree's collection order.
    void ReindexTreeQuestionNos();

    void cmdUp_Click();
    void cmdDown_Click();
    void cmdDelete_Click();

  private:
    TreeNode& MoveTo(const TreeNode& neighbour, TreeView::Relationship side, const TreeNode& moved);
    void Relabel(TreeNode& node);

    ApplicationState& state_;
    SurveyEditor& editor_;
    TreeView* tvTreeView_;
    QToolButton* cmdUp_;
    QToolButton* cmdDown_;
    QPushButton* cmdDelete_;
};

} // namespace pollarix
