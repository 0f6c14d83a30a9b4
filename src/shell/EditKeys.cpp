#include "shell/EditKeys.h"

#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QToolButton>
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

bool EnterPresses::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress)
        return false;
    const auto& key = static_cast<const QKeyEvent&>(*event);
    const bool enter = key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter;
    if (!enter || (key.modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier)
        return false;
    if (auto* const button = qobject_cast<QPushButton*>(watched)) {
        if (!key.isAutoRepeat())
            button->click();
        return true;
    }
    auto* const tool = qobject_cast<QToolButton*>(watched);
    if (!tool || tool->popupMode() == QToolButton::InstantPopup)
        return false;
    if (!key.isAutoRepeat())
        tool->click();
    return true;
}

} // namespace pollarix
