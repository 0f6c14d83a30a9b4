#include "web/frmWizWebCollect_Login.h"

#include <QLineEdit>
#include <QVBoxLayout>

#include "platform/base/Handlers.h"
#include "platform/desktop/HourGlass.h"
#include "web/ServerList.h"

namespace pollarix {

frmWizWebCollect_Login::frmWizWebCollect_Login(WizardRun& run, WebServices services,
                                               CollectState& collect, QWidget* parent)
    : WizardPage(run, "frmWizWebCollect_Login", "Enter your login details",
                 "Enter your Username and Password to log into the server. ", 3, parent),
      services_(services), collect_(collect) {
    txtName_ = new QLineEdit(collect.CollectUsername, this);
    txtName_->setObjectName("txtName");
    txtPassword_ = new QLineEdit(collect.CollectPassword, this);
    txtPassword_->setObjectName("txtPassword");
    txtPassword_->setEchoMode(QLineEdit::Password);
    Body().addSpacing(12);
    AddLabelled("Label3", "Username:", txtName_);
    Body().addSpacing(6);
    AddLabelled("Label1", "Password:", txtPassword_);
    Body().addStretch();
    txtName_->setFocus();
}

void frmWizWebCollect_Login::cmdNext_Click() {
    Dialogs& dialogs = services_.state.dialogs;
    if (txtName_->text().isEmpty() || txtPassword_->text().isEmpty()) {
        // The words speak of a button that this page does not have, and stay so.
        Refuse(dialogs,
               "No username/password has been entered. Please enter your username and password, or "
               "press Create New Account to continue.",
               txtName_);
        return;
    }
    std::int16_t user = -1;
    {
        const HourGlass hourGlass;
        const Work work(*this);
        collect_.CollectUsername = txtName_->text();
        collect_.CollectPassword = txtPassword_->text();
        const auto entry = GetServerEntry(collect_.CollectServerIndex, services_.state.settings);
        if (!entry) {
            Refuse(dialogs, NoServerEntry, nullptr);
            return;
        }
        user = services_.server.GetWebUserID(collect_.CollectUsername, collect_.CollectPassword,
                                             entry->url);
        collect_.CollectUserID = QString::number(user);
        DoEvents(); // Cancel or Back may have been pressed meanwhile
    }
    if (HasLeft())
        return;
    if (user != -1)
        StepOn();
    else
        Refuse(dialogs, "Unable to login. Error " + services_.server.LastServerError, nullptr);
}

} // namespace pollarix
