#include "design/SelectedQuestion.h"

namespace pollarix {

std::shared_ptr<clsQ> SelectedQuestion(const ApplicationState& state, const TreeView& tvTreeView) {
    const TreeNode* const node = tvTreeView.SelectedItem();
    return node ? state.CurrentSurvey.GetQ(node->Key()) : nullptr;
}

} // namespace pollarix
