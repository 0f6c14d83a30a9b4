// The wizard that takes the open survey to a survey server: login, document, upload, going live.
#pragma once

#include "web/WebServices.h"

namespace pollarix {

// Kept from one run of the wizard to the next while the program runs.
struct PublishState {
    bool PublishShowWelcome = true;
    std::int16_t PublishServerIndex = 0;
    QString PublishUsername;
    QString PublishPassword;
    QString PublishSurveyName;
    bool PublishIsPublic = false;
    QString PublishedURL; // "" for none
};

class WebPublishWizard {
  public:
    explicit WebPublishWizard(WebServices services) : services_(services) {}

    // Shows page after page until the wizard is finished or cancelled.
    void mnuDataPublishWeb_Click(QWidget* parent);

  private:
    WebServices services_;
    PublishState publish_;
};

} // namespace pollarix
