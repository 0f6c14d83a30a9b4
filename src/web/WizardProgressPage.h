// Page 5 of both wizards: work with a bar and messages.
#pragma once

#include "web/WizardTimerPage.h"

class QPlainTextEdit;
class QProgressBar;

namespace pollarix {

class WizardProgressPage : public WizardTimerPage {
    Q_OBJECT
  public:
    WizardProgressPage(WizardRun& run, const char* name, const QString& caption,
                       const QString& message, const QString& progressLabel, QWidget* parent);

  protected:
    // Empties messages and bar, and takes Next away.
    void BeginProgress(int max);
    // Adds a message, moves the bar on by one if it is not full, and lets the window live.
    void UP(const QString& message);
    // A line of its own below the messages that tells how far a long step is; "" for none. Nothing
    // else moves.
    void ShowDetail(const QString& text);
    // Next comes back and has the focus.
    void OfferNext();

  private:
    QProgressBar* ProgressBar1_;
    QPlainTextEdit* txtMessages_;
    QLabel* lblDetail_;
};

} // namespace pollarix
