// Page 1 of both wizards: what the wizard is for.
#pragma once

#include "web/WizardPage.h"

class QCheckBox;

namespace pollarix {

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

} // namespace pollarix
