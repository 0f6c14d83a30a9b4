// A page whose work starts by itself, half a second after the page has loaded, so that the page is
// on the screen first. Back and Cancel are live meanwhile: they leave the page, and the work goes
// on to its end behind it.
#pragma once

#include "web/WizardPage.h"

class QTimer;

namespace pollarix {

class WizardTimerPage : public WizardPage {
    Q_OBJECT
  public:
    WizardTimerPage(WizardRun& run, const char* name, const QString& caption,
                    const QString& message, int step, QWidget* parent);

  protected:
    // The work, run once; the timer is off by then. The page lives until it has returned, also when
    // the user leaves it meanwhile, since its exec does not return before.
    virtual void Timer1_Timer() = 0;

  private:
    QTimer* Timer1_;
};

} // namespace pollarix
