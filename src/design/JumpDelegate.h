// Shows jumps where they begin and end: behind the responses of a list, which lead to a question,
// and in the tool tips of the question tree. The texts of lists and tree stay as they are.
#pragma once

#include <functional>

#include "design/EditInPlace.h"

namespace pollarix {

// Draws what an entry's JumpRole says at the right of its text.
class JumpDelegate : public EditableDelegate {
  public:
    static constexpr int JumpRole = Qt::UserRole + 1; // a text; none for no jump

    using EditableDelegate::EditableDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;
};

// Adds to the tool tip of an entry what a function has to say of it.
class TipDelegate : public OneLineDelegate {
  public:
    using More = std::function<QString(const QModelIndex& index)>; // "" for nothing
    TipDelegate(QObject* parent, More more);

    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;

  private:
    More more_;
};

} // namespace pollarix
