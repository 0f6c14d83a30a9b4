// The wizard that fetches the answers given on a survey server and imports them into the open
// survey. Lists and reports are left as they are; their own screens refresh them.
#pragma once

#include "web/CollectState.h"
#include "web/WebServices.h"

namespace pollarix {

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
