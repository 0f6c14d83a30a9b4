// Ties a button to its handler. A failure that the handler lets pass is shown and ends there.
#pragma once

#include <QAbstractButton>

#include "platform/base/Handlers.h"

namespace pollarix {

template <class Panel>
void OnClick(QAbstractButton* button, Panel* panel, void (Panel::*handler)()) {
    QObject::connect(button, &QAbstractButton::clicked, panel,
                     [panel, handler] { RunHandler([&] { (panel->*handler)(); }); });
}

} // namespace pollarix
