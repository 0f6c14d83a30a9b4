#include "shell/EditKeys.h"

#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPointer>
#include <QWidget>

namespace pollarix {

void SendKeys(const QKeyCombination& key) {
    const QPointer<QWidget> focus = QApplication::focusWidget();
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent event(type, key.key(), key.keyboardModifiers());
        // Handed to the control itself, and what it leaves to those that it lies in: sent through
        // the application, Ctrl+C would find the menu again.
        for (QPointer<QWidget> target = focus; target; target = target->parentWidget()) {
            event.accept();
            static_cast<QObject&>(*target).event(&event);
            if (event.isAccepted() || !target || target->isWindow())
                break;
        }
    }
}

bool SelectionKeeper::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::FocusOut ||
        static_cast<QFocusEvent*>(event)->reason() != Qt::MenuBarFocusReason ||
        (!qobject_cast<QLineEdit*>(watched) && !qobject_cast<QComboBox*>(watched)))
        return QObject::eventFilter(watched, event);
    // As for a menu that is opened by mouse.
    QFocusEvent toPopup(QEvent::FocusOut, Qt::PopupFocusReason);
    QCoreApplication::sendEvent(watched, &toPopup);
    return true;
}

} // namespace pollarix
