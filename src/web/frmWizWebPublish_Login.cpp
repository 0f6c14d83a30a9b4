#include "web/frmWizWebPublish_Login.h"

#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "platform/base/Handlers.h"
#include "web/ServerList.h"

namespace pollarix {

frmWizWebPublish_Login::frmWizWebPublish_Login(WizardRun& run, ApplicationState& state,
                                               PublishState& publish, QWidget* parent)
    : WizardPage(run, "frmWizWebPublish_Login", "Enter your login details",
                 "Enter your Username and Password to log into the server. If you don't yet have "
                 "an account press 'New Account'.",
                 3, parent),
      state_(state), publish_(publish) {
    txtName_ = new QLineEdit(publish.PublishUsername, this);
    txtName_->setObjectName("txtName");
    txtPassword_ = new QLineEdit(publish.PublishPassword, this);
    txtPassword_->setObjectName("txtPassword");
    txtPassword_->setEchoMode(QLineEdit::Password);
    auto* cmdCreate = new QPushButton("&Create New Account", this);
    cmdCreate->setObjectName("cmdCreate");
    Body().addSpacing(12);
    AddLabelled("Label3", "Username:", txtName_);
    Body().addSpacing(6);
    AddLabelled("Label1", "Password:", txtPassword_);
    Body().addSpacing(12);
    Body().addWidget(cmdCreate, 0, Qt::AlignLeft);
    Body().addStretch();
    connect(cmdCreate, &QPushButton::clicked, this,
            [this] { RunHandler([this] { cmdCreate_Click(); }); });
    txtName_->setFocus();
}

void frmWizWebPublish_Login::cmdNext_Click() {
    if (txtName_->text().isEmpty() || txtPassword_->text().isEmpty()) {
        Refuse(state_.dialogs,
               "No username/password has been entered. Please enter your username and password, or "
               "press Create New Account to continue.",
               txtName_);
        return;
    }
    publish_.PublishUsername = txtName_->text();
    publish_.PublishPassword = txtPassword_->text();
    StepOn();
}

void frmWizWebPublish_Login::cmdCreate_Click() {
    if (const auto entry = GetServerEntry(publish_.PublishServerIndex, state_.settings))
        state_.dialogs.OpenUrl(entry->url + "CreateAccount.php");
    else
        Refuse(state_.dialogs, NoServerEntry, nullptr);
}

} // namespace pollarix
