#include "shell/PathLabel.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

namespace pollarix {

PathLabel::PathLabel(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setContentsMargins(6, 0, 6, 0);
}

QSize PathLabel::minimumSizeHint() const {
    // Also while it is empty: the status bar asks only once.
    return {0, fontMetrics().height()};
}

QString PathLabel::ShownText() const {
    return fontMetrics().elidedText(text(), Qt::ElideMiddle, contentsRect().width());
}

bool PathLabel::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        // A path is never read as rich text.
        QToolTip::showText(
            static_cast<QHelpEvent*>(event)->globalPos(),
            ShownText() == text() ? QString() : "<qt>" + text().toHtmlEscaped() + "</qt>", this);
        return true;
    }
    return QLabel::event(event);
}

void PathLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.drawText(contentsRect(), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                     ShownText());
}

} // namespace pollarix
