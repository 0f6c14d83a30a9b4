// Draws the entries of lists, trees and grids on one line each, cut at the right edge, whatever
// line ends their texts hold. The texts themselves stay as they are; a tool tip shows all of one
// that did not fit.
#pragma once

#include <QItemSelectionModel>
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

// What a view's own selection command may do for a user's event: the button's press selects, its
// release never does, and nothing takes the one selection away.
QItemSelectionModel::SelectionFlags UserSelection(QItemSelectionModel::SelectionFlags command,
                                                  const QEvent* event);

// Whether the event that a view asks a selection command for is the user's press on an entry: the
// second of two quick clicks on different entries comes as a double click.
bool IsPress(const QEvent* event);

} // namespace pollarix
