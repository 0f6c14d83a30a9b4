// Keys that mean the same in every window, whatever control has the focus. Nothing here knows of
// surveys. The Edit menu works so: it sends keystrokes.
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

// Filters the application's events, so that Enter presses the button that has the focus, on every
// desktop and in every window, and a key that is held down presses it once.
class EnterPresses : public QObject {
    Q_OBJECT
  public:
    using QObject::QObject;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};

} // namespace pollarix
