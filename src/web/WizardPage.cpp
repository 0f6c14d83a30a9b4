#include "web/WizardPage.h"

#include <QApplication>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "platform/base/Handlers.h"
#include "platform/controls/PageButton.h"
#include "platform/desktop/InputLock.h"
#include "web/WizardPicture.h"

namespace pollarix {

namespace {

constexpr int LastStep = 6;
constexpr int Margin = 16; // pixels

// Loses keys and clicks, and keeps the windows open, while there is no modal window to do so.
class ClosedDoor : public InputLock {
  public:
    bool eventFilter(QObject* receiver, QEvent* event) override {
        if (event->type() == QEvent::Close && !QApplication::activeModalWidget()) {
            event->ignore();
            return true;
        }
        return InputLock::eventFilter(receiver, event);
    }
};

} // namespace

WizardPage::WizardPage(WizardRun& run, const char* name, const QString& caption,
                       const QString& message, int step, QWidget* parent)
    : QDialog(parent), run_(run) {
    setObjectName(name);
    setWindowTitle(caption);

    lblMessage_ = new QLabel(message, this);
    lblMessage_->setObjectName("lblMessage");
    lblMessage_->setTextFormat(Qt::PlainText);
    lblMessage_->setWordWrap(true);
    lblMessage_->setAlignment(Qt::AlignLeft | Qt::AlignTop); // also where it has the page alone
    lblMessage_->setVisible(!message.isEmpty());
    body_ = new QVBoxLayout;
    body_->setContentsMargins(Margin, Margin, Margin, Margin);
    body_->setSpacing(6);
    body_->addWidget(lblMessage_);

    auto* top = new QHBoxLayout;
    top->setSpacing(0);
    top->addWidget(new WizardPicture(this));
    top->addLayout(body_, 1);

    auto* line = new QFrame(this);
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);

    const auto button = [this](const char* buttonName, const QString& text) {
        auto* made = new PageButton(text, this);
        made->setObjectName(buttonName);
        return made;
    };
    cmdBack_ = button("cmdBack", "&Back");
    cmdBack_->setVisible(step > 1);
    cmdNext_ = button("cmdNext", step == LastStep ? "&Finish" : "&Next");
    cmdNext_->setDefault(true);
    cmdCancel_ = button("cmdCancel", "&Cancel");
    auto* buttons = new QHBoxLayout;
    buttons->setContentsMargins(Margin, Margin * 3 / 4, Margin, Margin * 3 / 4);
    buttons->setSpacing(6);
    buttons->addStretch();
    buttons->addWidget(cmdBack_);
    buttons->addWidget(cmdNext_);
    buttons->addSpacing(Margin);
    buttons->addWidget(cmdCancel_);

    auto* page = new QVBoxLayout(this);
    page->setContentsMargins(0, 0, 0, 0);
    page->setSpacing(0);
    page->addLayout(top, 1);
    page->addWidget(line);
    page->addLayout(buttons);
    setMinimumWidth(480);
    resize(640, 420);
    if (!run.place.isEmpty())
        restoreGeometry(run.place);
    cmdNext_->setFocus();

    // A page that has been left takes no second press.
    const auto pressed = [this](auto handler) {
        return [this, handler] {
            if (!left_)
                RunHandler(handler);
        };
    };
    connect(cmdBack_, &QPushButton::clicked, this, pressed([this] { StepBack(); }));
    // Nor is work begun twice.
    connect(cmdNext_, &QPushButton::clicked, this, pressed([this] {
                if (!working_)
                    cmdNext_Click();
            }));
    connect(cmdCancel_, &QPushButton::clicked, this, pressed([this] { reject(); }));
}

WizardPage::~WizardPage() = default;

QLabel* WizardPage::AddLabelled(const char* name, const QString& text, QWidget* control) {
    auto* label = new QLabel(text, this);
    label->setObjectName(name);
    label->setBuddy(control);
    control->setAccessibleName(QString(text).remove(':'));
    body_->addWidget(label);
    body_->addWidget(control);
    return label;
}

MsgAnswer WizardPage::MsgBox(Dialogs& dialogs, const QString& text, MsgIcon icon,
                             MsgButtons buttons) {
    if (working_)
        DoEvents();
    return dialogs.MsgBox(text, icon, buttons);
}

void WizardPage::Refuse(Dialogs& dialogs, const QString& message, QWidget* focus) {
    MsgBox(dialogs, message, MsgIcon::Critical);
    if (focus)
        focus->setFocus();
}

void WizardPage::cmdNext_Click() {
    StepOn();
}

void WizardPage::StepOn() {
    ++run_.WizardStep;
    Leave();
}

void WizardPage::StepBack() {
    --run_.WizardStep;
    Leave();
}

void WizardPage::reject() {
    if (left_)
        return;
    run_.WizardCancelled = true;
    Leave();
}

void WizardPage::Leave() {
    left_ = true;
    if (working_)
        closedDoor_ = std::make_unique<ClosedDoor>();
    run_.place = saveGeometry();
    done(QDialog::Accepted);
}

void WizardPage::showEvent(QShowEvent* event) {
    // The buttons were made first and are reached last. Put in place from behind, since Qt takes
    // the first one for being there already.
    QWidget* last = previousInFocusChain();
    while (last != cmdCancel_ && !(last->focusPolicy() & Qt::TabFocus))
        last = last->previousInFocusChain();
    if (last != cmdCancel_)
        for (QPushButton* button : {cmdCancel_, cmdNext_, cmdBack_})
            setTabOrder(last, button);
    QDialog::showEvent(event);
}

} // namespace pollarix
