#include "images/Frame.h"

#include <QPainter>
#include <QWidget>

namespace pollarix::images {

namespace {

constexpr int TitleHeight = 29;
constexpr int Border = 1;
const QColor BorderColour(0x8a, 0x92, 0x9e);
const QColor TitleColour(0xdd, 0xe2, 0xe9);
const QColor TextColour(0x2b, 0x33, 0x3f);

void DrawCross(QPainter& painter, const QPointF& centre) {
    constexpr qreal arm = 4.5;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(TextColour, 1.4));
    painter.drawLine(centre + QPointF(-arm, -arm), centre + QPointF(arm, arm));
    painter.drawLine(centre + QPointF(-arm, arm), centre + QPointF(arm, -arm));
}

} // namespace

QMargins FrameMargins() {
    return {Border, TitleHeight, Border, Border};
}

QImage Framed(QWidget& window) {
    const QMargins margins = FrameMargins();
    const QRect inside = window.rect().translated(margins.left(), margins.top());
    QImage picture(inside.marginsAdded(margins).size(), QImage::Format_RGB32);
    picture.fill(TitleColour);
    QPainter painter(&picture);
    painter.drawPixmap(inside.topLeft(), window.grab());
    painter.setPen(BorderColour);
    painter.drawRect(picture.rect().adjusted(0, 0, -1, -1));
    painter.drawLine(0, TitleHeight - 1, picture.width(), TitleHeight - 1);
    const QRect title(0, 0, picture.width(), TitleHeight);
    QFont font = window.font();
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(TextColour);
    painter.drawText(title, Qt::AlignCenter, window.windowTitle());
    DrawCross(painter, QRectF(title.right() - TitleHeight, 0, TitleHeight, TitleHeight).center());
    return picture;
}

} // namespace pollarix::images
