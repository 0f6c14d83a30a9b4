// Page 2 of both wizards: the server, kept by its entry's number.
#pragma once

#include "document/ApplicationState.h"
#include "web/WizardPage.h"

namespace pollarix {

class ComboBox;

class WizardServerPage : public WizardPage {
    Q_OBJECT
  public:
    // Throws as RefreshServerList does.
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

} // namespace pollarix
