#include "platform/controls/OneLineDelegate.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QHelpEvent>
#include <QStyle>
#include <QToolTip>

#include <algorithm>

#include "platform/base/ShownText.h"

namespace pollarix {

namespace {

// Wider than any window shows, and short enough to be measured at each repaint.
constexpr qsizetype LongestLine = 1000;
constexpr qsizetype LongestToolTip = 4000;
constexpr int RoomAboveAndBelow = 3;

bool BreaksLine(QChar c) {
    return (c >= u'\t' && c <= u'\r') || c == QChar::LineSeparator ||
           c == QChar::ParagraphSeparator;
}

} // namespace

QString OneLine(const QString& text) {
    QString line = Shortened(text, LongestLine);
    if (std::none_of(line.cbegin(), line.cend(), BreaksLine))
        return line;
    line.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    std::replace_if(line.begin(), line.end(), BreaksLine, QChar(u' '));
    return line;
}

QString PlainToolTip(const QString& text) {
    QString html = Shortened(text, LongestToolTip).toHtmlEscaped();
    html.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    return "<p style='white-space:pre-wrap'>" + html + "</p>";
}

OneLineDelegate::OneLineDelegate(QObject* parent, Width width)
    : QStyledItemDelegate(parent), width_(width) {}

QString OneLineDelegate::displayText(const QVariant& value, const QLocale&) const {
    return OneLine(value.toString());
}

QSize OneLineDelegate::sizeHint(const QStyleOptionViewItem& option,
                                const QModelIndex& index) const {
    const QSize size = QStyledItemDelegate::sizeHint(option, index);
    return {width_ == Width::Full ? size.width() : 0, size.height() + 2 * RoomAboveAndBelow};
}

bool OneLineDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view,
                                const QStyleOptionViewItem& option, const QModelIndex& index) {
    if (event->type() != QEvent::ToolTip || !index.isValid())
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    QStyleOptionViewItem item = option;
    initStyleOption(&item, index);
    const QStyle* style = view->style();
    const int margin = style->pixelMetric(QStyle::PM_FocusFrameHMargin, &item, view) + 1;
    const QRect visible = style->subElementRect(QStyle::SE_ItemViewItemText, &item, view)
                              .adjusted(margin, 0, -margin, 0)
                              .intersected(view->viewport()->rect());
    const QString text = index.data().toString();
    if (item.text == text && item.fontMetrics.horizontalAdvance(text) <= visible.width()) {
        QToolTip::hideText();
        event->ignore();
    } else {
        QToolTip::showText(event->globalPos(), PlainToolTip(text), view->viewport());
    }
    return true;
}

} // namespace pollarix
