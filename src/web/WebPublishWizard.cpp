#include "web/WebPublishWizard.h"

#include "web/WizardServerPage.h"
#include "web/WizardWelcomePage.h"
#include "web/frmWizWebPublish_Complete.h"
#include "web/frmWizWebPublish_Login.h"
#include "web/frmWizWebPublish_SurveyName.h"
#include "web/frmWizWebPublish_Upload.h"

namespace pollarix {

void WebPublishWizard::mnuDataPublishWeb_Click(QWidget* parent) {
    WizardRun run;
    publish_.PublishShowWelcome = true;
    const auto show = [](WizardPage&& page) { page.exec(); };
    // Each page is loaded afresh on each visit.
    while (!run.WizardCancelled) {
        switch (run.WizardStep) {
        case 1:
            show(WizardWelcomePage(run, "frmWizWebPublish_Welcome", "Web Publish Wizard",
                                   "Welcome to the Web Publish Wizard",
                                   "Using this wizard you can publish your survey to a website.",
                                   publish_.PublishShowWelcome, parent));
            break;
        case 2:
            show(WizardServerPage(
                run, "frmWizWebPublish_ServerType",
                "Select which web server you would like to publish your survey to.",
                services_.state, publish_.PublishServerIndex, parent));
            break;
        case 3:
            show(frmWizWebPublish_Login(run, services_.state, publish_, parent));
            break;
        case 4:
            show(frmWizWebPublish_SurveyName(run, services_.state, publish_, parent));
            break;
        case 5:
            show(frmWizWebPublish_Upload(run, services_, publish_, parent));
            break;
        case 6:
            show(frmWizWebPublish_Complete(run, services_.state.dialogs, publish_, parent));
            break;
        default:
            return;
        }
    }
}

} // namespace pollarix
