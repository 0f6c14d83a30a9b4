#include "platform/desktop/InputLock.h"

#include <QApplication>
#include <QEvent>

namespace pollarix {

namespace {

bool IsPressed(const QEvent& event) {
    switch (event.type()) {
    case QEvent::Enter:
    case QEvent::MouseMove:
    case QEvent::HoverEnter:
    case QEvent::HoverMove:
    case QEvent::HoverLeave:
        return false; // buttons go on showing where the mouse is
    case QEvent::Shortcut:
    case QEvent::InputMethod:
    case QEvent::DragEnter:
    case QEvent::Drop:
        return true;
    default:
        return event.isInputEvent();
    }
}

} // namespace

InputLock::InputLock() {
    qApp->installEventFilter(this);
}

bool InputLock::eventFilter(QObject*, QEvent* event) {
    return IsPressed(*event) && !QApplication::activeModalWidget();
}

} // namespace pollarix
