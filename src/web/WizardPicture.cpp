#include "web/WizardPicture.h"

#include <QIcon>
#include <QPainter>

namespace pollarix {

namespace {

constexpr QSize PictureSize(164, 314);
constexpr QRgb Ground = 0xFF24588C; // of the picture's last row

} // namespace

WizardPicture::WizardPicture(QWidget* parent) : QWidget(parent) {
    setObjectName("picWizard");
    setFixedWidth(PictureSize.width());
    setMinimumHeight(PictureSize.height());
}

void WizardPicture::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), QColor(Ground));
    QIcon(":/icons/wizard.svg").paint(&painter, QRect({0, 0}, PictureSize));
}

} // namespace pollarix
