// The one piece of long work that a window does at a time: hourglass, progress, and repainting
// while what the user presses is lost. Knows nothing of the work itself.
#pragma once

#include <QElapsedTimer>
#include <QString>

#include <cstdint>
#include <functional>

#include "platform/desktop/ProgressDisplay.h"

namespace pollarix {

// Long work calls it as often as it likes, with the count of its steps done and of all its steps.
using ProgressStep = std::function<void(std::int64_t done, std::int64_t total)>;

class LongWork {
  public:
    explicit LongWork(ProgressDisplay& display) : display_(display) {}

    // True while the work runs, also in the middle of a repaint. Nothing else may be started then
    // and no survey closed: a timer, or a menu that the desktop shows, still could.
    bool IsRunning() const { return running_; }

    // Runs the work; does nothing while another one runs. `what` begins the progress text, such as
    // "Detailed report: respondent". Throws what the work throws, the window being as before.
    void Do(const QString& what, const std::function<void(const ProgressStep&)>& work);

  private:
    void Breathe(const QString& text);

    ProgressDisplay& display_;
    QElapsedTimer sinceBreath_;
    bool running_ = false;
};

} // namespace pollarix
