// The Edit menu's way of working: it sends keystrokes to whatever control has the focus and knows
// nothing of surveys.
#pragma once

#include <QKeySequence>
#include <QObject>

namespace pollarix {

// Presses and releases the key on the focused control of the active window. Without one, or on a
// control that, with all it lies in, does nothing with it, the keystroke is lost. It never triggers
// a menu's shortcut.
void SendKeys(const QKeyCombination& key);

// Filters the application's events, so that a box of one line keeps what is selected in it while a
// menu is open. It would drop that when the menus are opened by key.
class SelectionKeeper : public QObject {
    Q_OBJECT
  public:
    using QObject::QObject;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};

} // namespace pollarix
