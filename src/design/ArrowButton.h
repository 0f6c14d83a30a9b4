// The small buttons with an arrow that move an entry of a list up or down.
#pragma once

#include <QString>

class QToolButton;
class QWidget;

namespace pollarix {

// `icon` is "up" or "down"; `says` tells what the button does, to a screen reader and as the tool
// tip.
QToolButton* NewArrowButton(const char* name, const char* icon, const QString& says,
                            QWidget* parent);

} // namespace pollarix
