#include "collection/MatrixDelegate.h"

#include <QApplication>
#include <QPainter>

namespace pollarix {

namespace {

constexpr int RoomBeforeWord = 5; // pixels
constexpr int TintOfChosen = 56;  // of 255, as the next
constexpr int AlphaOfOpenRing = 130;

// The styles' own marks are hard to see on a dark ground.
void DrawMark(QPainter& painter, const QRect& place, bool chosen, const QColor& color) {
    QColor ring = color;
    ring.setAlpha(chosen ? 255 : AlphaOfOpenRing);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(ring, 1.2));
    painter.setBrush(Qt::NoBrush);
    const QRectF circle = QRectF(place).adjusted(1, 1, -1, -1);
    painter.drawEllipse(circle);
    if (!chosen)
        return;
    const double inset = circle.width() * 0.28;
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawEllipse(circle.adjusted(inset, inset, -inset, -inset));
}

} // namespace

void MatrixDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                           const QModelIndex& index) const {
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    const bool chosen = index.data().toString() == Chosen;
    const bool current = cell.state & QStyle::State_Selected;
    const QString word = chosen ? cell.text : QString();
    const QStyle* style = cell.widget ? cell.widget->style() : QApplication::style();

    if (chosen) {
        QColor tint = cell.palette.color(QPalette::Highlight);
        tint.setAlpha(TintOfChosen);
        cell.backgroundBrush = tint;
        cell.font.setBold(true);
        cell.fontMetrics = QFontMetrics(cell.font);
    }
    cell.text.clear();
    style->drawControl(QStyle::CE_ItemViewItem, &cell, painter, cell.widget);

    const QColor color = cell.palette.color(current ? QPalette::HighlightedText : QPalette::Text);
    const int size = style->pixelMetric(QStyle::PM_ExclusiveIndicatorWidth, nullptr, cell.widget);
    const int wordWidth = chosen ? RoomBeforeWord + cell.fontMetrics.horizontalAdvance(word) : 0;
    const int left = cell.rect.left() + qMax(0, (cell.rect.width() - size - wordWidth) / 2);
    const int top = cell.rect.top() + (cell.rect.height() - size) / 2;
    painter->save();
    painter->setClipRect(cell.rect, Qt::IntersectClip);
    DrawMark(*painter, QRect(left, top, size, size), chosen, color);
    if (chosen) {
        painter->setFont(cell.font);
        painter->setPen(color);
        const QRect rest(left + size + RoomBeforeWord, cell.rect.top(), wordWidth,
                         cell.rect.height());
        painter->drawText(rest, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, word);
    }
    painter->restore();
}

} // namespace pollarix
