// Draws the entries of lists, trees and grids on one line each, cut at the right edge, whatever
// line ends their texts hold. The texts themselves stay as they are; a tool tip shows all of one
// that did not fit.
#pragma once

#include <QStyledItemDelegate>

class QEvent;

namespace pollarix {

// The text as one line of at most about 1,000 characters: line ends and tabs become blanks.
QString OneLine(const QString& text);

// The text for a tool tip: shown as it stands and wrapped, never read as markup.
QString PlainToolTip(const QString& text);

class OneLineDelegate : public QStyledItemDelegate {
  public:
    // Full asks the view for the width of the whole line, Cut for none: the view's own width is
    // then all an entry gets.
    enum class Width { Full, Cut };

    explicit OneLineDelegate(QObject* parent, Width width = Width::Cut);

    QString displayText(const QVariant& value, const QLocale& locale) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;

  private:
    Width width_;
};

} // namespace pollarix
