// Draws the cells of a matrix as choices: a round mark in each, filled and with its word where the
// cell is chosen. Which cells are chosen is told by their texts alone.
#pragma once

#include "platform/controls/OneLineDelegate.h"

namespace pollarix {

class MatrixDelegate : public OneLineDelegate {
  public:
    // A cell with exactly this text is chosen.
    static constexpr const char* Chosen = "Yes";

    explicit MatrixDelegate(QObject* parent) : OneLineDelegate(parent) {}

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
};

} // namespace pollarix
