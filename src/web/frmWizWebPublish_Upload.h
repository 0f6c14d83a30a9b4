// The publish wizard's page that does the work: login, document, upload, going live.
#pragma once

#include <optional>

#include "web/WebPublishWizard.h"

namespace pollarix {

struct ServerEntry;

class frmWizWebPublish_Upload : public WizardProgressPage {
    Q_OBJECT
  public:
    frmWizWebPublish_Upload(WizardRun& run, WebServices services, PublishState& publish,
                            QWidget* parent);

  private:
    void Timer1_Timer() override;
    // The run itself; false for an end by failure or refusal that has been told already.
    bool Publish();
    // The survey's id on the server, new or known; none when the run ends here.
    std::optional<std::int16_t> SurveyOnServer(std::int16_t user, const QString& url);
    bool Upload(const QString& remoteName, const ServerEntry& entry);

    WebServices services_;
    PublishState& publish_;
};

} // namespace pollarix
