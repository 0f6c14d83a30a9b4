// The wizard that takes the open survey to a survey server: login, document, upload, going live.
#pragma once

#include "web/PublishState.h"
#include "web/WebServices.h"

namespace pollarix {

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
