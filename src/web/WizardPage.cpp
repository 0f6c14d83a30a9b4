#include "web/WizardPage.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include "platform/ComboBox.h"
#include "platform/Handlers.h"
#include "platform/ScreenTitle.h"
#include "web/ServerList.h"
#include "web/frmAddServer.h"

namespace pollarix {

namespace {

constexpr int LastStep = 6;
constexpr int TimerInterval = 500; // milliseconds

} // namespace

WizardPage::WizardPage(WizardRun& run, const char* name, const QString& caption,
                       const QString& message, int step, QWidget* parent)
    : QDialog(parent), run_(run) {
    setObjectName(name);
    setWindowTitle(caption);

    auto* picture = new QLabel(this);
    picture->setObjectName("picWizard");
    picture->setPixmap(QIcon(":/icons/wizard.svg").pixmap(120, 300));
    picture->setAlignment(Qt::AlignTop | Qt::AlignHCenter);
    picture->setFixedWidth(136);

    lblMessage_ = new QLabel(message, this);
    lblMessage_->setObjectName("lblMessage");
    lblMessage_->setTextFormat(Qt::PlainText);
    lblMessage_->setWordWrap(true);
    lblMessage_->setVisible(!message.isEmpty());
    body_ = new QVBoxLayout;
    body_->addWidget(lblMessage_);

    auto* top = new QHBoxLayout;
    top->addWidget(picture);
    top->addLayout(body_, 1);

    auto* line = new QFrame(this);
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);

    const auto button = [this](const char* buttonName, const QString& text) {
        auto* made = new QPushButton(text, this);
        made->setObjectName(buttonName);
        made->setAutoDefault(false);
        return made;
    };
    cmdBack_ = button("cmdBack", "&Back");
    cmdBack_->setVisible(step > 1);
    cmdNext_ = button("cmdNext", step == LastStep ? "&Finish" : "&Next");
    cmdNext_->setDefault(true);
    cmdCancel_ = button("cmdCancel", "&Cancel");
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdBack_);
    buttons->addWidget(cmdNext_);
    buttons->addSpacing(12);
    buttons->addWidget(cmdCancel_);

    auto* page = new QVBoxLayout(this);
    page->addLayout(top, 1);
    page->addWidget(line);
    page->addLayout(buttons);
    resize(620, 400);

    connect(cmdBack_, &QPushButton::clicked, this, [this] { StepBack(); });
    connect(cmdNext_, &QPushButton::clicked, this,
            [this] { RunHandler([this] { cmdNext_Click(); }); });
    connect(cmdCancel_, &QPushButton::clicked, this, [this] { reject(); });
}

QLabel* WizardPage::AddLabelled(const char* name, const QString& text, QWidget* control) {
    auto* label = new QLabel(text, this);
    label->setObjectName(name);
    label->setBuddy(control);
    control->setAccessibleName(QString(text).remove(':'));
    body_->addWidget(label);
    body_->addWidget(control);
    return label;
}

void WizardPage::Refuse(Dialogs& dialogs, const QString& message, QWidget* focus) {
    dialogs.MsgBox(message, MsgIcon::Critical);
    if (focus)
        focus->setFocus();
}

void WizardPage::Leave() {
    done(QDialog::Accepted);
}

void WizardPage::StepOn() {
    ++run_.WizardStep;
    Leave();
}

void WizardPage::StepBack() {
    --run_.WizardStep;
    Leave();
}

void WizardPage::cmdNext_Click() {
    StepOn();
}

void WizardPage::reject() {
    run_.WizardCancelled = true;
    Leave();
}

// ---- Welcome

