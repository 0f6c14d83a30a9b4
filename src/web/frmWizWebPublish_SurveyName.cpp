#include "web/frmWizWebPublish_SurveyName.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QVBoxLayout>

namespace pollarix {

frmWizWebPublish_SurveyName::frmWizWebPublish_SurveyName(WizardRun& run, ApplicationState& state,
                                                         PublishState& publish, QWidget* parent)
    : WizardPage(run, "frmWizWebPublish_SurveyName", "Enter your survey name",
                 "Enter your survey's name. Select Public if you want your survey viewable by "
                 "anyone.",
                 4, parent),
      state_(state), publish_(publish) {
    txtName_ = new QLineEdit(publish.PublishSurveyName, this);
    txtName_->setObjectName("txtName");
    chkPublic_ = new QCheckBox("Public", this);
    chkPublic_->setObjectName("chkPublic");
    chkPublic_->setChecked(publish.PublishIsPublic);
    Body().addSpacing(12);
    AddLabelled("Label3", "Survey name:", txtName_);
    Body().addSpacing(12);
    Body().addWidget(chkPublic_);
    Body().addStretch();
    txtName_->setFocus();
}

void frmWizWebPublish_SurveyName::cmdNext_Click() {
    if (txtName_->text().isEmpty()) {
        Refuse(state_.dialogs,
               "No survey name has been entered. Please enter a name for your survey to continue.",
               txtName_);
        return;
    }
    publish_.PublishSurveyName = txtName_->text();
    publish_.PublishIsPublic = chkPublic_->isChecked();
    StepOn();
}

} // namespace pollarix
