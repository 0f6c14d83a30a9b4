// The collection wizard's page that does the work: fetches the results file, imports it and offers
// to delete the server's copy.
#pragma once

#include "web/CollectState.h"
#include "web/WebServices.h"
#include "web/WizardProgressPage.h"

namespace pollarix {

class frmWizWebCollect_Download : public WizardProgressPage {
    Q_OBJECT
  public:
    frmWizWebCollect_Download(WizardRun& run, WebServices services, CollectState& collect,
                              QWidget* parent);

  private:
    void Timer1_Timer() override;
    // False for a failure that has been told already.
    bool Collect();
    // Imports the local file; false when the page was left meanwhile, and then nothing was
    // imported.
    bool Import(const QString& localPath);
    // Fetches the results file into the local one; false when there is none.
    bool Fetch(const QString& fileName, const QString& base, const QString& localPath);

    WebServices services_;
    CollectState& collect_;
};

} // namespace pollarix