WizardWelcomePage::WizardWelcomePage(WizardRun& run, const char* name, const QString& caption,
                                     const QString& heading, const QString& message,
                                     bool& showWelcome, QWidget* parent)
    : WizardPage(run, name, caption, {}, 1, parent), showWelcome_(showWelcome) {
    auto* Label2 = NewHeading(heading, this);
    Label2->setObjectName("Label2");
    Label2->setWordWrap(true);
    QFont font = Label2->font();
    font.setPointSizeF(font.pointSizeF() * 1.4);
    Label2->setFont(font);
    auto* lblWelcomeMessage = new QLabel(message, this);
    lblWelcomeMessage->setObjectName("lblWelcomeMessage");
    lblWelcomeMessage->setWordWrap(true);
    auto* Label1 = new QLabel("To continue, click Next.", this);
    Label1->setObjectName("Label1");
    chkDisplayNext_ = new QCheckBox("Display this welcome screen at startup.", this);
    chkDisplayNext_->setObjectName("chkDisplayNext");
    chkDisplayNext_->setChecked(true);
    Body().addWidget(Label2);
    Body().addSpacing(12);
    Body().addWidget(lblWelcomeMessage);
    Body().addStretch();
    Body().addWidget(Label1);
    Body().addWidget(chkDisplayNext_);
    cmdNext_->setFocus();
}

void WizardWelcomePage::cmdNext_Click() {
    if (!chkDisplayNext_->isChecked())
        showWelcome_ = false;
    StepOn();
}

// ---- Server

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
    cmdAdd->setAutoDefault(false);
    Body().addWidget(cmdAdd, 0, Qt::AlignLeft);
    Body().addStretch();
    connect(cmdAdd, &QPushButton::clicked, this,
            [this] { RunHandler([this] { cmdAdd_Click(); }); });
    RefreshServerList();
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
    ++run_.WizardStep;
    serverIndex_ = Narrow16(cboName_->ItemData(cboName_->ListIndex()));
    Leave();
}

// ---- Timer and progress

WizardTimerPage::WizardTimerPage(WizardRun& run, const char* name, const QString& caption,
                                 const QString& message, int step, QWidget* parent)
    : WizardPage(run, name, caption, message, step, parent) {
    Timer1_ = new QTimer(this);
    Timer1_->setObjectName("Timer1");
    Timer1_->setInterval(TimerInterval);
    connect(Timer1_, &QTimer::timeout, this, [this] {
        Timer1_->stop();
        RunHandler([this] { Timer1_Timer(); });
    });
    Timer1_->start();
}

WizardProgressPage::WizardProgressPage(WizardRun& run, const char* name, const QString& caption,
                                       const QString& message, const QString& progressLabel,
                                       QWidget* parent)
    : WizardTimerPage(run, name, caption, message, 5, parent) {
    ProgressBar1_ = new QProgressBar(this);
    ProgressBar1_->setObjectName("ProgressBar1");
    ProgressBar1_->setRange(0, 1);
    ProgressBar1_->setValue(0);
    txtMessages_ = new QPlainTextEdit(this);
    txtMessages_->setObjectName("txtMessages");
    txtMessages_->setReadOnly(true);
    txtMessages_->setTabChangesFocus(true);
    Body().addSpacing(8);
    AddLabelled("Label3", progressLabel, ProgressBar1_);
    AddLabelled("Label1", "Messages:", txtMessages_);
    cmdNext_->setEnabled(false); // until the run has succeeded
}

void WizardProgressPage::BeginProgress(int max) {
    ProgressBar1_->setRange(0, max);
    ProgressBar1_->setValue(0);
    txtMessages_->setPlainText({});
    cmdNext_->setEnabled(false);
}

void WizardProgressPage::UP(const QString& message) {
    txtMessages_->moveCursor(QTextCursor::End);
    txtMessages_->insertPlainText(message + '\n');
    txtMessages_->moveCursor(QTextCursor::End);
    txtMessages_->ensureCursorVisible();
    if (ProgressBar1_->value() < ProgressBar1_->maximum())
        ProgressBar1_->setValue(ProgressBar1_->value() + 1);
    DoEvents();
}

void WizardProgressPage::OfferNext() {
    cmdNext_->setEnabled(true);
    cmdNext_->setFocus();
}

} // namespace pollarix
