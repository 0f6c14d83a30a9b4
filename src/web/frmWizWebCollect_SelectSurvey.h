// The collection wizard's list of the user's surveys on the server. One whose name can't be had is
// not listed.
#pragma once

#include "web/CollectState.h"
#include "web/WebServices.h"
#include "web/WizardTimerPage.h"

namespace pollarix {

class ListBox;

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

} // namespace pollarix
