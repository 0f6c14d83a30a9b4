#include "platform/controls/Focus.h"

#include <QApplication>
#include <QFocusEvent>
#include <QWidget>

namespace pollarix {

namespace {

// Counts, since a handler of the control that gets the focus may move it on.
int& QuietMoves() {
    static int moves = 0;
    return moves;
}

struct QuietMove {
    QuietMove() { ++QuietMoves(); }
    ~QuietMove() { --QuietMoves(); }
    QuietMove(const QuietMove&) = delete;
    QuietMove& operator=(const QuietMove&) = delete;
};

} // namespace

void MoveFocusQuietly(QWidget& control) {
    if (!control.isVisible() || !control.isEnabled())
        return;
    const QuietMove move;
    control.setFocus(Qt::OtherFocusReason);
}

bool FocusMovesQuietly() {
    return QuietMoves() > 0;
}

bool IsFocusLossByUser(const QWidget& control, const QFocusEvent& event) {
    // A control that is hidden or disabled loses the focus as if by the Tab key.
    if (FocusMovesQuietly() || !control.isVisible() || !control.isEnabled())
        return false;
    switch (event.reason()) {
    case Qt::MouseFocusReason:
    case Qt::TabFocusReason:
    case Qt::BacktabFocusReason:
    case Qt::ShortcutFocusReason:
        return true;
    case Qt::ActiveWindowFocusReason:
        return QApplication::activeWindow() != nullptr;
    default:
        return false;
    }
}

} // namespace pollarix
