// The pages of the publish wizard that ask and show; the one that works is frmWizWebPublish_Upload.
#pragma once

#include "web/WebPublishWizard.h"

class QCheckBox;
class QLineEdit;

namespace pollarix {

// Takes the login; it is tried on the upload page.
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

// Shows the survey's address, as a link if it is one that may be opened.
class frmWizWebPublish_Complete : public WizardPage {
    Q_OBJECT
  public:
    frmWizWebPublish_Complete(WizardRun& run, ApplicationState& state, const PublishState& publish,
                              QWidget* parent);

  private:
    void Label6_Click();
    void cmdCopy_Click();
    ApplicationState& state_;
    QString url_;
};

} // namespace pollarix
