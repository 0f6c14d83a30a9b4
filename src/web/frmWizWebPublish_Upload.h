// The publish wizard's page that does the work: login, document, upload, going live.
#pragma once

#include <optional>

#include "web/PublishState.h"
#include "web/WebServices.h"
#include "web/WizardProgressPage.h"

namespace pollarix {

struct ServerEntry;

class frmWizWebPublish_Upload : public WizardProgressPage {
    Q_OBJECT
  public:
    frmWizWebPublish_Upload(WizardRun& run, WebServices services, PublishState& publish,
                            QWidget* parent);

  private:
    void Timer1_Timer() override;
    // The run; false for an end by failure or by the user's No, told already. A survey that the
    // server did not accept is an end without a failure.
    bool Publish();
    // The survey's id on the server, new or known; none when the run ends here.
    std::optional<std::int16_t> SurveyOnServer(std::int16_t user, const QString& url);
    bool Upload(const QString& remoteName, const ServerEntry& entry);

    WebServices services_;
    PublishState& publish_;
};

} // namespace pollarix
