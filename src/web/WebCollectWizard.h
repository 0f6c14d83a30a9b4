// The wizard that fetches the answers given on a survey server and imports them into the open
// survey. Lists and reports are left as they are; their own screens refresh them.
#pragma once

#include "web/WebServices.h"

namespace pollarix {

// Kept from one run of the wizard to the next while the program runs.
struct CollectState {
    bool CollectShowWelcome = true;
    std::int16_t CollectServerIndex = 0;
    QString CollectUsername;
    QString CollectPassword;
    QString CollectUserID; // the number in decimal
    std::int16_t CollectSurveyID = 0;
};

class WebCollectWizard {
  public:
    explicit WebCollectWizard(WebServices services) : services_(services) {}

    // Shows page after page until the wizard is finished or cancelled.
    void mnuDataCollectWeb_Click(QWidget* parent);

  private:
    WebServices services_;
    CollectState collect_;
};

} // namespace pollarix
