#include "web/PublishPages.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QUrl>
#include <QVBoxLayout>

#include "platform/Handlers.h"
#include "web/ServerList.h"

namespace pollarix {

namespace {

constexpr const char* NoServer = "Error - unable to retrieve server information.";

bool IsWebAddress(const QString& text) {
    const QUrl url(text, QUrl::StrictMode);
    return url.isValid() && (url.scheme() == "http" || url.scheme() == "https") &&
           !url.host().isEmpty();
}

} // namespace

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
    cmdCreate->setAutoDefault(false);
    Body().addSpacing(12);
    AddLabelled("Label3", "Username:", txtName_);
    AddLabelled("Label1", "Password:", txtPassword_);
    Body().addSpacing(8);
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
        Refuse(state_.dialogs, NoServer, nullptr);
}

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
    Body().addSpacing(8);
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

frmWizWebPublish_Complete::frmWizWebPublish_Complete(WizardRun& run, ApplicationState& state,
                                                     const PublishState& publish, QWidget* parent)
    : WizardPage(run, "frmWizWebPublish_Complete", "Finished",
                 "Your survey has been uploaded and can be accessed at the URL below.", 6, parent),
      state_(state), url_(publish.PublishedURL) {
    auto* Label6 = new QPushButton(this);
    Label6->setObjectName("Label6");
    Label6->setFlat(true);
    Label6->setAutoDefault(false);
    Label6->setText(QString(url_).replace('&', "&&"));
    // What a server gave in the place of a link and is none is shown as text only.
    if (IsWebAddress(url_)) {
        Label6->setCursor(Qt::PointingHandCursor);
        QPalette palette = Label6->palette();
        palette.setColor(QPalette::ButtonText, palette.color(QPalette::Link));
        Label6->setPalette(palette);
        QFont font = Label6->font();
        font.setUnderline(true);
        Label6->setFont(font);
    }
    auto* cmdCopy = new QPushButton("C&opy to Clipboard", this);
    cmdCopy->setObjectName("cmdCopy");
    cmdCopy->setAutoDefault(false);
    Body().addSpacing(12);
    QLabel* Label3 = AddLabelled("Label3", "Survey URL:", Label6);
    Body().setAlignment(Label6, Qt::AlignLeft);
    Body().addSpacing(8);
    Body().addWidget(cmdCopy, 0, Qt::AlignLeft);
    Body().addStretch();
    if (url_.isEmpty()) {
        lblMessage_->setText("Your survey was not uploaded.");
        for (QWidget* hidden : {static_cast<QWidget*>(Label6), static_cast<QWidget*>(Label3),
                                static_cast<QWidget*>(cmdCopy)})
            hidden->hide();
    }
    connect(Label6, &QPushButton::clicked, this,
            [this] { RunHandler([this] { Label6_Click(); }); });
    connect(cmdCopy, &QPushButton::clicked, this,
            [this] { RunHandler([this] { cmdCopy_Click(); }); });
    cmdNext_->setFocus();
}

void frmWizWebPublish_Complete::Label6_Click() {
    state_.dialogs.OpenUrl(url_);
}

void frmWizWebPublish_Complete::cmdCopy_Click() {
    QApplication::clipboard()->setText(url_);
    state_.dialogs.MsgBox("URL copied to clipboard.", MsgIcon::Information);
}

} // namespace pollarix
