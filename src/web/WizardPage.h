// The frame that all pages of the two web wizards share: picture, message, Back, Next and Cancel,
// and what leaving a page means. What a page asks and does is in its own class.
#pragma once

#include <QByteArray>
#include <QDialog>

#include <cstdint>
#include <memory>

#include "platform/desktop/Dialogs.h"

class QLabel;
class QPushButton;
class QVBoxLayout;

namespace pollarix {

// What the pages of a running wizard share with its loop.
struct WizardRun {
    std::int16_t WizardStep = 1; // page now showing; 7 ends the loop
    bool WizardCancelled = false;
    QByteArray place; // where the page before stood; the next one stands there as well
};

class WizardPage : public QDialog {
    Q_OBJECT
  public:
    // `name` is the window's own, `caption` its title, `message` the text of lblMessage ("" for
    // none). `step` is the page's number: the first has no Back, the last says Finish.
    WizardPage(WizardRun& run, const char* name, const QString& caption, const QString& message,
               int step, QWidget* parent);
    ~WizardPage() override;

  protected:
    // Where the page's own controls go, below the message.
    QVBoxLayout& Body() { return *body_; }
    // A label above a control, tied to it for the keyboard and screen readers.
    QLabel* AddLabelled(const char* name, const QString& text, QWidget* control);
    // A message box. What was pressed while work waited acts before it, since a box would swallow
    // it.
    MsgAnswer MsgBox(Dialogs& dialogs, const QString& text, MsgIcon icon,
                     MsgButtons buttons = MsgButtons::Ok);
    // A critical message that keeps the user on the page.
    void Refuse(Dialogs& dialogs, const QString& message, QWidget* focus);

    virtual void cmdNext_Click();
    void StepOn();   // WizardStep plus 1, leave
    void StepBack(); // WizardStep minus 1, leave
    // Unloads the page, which returns to the loop.
    void Leave();
    bool HasLeft() const { return left_; }

    // For work that lets the window live: a page left meanwhile vanishes at once, but the wizard's
    // loop goes on only when the work has ended. Until then nothing takes keys or clicks, as if the
    // page still stood before the other windows; boxes that the work shows do.
    class Work {
      public:
        explicit Work(WizardPage& page) : page_(page) { page_.working_ = true; }
        ~Work() { page_.working_ = false; }
        Work(const Work&) = delete;
        Work& operator=(const Work&) = delete;

      private:
        WizardPage& page_;
    };

    // The window's X and the Esc key are Cancel.
    void reject() override;
    void showEvent(QShowEvent* event) override;

    WizardRun& run_;
    QLabel* lblMessage_;
    QPushButton* cmdBack_;
    QPushButton* cmdNext_;
    QPushButton* cmdCancel_;

  private:
    QVBoxLayout* body_;
    bool left_ = false;
    bool working_ = false;
    std::unique_ptr<QObject> closedDoor_;
};

} // namespace pollarix
