#include "design/JumpDelegate.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>
#include <utility>

namespace pollarix {

namespace {

constexpr int LettersBetween = 3;

bool ShowTip(const QHelpEvent& event, QAbstractItemView& view, const QString& text) {
    QToolTip::showText(event.globalPos(), PlainToolTip(text), view.viewport());
    return true;
}

QPalette::ColorGroup GroupOf(const QStyleOptionViewItem& item) {
    if (!(item.state & QStyle::State_Enabled))
        return QPalette::Disabled;
    return item.state & QStyle::State_Active ? QPalette::Normal : QPalette::Inactive;
}

} // namespace

void JumpDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
    const QString jump = index.data(JumpRole).toString();
    if (jump.isEmpty()) {
        EditableDelegate::paint(painter, option, index);
        return;
    }
    QStyleOptionViewItem item = option;
    initStyleOption(&item, index);
    const QStyle& style = item.widget ? *item.widget->style() : *QApplication::style();
    const int margin = style.pixelMetric(QStyle::PM_FocusFrameHMargin, &item, item.widget) + 1;
    const QRect text = style.subElementRect(QStyle::SE_ItemViewItemText, &item, item.widget)
                           .adjusted(margin, 0, -margin, 0);
    const QFontMetrics& font = item.fontMetrics;
    const int gap = LettersBetween * font.averageCharWidth();
    // The jump takes what the response leaves, and half of the row where that is too little.
    const int room =
        std::max((text.width() - gap) / 2, text.width() - gap - font.horizontalAdvance(item.text));
    const int width = std::min(font.horizontalAdvance(jump), room);
    item.text = font.elidedText(item.text, Qt::ElideRight, text.width() - gap - width);
    style.drawControl(QStyle::CE_ItemViewItem, &item, painter, item.widget);
    const bool selected = item.state & QStyle::State_Selected;
    painter->save();
    painter->setFont(item.font);
    painter->setPen(
        item.palette.color(GroupOf(item), selected ? QPalette::HighlightedText : QPalette::Text));
    painter->drawText(QRect(text.right() + 1 - width, text.top(), width, text.height()),
                      Qt::AlignVCenter | Qt::AlignRight,
                      font.elidedText(jump, Qt::ElideRight, width));
    painter->restore();
}

bool JumpDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view,
                             const QStyleOptionViewItem& option, const QModelIndex& index) {
    const QString jump = index.data(JumpRole).toString();
    if (event->type() != QEvent::ToolTip || jump.isEmpty())
        return EditableDelegate::helpEvent(event, view, option, index);
    return ShowTip(*event, *view, index.data().toString() + '\n' + jump);
}

TipDelegate::TipDelegate(QObject* parent, More more)
    : OneLineDelegate(parent), more_(std::move(more)) {}

bool TipDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view,
                            const QStyleOptionViewItem& option, const QModelIndex& index) {
    const QString more =
        event->type() == QEvent::ToolTip && index.isValid() ? more_(index) : QString();
    if (more.isEmpty())
        return OneLineDelegate::helpEvent(event, view, option, index);
    return ShowTip(*event, *view, index.data().toString() + '\n' + more);
}

} // namespace pollarix
