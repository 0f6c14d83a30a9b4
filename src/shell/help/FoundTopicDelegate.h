// Draws a line of the list of found topics: what stands before the first line end in bold, and what
// stands behind it below, as many lines as it takes.
#pragma once

#include <QStyledItemDelegate>

class QAbstractItemView;
class QTextDocument;

namespace pollarix {

class FoundTopicDelegate : public QStyledItemDelegate {
    Q_OBJECT
  public:
    explicit FoundTopicDelegate(QAbstractItemView* view);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

  private:
    void LayOut(QTextDocument& text, const QFont& font, const QModelIndex& index, int width) const;

    const QAbstractItemView& view_;
};

} // namespace pollarix
