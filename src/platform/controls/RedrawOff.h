// Keeps a grid from showing what happens to it while it is filled, and shows the result also when
// the filling fails half way.
#pragma once

#include "platform/controls/Grid.h"

namespace pollarix {

class RedrawOff {
  public:
    explicit RedrawOff(Grid& grid) : grid_(grid) { grid_.SetRedraw(false); }
    ~RedrawOff() { grid_.SetRedraw(true); }
    RedrawOff(const RedrawOff&) = delete;
    RedrawOff& operator=(const RedrawOff&) = delete;

  private:
    Grid& grid_;
};

} // namespace pollarix
