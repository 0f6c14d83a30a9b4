#include "web/WebCollectWizard.h"

#include "web/WizardServerPage.h"
#include "web/WizardWelcomePage.h"
#include "web/frmWizWebCollect_Download.h"
#include "web/frmWizWebCollect_Login.h"
#include "web/frmWizWebCollect_SelectSurvey.h"

namespace pollarix {

void WebCollectWizard::mnuDataCollectWeb_Click(QWidget* parent) {
    WizardRun run;
    collect_.CollectShowWelcome = true;
    const auto show = [](WizardPage&& page) { page.exec(); };
    // Each page is loaded afresh on each visit.
    while (!run.WizardCancelled) {
        switch (run.WizardStep) {
        case 1:
            // This page's title differs from the wizard's name, and stays so.
            show(WizardWelcomePage(run, "frmWizWebCollect_Welcome", "Configuration Wizard",
                                   "Welcome to the Web Collection Wizard",
                                   "Using this wizard you can collect data from a previously "
                                   "published web survey.",
                                   collect_.CollectShowWelcome, parent));
            break;
        case 2:
            show(WizardServerPage(
                run, "frmWizWebCollect_ServerType",
                "Select which web server you would like to collect your survey data from.",
                services_.state, collect_.CollectServerIndex, parent));
            break;
        case 3:
            show(frmWizWebCollect_Login(run, services_, collect_, parent));
            break;
        case 4:
            show(frmWizWebCollect_SelectSurvey(run, services_, collect_, parent));
            break;
        case 5:
            show(frmWizWebCollect_Download(run, services_, collect_, parent));
            break;
        case 6:
            show(WizardPage(run, "frmWizWebCollect_Complete", "Finished",
                            "Your survey results have been downloaded.", 6, parent));
            break;
        default:
            return;
        }
    }
}

} // namespace pollarix
