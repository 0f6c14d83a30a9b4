// The collection wizard's login page. It logs in when it is left, unlike that of the publish
// wizard; a failure in that reaches the user as any other that nothing catches.
#pragma once

#include "web/CollectState.h"
#include "web/WebServices.h"
#include "web/WizardPage.h"

class QLineEdit;

namespace pollarix {

class frmWizWebCollect_Login : public WizardPage {
    Q_OBJECT
  public:
    frmWizWebCollect_Login(WizardRun& run, WebServices services, CollectState& collect,
                           QWidget* parent);

  private:
    void cmdNext_Click() override;
    WebServices services_;
    CollectState& collect_;
    QLineEdit* txtName_;
    QLineEdit* txtPassword_;
};

} // namespace pollarix
