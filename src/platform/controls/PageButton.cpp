#include "platform/controls/PageButton.h"

#include <QShortcutEvent>

namespace pollarix {

bool PageButton::event(QEvent* event) {
    if (event->type() != QEvent::Shortcut || static_cast<QShortcutEvent*>(event)->isAmbiguous())
        return QPushButton::event(event);
    // A key that is held turns one page.
    setShortcutAutoRepeat(static_cast<QShortcutEvent*>(event)->shortcutId(), false);
    click();
    return true;
}

} // namespace pollarix
