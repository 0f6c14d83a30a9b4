#include "web/WizardWelcomePage.h"

#include <QCheckBox>
#include <QLabel>
#include <QVBoxLayout>

#include "platform/controls/ScreenTitle.h"

namespace pollarix {

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
    Body().addSpacing(6);
    Body().addWidget(chkDisplayNext_);
}

void WizardWelcomePage::cmdNext_Click() {
    if (!chkDisplayNext_->isChecked())
        showWelcome_ = false;
    StepOn();
}

} // namespace pollarix
