#include "shell/help/FoundTopicDelegate.h"

#include <QAbstractItemView>
#include <QAbstractTextDocumentLayout>
#include <QPainter>
#include <QTextDocument>
#include <QtMath>

namespace pollarix {

FoundTopicDelegate::FoundTopicDelegate(QAbstractItemView* view)
    : QStyledItemDelegate(view), view_(*view) {}

void FoundTopicDelegate::LayOut(QTextDocument& text, const QFont& font, const QModelIndex& index,
                                int width) const {
    const QString shown = index.data().toString();
    text.setDefaultFont(font);
    text.setHtml("<b>" + shown.section('\n', 0, 0).toHtmlEscaped() + "</b><br>" +
                 shown.section('\n', 1).toHtmlEscaped());
    text.setTextWidth(width);
}

void FoundTopicDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                               const QModelIndex& index) const {
    QStyleOptionViewItem item = option;
    initStyleOption(&item, index);
    item.text.clear(); // the style draws the rest
    view_.style()->drawControl(QStyle::CE_ItemViewItem, &item, painter, &view_);

    QTextDocument text;
    LayOut(text, item.font, index, item.rect.width());
    QAbstractTextDocumentLayout::PaintContext context;
    const bool selected = item.state & QStyle::State_Selected;
    context.palette = item.palette;
    context.palette.setColor(
        QPalette::Text, item.palette.color(item.state & QStyle::State_Active ? QPalette::Active
                                                                             : QPalette::Inactive,
                                           selected ? QPalette::HighlightedText : QPalette::Text));
    painter->save();
    painter->translate(item.rect.topLeft());
    text.documentLayout()->draw(painter, context);
    painter->restore();
}

QSize FoundTopicDelegate::sizeHint(const QStyleOptionViewItem& option,
                                   const QModelIndex& index) const {
    const int width = view_.viewport()->width();
    QTextDocument text;
    LayOut(text, option.font, index, width);
    return {width, qCeil(text.size().height())};
}

} // namespace pollarix
