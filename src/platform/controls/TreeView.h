// A tree whose nodes have a key. Its collection order (Item(1) .. Item(Count)) is the order in
// which nodes were last added, which is not the display order once nodes were removed and added
// again.
#pragma once

#include <QTreeWidget>

#include <functional>
#include <memory>

#include "platform/controls/EntryView.h"

namespace pollarix {

class TreeView;

class TreeNode : public QTreeWidgetItem {
  public:
    const QString& Key() const { return key_; }
    QString Text() const { return text(0); }
    void SetText(const QString& text) { setText(0, text); }
    TreeNode* Previous() const; // sibling before, or none
    TreeNode* Next() const;
    void SetExpanded(bool on) { setExpanded(on); }
    // Selects without raising NodeClick and, unless updates are off, makes the node visible.
    void SetSelected();

  private:
    friend class TreeView;
    explicit TreeNode(QString key) : key_(std::move(key)) {}
    QString key_;
};

class TreeView : public EntryView<QTreeWidget> {
    Q_OBJECT
  public:
    enum Relationship { Root = 0, tvwNext = 2, tvwPrevious = 3, tvwChild = 4 };

    explicit TreeView(QWidget* parent = nullptr);
    ~TreeView() override;

    // Adds a node, as the relative's last child or as its neighbour; relative is "" for a root
    // node. Throws InvalidArgument for a key in use, NoObject for an unknown relative. Long or
    // many-lined texts show on one line, cut at the edge.
    TreeNode& Add(const QString& relative, Relationship relationship, const QString& key,
                  const QString& text);
    // Removes the node and all below it, raising nothing. Throws NoObject for an unknown key.
    // Of the neighbours that are left one may become the selected node, by no event.
    void Remove(const QString& key);
    void Clear();
    int Count() const;
    TreeNode& Item(int index) const; // 1 to Count, in collection order; Subscript failure beyond
    TreeNode* Find(const QString& key) const; // none for an unknown key; fast
    TreeNode* SelectedItem() const;           // none when nothing is selected

    // The user clicked a node (the current one too) or moved to it with the keys. Never raised by
    // code.
    std::function<void(TreeNode&)> NodeClick;

  protected:
    void RaiseClick() override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

  private:
    struct State;

    std::unique_ptr<State> state_;
};

} // namespace pollarix
