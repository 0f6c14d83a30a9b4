#include "web/WizardServerPage.h"

#include <QPushButton>
#include <QVBoxLayout>

#include "platform/base/Failure.h"
#include "platform/base/Handlers.h"
#include "platform/controls/ComboBox.h"
#include "web/ServerList.h"
#include "web/frmAddServer.h"

namespace pollarix {

WizardServerPage::WizardServerPage(WizardRun& run, const char* name, const QString& message,
                                   ApplicationState& state, std::int16_t& serverIndex,
                                   QWidget* parent)
    : WizardPage(run, name, "Choose your web server", message, 2, parent), state_(state),
      serverIndex_(serverIndex) {
    cboName_ = new ComboBox(this);
    cboName_->setObjectName("cboName");
    Body().addSpacing(12);
    AddLabelled("Label3", "Web Server:", cboName_);
    auto* cmdAdd = new QPushButton("&Add Server", this);
    cmdAdd->setObjectName("cmdAdd");
    Body().addSpacing(6);
    Body().addWidget(cmdAdd, 0, Qt::AlignLeft);
    Body().addStretch();
    connect(cmdAdd, &QPushButton::clicked, this,
            [this] { RunHandler([this] { cmdAdd_Click(); }); });
    RefreshServerList();
    cboName_->setFocus();
}

void WizardServerPage::RefreshServerList() {
    pollarix::RefreshServerList(*cboName_, state_.settings);
}

void WizardServerPage::cmdAdd_Click() {
    {
        frmAddServer form(state_.settings, state_.dialogs, this);
        form.exec();
    }
    RefreshServerList();
}

void WizardServerPage::cmdNext_Click() {
    // The step goes up first, also when the entry's number can't be taken.
    ++run_.WizardStep;
    serverIndex_ = Narrow16(cboName_->ItemData(cboName_->ListIndex()));
    Leave();
}

} // namespace pollarix
