// The Edit menu's way of working: it sends keystrokes to whatever control has the focus and knows
// nothing of surveys.
#pragma once

#include <QKeySequence>

namespace pollarix {

// Presses and releases the key on the focused control of the active window. Without one, or on a
// control that, with all it lies in, does nothing with it, the keystroke is lost. It never triggers
// a menu's shortcut.
void SendKeys(const QKeyCombination& key);

} // namespace pollarix
