#include "shell/Picture.h"

#include <QMouseEvent>
#include <QPainter>
#include <QSvgRenderer>

#include "platform/base/Handlers.h"

namespace pollarix {

Picture::Picture(const char* name, const char* drawing, QWidget* parent)
    : QWidget(parent),
      drawing_(new QSvgRenderer(QString(":/pictures/%1.svg").arg(QLatin1String(drawing)), this)) {
    setObjectName(name);
}

QSize Picture::sizeHint() const {
    return drawing_->defaultSize();
}

void Picture::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    // It fills the place it is given, and what is too much on two sides is cut off.
    QRectF place(
        {}, QSizeF(drawing_->defaultSize()).scaled(QSizeF(size()), Qt::KeepAspectRatioByExpanding));
    place.moveCenter(QRectF(rect()).center());
    drawing_->render(&painter, place);
}

void Picture::mouseReleaseEvent(QMouseEvent* event) {
    if (Click && event->button() == Qt::LeftButton && rect().contains(event->pos()))
        RunHandler(Click);
    else
        QWidget::mouseReleaseEvent(event);
}

} // namespace pollarix
