// The collection wizard's pages that talk to the server.
#pragma once

#include "web/WebCollectWizard.h"

class QLineEdit;

namespace pollarix {

class ListBox;

// Logs in when it is left, unlike the page of the publish wizard. A failure in that reaches the
// user as any other that nothing catches.
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

// Lists the user's surveys on the server; one whose name can't be had is not listed.
class frmWizWebCollect_SelectSurvey : public WizardTimerPage {
    Q_OBJECT
  public:
    frmWizWebCollect_SelectSurvey(WizardRun& run, WebServices services, CollectState& collect,
                                  QWidget* parent);

  private:
    void Timer1_Timer() override;
    void cmdNext_Click() override;
    WebServices services_;
    CollectState& collect_;
    ListBox* lstSurveys_;
};

// Fetches the results file, imports it and offers to delete the server's copy.
class frmWizWebCollect_Download : public WizardProgressPage {
    Q_OBJECT
  public:
    frmWizWebCollect_Download(WizardRun& run, WebServices services, CollectState& collect,
                              QWidget* parent);

  private:
    void Timer1_Timer() override;
    bool Collect(); // false for a failure that has been told already
    WebServices services_;
    CollectState& collect_;
};

} // namespace pollarix
