#include "shell/EditKeys.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPointer>
#include <QWidget>

namespace pollarix {

void SendKeys(const QKeyCombination& key) {
    // Handed to the control itself: sent through the application, Ctrl+C would find the menu again.
    const QPointer<QObject> target = QApplication::focusWidget();
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        if (!target)
            return;
        QKeyEvent event(type, key.key(), key.keyboardModifiers());
        target->event(&event);
    }
}

} // namespace pollarix
