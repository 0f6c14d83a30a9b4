// The publish wizard's last page: the survey's address, as a link if it is one that may be opened.
#pragma once

#include "web/PublishState.h"
#include "web/WizardPage.h"

namespace pollarix {

class LinkButton;

class frmWizWebPublish_Complete : public WizardPage {
    Q_OBJECT
  public:
    frmWizWebPublish_Complete(WizardRun& run, Dialogs& dialogs, const PublishState& publish,
                              QWidget* parent);

  private:
    void Label6_Click();
    void cmdCopy_Click();
    Dialogs& dialogs_;
    LinkButton* Label6_;
};

} // namespace pollarix
