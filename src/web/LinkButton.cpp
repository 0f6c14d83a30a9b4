#include "web/LinkButton.h"

#include <QFontMetricsF>
#include <QStyleOptionFocusRect>
#include <QStylePainter>
#include <QtMath>

#include "platform/base/WebAddress.h"
#include "platform/controls/OneLineDelegate.h"

namespace pollarix {

namespace {

constexpr int NarrowestText = 12; // characters
constexpr int Margin = 2;         // pixels

} // namespace

LinkButton::LinkButton(const QString& address, QWidget* parent)
    : QPushButton(address, parent), isLink_(!WebAddressOf(address).isEmpty()) {
    setShortcut({}); // a "&" in an address is no key
    setAccessibleDescription(address);
    setToolTip(PlainToolTip(address));
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    if (!isLink_) {
        setFocusPolicy(Qt::NoFocus);
        return;
    }
    setCursor(Qt::PointingHandCursor);
    QFont underlined = font();
    underlined.setUnderline(true);
    setFont(underlined);
}

QSize LinkButton::sizeHint() const {
    // Rounded up: half a pixel less, and the address is shortened.
    return {qCeil(QFontMetricsF(font()).horizontalAdvance(text())) + 2 * Margin,
            fontMetrics().height() + 2 * Margin};
}

QSize LinkButton::minimumSizeHint() const {
    return {fontMetrics().averageCharWidth() * NarrowestText, sizeHint().height()};
}

void LinkButton::paintEvent(QPaintEvent*) {
    const QRect field = rect().adjusted(Margin, Margin, -Margin, -Margin);
    QStylePainter painter(this);
    painter.setPen(palette().color(isLink_ ? QPalette::Link : QPalette::WindowText));
    painter.drawText(field, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                     fontMetrics().elidedText(text(), Qt::ElideMiddle, field.width()));
    if (hasFocus()) {
        QStyleOptionFocusRect focus;
        focus.initFrom(this);
        painter.drawPrimitive(QStyle::PE_FrameFocusRect, focus);
    }
}

} // namespace pollarix
