#include "platform/controls/TreeView.h"

#include <QHash>
#include <QHeaderView>
#include <QMouseEvent>

#include <algorithm>
#include <vector>

#include "platform/base/Failure.h"
#include "platform/base/Handlers.h"

namespace pollarix {

struct TreeView::State {
    QHash<QString, TreeNode*> byKey;
    std::vector<TreeNode*> collection; // in the order of adding
};

namespace {

TreeNode* Sibling(const TreeNode& node, int step) {
    QTreeWidgetItem* parent = node.QTreeWidgetItem::parent();
    if (!parent)
        parent = node.treeWidget()->invisibleRootItem();
    return static_cast<TreeNode*>(
        parent->child(parent->indexOfChild(const_cast<TreeNode*>(&node)) + step));
}

bool IsWithin(const QTreeWidgetItem* node, const QTreeWidgetItem& top) {
    while (node && node != &top)
        node = node->parent();
    return node != nullptr;
}

} // namespace

TreeNode* TreeNode::Previous() const {
    return Sibling(*this, -1);
}

TreeNode* TreeNode::Next() const {
    return Sibling(*this, 1);
}

void TreeNode::SetSelected() {
    QTreeWidget& tree = *treeWidget();
    if (tree.updatesEnabled()) {
        tree.setCurrentItem(this);
        tree.scrollToItem(this);
        return;
    }
    // While a survey is loaded, nothing is painted: a view that heard of each node in turn would
    // lay out all of the nodes each time.
    const QSignalBlocker unheard(tree.selectionModel());
    tree.setCurrentItem(this);
}

TreeView::TreeView(QWidget* parent) : EntryView(parent), state_(std::make_unique<State>()) {
    setColumnCount(1);
    setHeaderHidden(true);
    header()->setStretchLastSection(true);
    setUniformRowHeights(true);
}

TreeView::~TreeView() = default;

TreeNode& TreeView::Add(const QString& relative, Relationship relationship, const QString& key,
                        const QString& text) {
    if (key.isEmpty() || state_->byKey.contains(key))
        throw Failure(failure::InvalidArgument);
    TreeNode* const beside = relative.isEmpty() ? nullptr : Find(relative);
    if (!relative.isEmpty() && !beside)
        throw Failure(failure::NoObject);

    QTreeWidgetItem* parent = invisibleRootItem();
    int position = parent->childCount();
    if (beside && relationship == tvwChild) {
        parent = beside;
        position = beside->childCount();
    } else if (beside && relationship != Root) {
        if (beside->QTreeWidgetItem::parent())
            parent = beside->QTreeWidgetItem::parent();
        position = parent->indexOfChild(beside) + (relationship == tvwNext ? 1 : 0);
    }
    std::unique_ptr<TreeNode> node(new TreeNode(key));
    node->SetText(text);
    state_->collection.push_back(node.get());
    state_->byKey.insert(key, node.get());
    parent->insertChild(position, node.get());
    return *node.release();
}

void TreeView::Remove(const QString& key) {
    TreeNode* const node = Find(key);
    if (!node)
        throw Failure(failure::NoObject);
    if (IsWithin(SelectedItem(), *node)) {
        TreeNode* heir = node->Next() ? node->Next() : node->Previous();
        if (!heir)
            heir = static_cast<TreeNode*>(node->QTreeWidgetItem::parent());
        if (heir)
            setCurrentItem(heir);
        else
            selectionModel()->clear();
    }
    if (node->childCount() == 0) {
        std::erase(state_->collection, node);
    } else {
        std::erase_if(state_->collection,
                      [&](const TreeNode* other) { return IsWithin(other, *node); });
        state_->byKey.removeIf([&](const auto& entry) { return IsWithin(entry.value(), *node); });
    }
    state_->byKey.remove(key);
    delete node;
}

void TreeView::Clear() {
    state_->collection.clear();
    state_->byKey.clear();
    clear();
}

int TreeView::Count() const {
    return static_cast<int>(state_->collection.size());
}

TreeNode& TreeView::Item(int index) const {
    if (index < 1 || index > Count())
        throw Failure(failure::Subscript);
    return *state_->collection[static_cast<std::size_t>(index) - 1];
}

TreeNode* TreeView::Find(const QString& key) const {
    return state_->byKey.value(key);
}

TreeNode* TreeView::SelectedItem() const {
    return static_cast<TreeNode*>(itemFromIndex(Selected()));
}

void TreeView::RaiseClick() {
    TreeNode* const node = SelectedItem();
    if (node && NodeClick)
        RunHandler([&] { NodeClick(*node); });
}

void TreeView::mouseDoubleClickEvent(QMouseEvent* event) {
    const QModelIndex index = indexAt(event->position().toPoint());
    const bool onSelected = event->button() == Qt::LeftButton && index.isValid() &&
                            selectionModel()->isSelected(index) &&
                            visualRect(index).contains(event->position().toPoint());
    QTreeWidget::mouseDoubleClickEvent(event);
    // The first click may have given the focus away, and the second one took it back.
    if (onSelected)
        RaiseClick();
}

} // namespace pollarix
