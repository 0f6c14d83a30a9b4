// Where long work says how far it is: the main window answers with its status bar. Only the
// showing; what is shown and how often is up to the work.
#pragma once

#include <QString>

namespace pollarix {

class ProgressDisplay {
  public:
    virtual ~ProgressDisplay() = default;

    virtual void ShowProgress(const QString& text) = 0;
    // The work has ended: the display shows again what it showed before.
    virtual void ClearProgress() = 0;
};

} // namespace pollarix
