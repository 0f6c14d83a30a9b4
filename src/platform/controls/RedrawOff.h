// Keeps a grid, or a widget and all in it, from showing what happens to it while it is filled, and
// shows the result also when the filling fails half way.
#pragma once

#include <functional>

#include "platform/controls/Grid.h"

namespace pollarix {

class RedrawOff {
  public:
    explicit RedrawOff(Grid& grid) : on_([&grid] { grid.SetRedraw(true); }) {
        grid.SetRedraw(false);
    }
    explicit RedrawOff(QWidget& widget) : on_([&widget] { widget.setUpdatesEnabled(true); }) {
        widget.setUpdatesEnabled(false);
    }
    ~RedrawOff() { on_(); }
    RedrawOff(const RedrawOff&) = delete;
    RedrawOff& operator=(const RedrawOff&) = delete;

  private:
    std::function<void()> on_;
};

} // namespace pollarix
