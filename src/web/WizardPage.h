// The frame that all pages of the two web wizards share: picture, heading text, Back, Next and
// Cancel. What a page asks and does is in its own class.
#pragma once

#include <QDialog>

#include <functional>

#include "document/ApplicationState.h"
#include "document/SurveyViews.h"
#include "web/modWebServer.h"
#include "web/wininet.h"

class QCheckBox;
class QLabel;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;
class QTimer;
class QVBoxLayout;

namespace pollarix {

class ComboBox;

// What the pages of a running wizard share with its loop.
struct WizardRun {
    std::int16_t WizardStep = 1; // page now showing; 7 ends the loop
    bool WizardCancelled = false;
};

// What both wizards work with.
struct WebServices {
    ApplicationState& state;
    const SurveyViews& views;
    wininet& transfer;
    modWebServer& server;
};

class WizardPage : public QDialog {
    Q_OBJECT
  public:
    // `name` is the window's own, `caption` its title, `message` the text of lblMessage ("" for
    // none). `step` is the page's number: the first has no Back, the last says Finish.
    WizardPage(WizardRun& run, const char* name, const QString& caption, const QString& message,
               int step, QWidget* parent);

  protected:
    // Where the page's own controls go, below the message.
    QVBoxLayout& Body() { return *body_; }
    // A label above a control, tied to it for the keyboard and screen readers.
    QLabel* AddLabelled(const char* name, const QString& text, QWidget* control);
    // A critical message that keeps the user on the page.
    void Refuse(Dialogs& dialogs, const QString& message, QWidget* focus);

    // Unloads the page, which returns to the loop.
    void Leave();
    virtual void cmdNext_Click();
    void StepOn();   // WizardStep plus 1, leave
    void StepBack(); // WizardStep minus 1, leave

    // The window's X and the Esc key are Cancel.
    void reject() override;

    WizardRun& run_;
    QLabel* lblMessage_;
    QPushButton* cmdBack_;
    QPushButton* cmdNext_;
    QPushButton* cmdCancel_;

  private:
    QVBoxLayout* body_;
};

// Page 1 of both wizards.
class WizardWelcomePage : public WizardPage {
    Q_OBJECT
  public:
    // `showWelcome` becomes false when the page is left with its box unticked; nothing reads it.
    WizardWelcomePage(WizardRun& run, const char* name, const QString& caption,
                      const QString& heading, const QString& message, bool& showWelcome,
                      QWidget* parent);

  private:
    void cmdNext_Click() override;
    bool& showWelcome_;
    QCheckBox* chkDisplayNext_;
};

// Page 2 of both wizards: the server, by its entry's number.
class WizardServerPage : public WizardPage {
    Q_OBJECT
  public:
    WizardServerPage(WizardRun& run, const char* name, const QString& message,
                     ApplicationState& state, std::int16_t& serverIndex, QWidget* parent);

  private:
    void RefreshServerList();
    void cmdAdd_Click();
    void cmdNext_Click() override;
    ApplicationState& state_;
    std::int16_t& serverIndex_;
    ComboBox* cboName_;
};

// A page whose work starts by itself, half a second after the page has loaded, so that the page is
// on the screen first. Back and Cancel are live meanwhile: they leave the page, and the work goes
// on to its end behind it.
class WizardTimerPage : public WizardPage {
    Q_OBJECT
  public:
    WizardTimerPage(WizardRun& run, const char* name, const QString& caption,
                    const QString& message, int step, QWidget* parent);

  protected:
    virtual void Timer1_Timer() = 0;
    QTimer* Timer1_;
};

// A timer page with a bar and messages.
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
    // Next comes back and has the focus.
    void OfferNext();

    QProgressBar* ProgressBar1_;
    QPlainTextEdit* txtMessages_;
};

} // namespace pollarix
