// The publish wizard's page for the survey's name on the server and who may see it.
#pragma once

#include "document/ApplicationState.h"
#include "web/PublishState.h"
#include "web/WizardPage.h"

class QCheckBox;
class QLineEdit;

namespace pollarix {

class frmWizWebPublish_SurveyName : public WizardPage {
    Q_OBJECT
  public:
    frmWizWebPublish_SurveyName(WizardRun& run, ApplicationState& state, PublishState& publish,
                                QWidget* parent);

  private:
    void cmdNext_Click() override;
    ApplicationState& state_;
    PublishState& publish_;
    QLineEdit* txtName_;
    QCheckBox* chkPublic_;
};

} // namespace pollarix
