// Who moved the focus: the user or the program. Controls with a LostFocus handler ask here; what
// the handlers do is theirs.
#pragma once

class QFocusEvent;
class QWidget;

namespace pollarix {

// Gives a control the focus without raising the LostFocus of the control that has it. Hidden or
// disabled controls are left alone.
void MoveFocusQuietly(QWidget& control);

// True while MoveFocusQuietly is at work.
bool FocusMovesQuietly();

// For a control's focusOutEvent: true if the user took the focus from it to another control or
// window of the program, by mouse, key or switching windows. Not for popups and menus, not for
// another program's window, and not when code moved the focus or hid or disabled the control.
bool IsFocusLossByUser(const QWidget& control, const QFocusEvent& event);

} // namespace pollarix
