#include "web/frmWizWebCollect_SelectSurvey.h"

#include <QPushButton>
#include <QVBoxLayout>

#include "platform/base/Failure.h"
#include "platform/base/Handlers.h"
#include "platform/controls/ListBox.h"
#include "platform/desktop/HourGlass.h"
#include "web/ServerList.h"

namespace pollarix {

frmWizWebCollect_SelectSurvey::frmWizWebCollect_SelectSurvey(WizardRun& run, WebServices services,
                                                             CollectState& collect, QWidget* parent)
    : WizardTimerPage(run, "frmWizWebCollect_SelectSurvey", "Select the Survey",
                      "Select the survey you would like to retrieve data for. ", 4, parent),
      services_(services), collect_(collect) {
    lstSurveys_ = new ListBox(this);
    lstSurveys_->setObjectName("lstSurveys");
    Body().addSpacing(12);
    AddLabelled("Label3", "Available Surveys:", lstSurveys_);
    cmdNext_->setEnabled(false); // until a survey is listed
    lstSurveys_->setFocus();
}

void frmWizWebCollect_SelectSurvey::Timer1_Timer() {
    cmdNext_->setEnabled(false);
    const HourGlass hourGlass;
    const auto entry = GetServerEntry(collect_.CollectServerIndex, services_.state.settings);
    if (!entry) {
        MsgBox(services_.state.dialogs, NoServerEntry, MsgIcon::Critical);
        return;
    }
    const QString ids = services_.server.GetSurveyListForUser(collect_.CollectUserID, entry->url);
    if (!ids.isEmpty()) {
        for (const QString& id : ids.split(',')) {
            DoEvents();
            if (HasLeft())
                return; // nobody will see the list
            const QString name = services_.server.GetSurveyName(id, entry->url);
            if (name.isEmpty())
                continue;
            lstSurveys_->AddItem(name);
            lstSurveys_->SetItemData(lstSurveys_->NewIndex(), ToNumber32(id));
        }
    }
    if (lstSurveys_->ListCount() > 0) {
        lstSurveys_->SetListIndex(0);
        cmdNext_->setEnabled(true);
        cmdNext_->setFocus();
    }
}

void frmWizWebCollect_SelectSurvey::cmdNext_Click() {
    const int selected = lstSurveys_->ListIndex();
    if (selected == -1) {
        Refuse(services_.state.dialogs,
               "No Survey has been selected. Please select a survey to continue.", nullptr);
        return;
    }
    collect_.CollectSurveyID = Narrow16(lstSurveys_->ItemData(selected));
    StepOn();
}

} // namespace pollarix
