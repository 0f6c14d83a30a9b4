// The publish wizard's login page. It takes the login; the upload page tries it.
#pragma once

#include "document/ApplicationState.h"
#include "web/PublishState.h"
#include "web/WizardPage.h"

class QLineEdit;

namespace pollarix {

class frmWizWebPublish_Login : public WizardPage {
    Q_OBJECT
  public:
    frmWizWebPublish_Login(WizardRun& run, ApplicationState& state, PublishState& publish,
                           QWidget* parent);

  private:
    void cmdNext_Click() override;
    void cmdCreate_Click();
    ApplicationState& state_;
    PublishState& publish_;
    QLineEdit* txtName_;
    QLineEdit* txtPassword_;
};

} // namespace pollarix
