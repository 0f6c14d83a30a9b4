// How every panel finds the current question: it is the one of the node selected in the question
// tree, and no variable holds it beside that.
#pragma once

#include <memory>

#include "document/ApplicationState.h"
#include "platform/controls/TreeView.h"

namespace pollarix {

// No object when no node is selected, or the root, or a node whose question is gone.
std::shared_ptr<clsQ> SelectedQuestion(const ApplicationState& state, const TreeView& tvTreeView);

} // namespace pollarix
