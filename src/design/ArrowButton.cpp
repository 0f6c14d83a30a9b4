#include "design/ArrowButton.h"

#include <QPushButton>
#include <QToolButton>

namespace pollarix {

QToolButton* NewArrowButton(const char* name, const char* icon, const QString& says,
                            QWidget* parent) {
    auto* button = new QToolButton(parent);
    button->setObjectName(name);
    button->setIcon(QIcon(QString(":/icons/%1.svg").arg(icon)));
    button->setAccessibleName(says);
    button->setToolTip(says);
    button->setFocusPolicy(Qt::StrongFocus);
    // As high as the buttons with a caption that stand beside it.
    const int height = QPushButton("X").sizeHint().height();
    button->setFixedSize(height + 4, height);
    return button;
}

} // namespace pollarix
