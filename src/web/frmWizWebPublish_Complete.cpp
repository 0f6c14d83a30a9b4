#include "web/frmWizWebPublish_Complete.h"

#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QVBoxLayout>

#include "platform/base/Handlers.h"
#include "platform/base/ShownText.h"
#include "web/LinkButton.h"

namespace pollarix {

frmWizWebPublish_Complete::frmWizWebPublish_Complete(WizardRun& run, Dialogs& dialogs,
                                                     const PublishState& publish, QWidget* parent)
    : WizardPage(run, "frmWizWebPublish_Complete", "Finished",
                 "Your survey has been uploaded and can be accessed at the URL below.", 6, parent),
      dialogs_(dialogs) {
    Label6_ = new LinkButton(publish.PublishedURL, this);
    Label6_->setObjectName("Label6");
    auto* cmdCopy = new QPushButton("C&opy to Clipboard", this);
    cmdCopy->setObjectName("cmdCopy");
    Body().addSpacing(12);
    QLabel* Label3 = AddLabelled("Label3", "Survey URL:", Label6_);
    Body().addSpacing(12);
    Body().addWidget(cmdCopy, 0, Qt::AlignLeft);
    Body().addStretch();
    if (publish.PublishedURL.isEmpty()) {
        lblMessage_->setText("Your survey was not uploaded.");
        Label6_->hide();
        Label3->hide();
        cmdCopy->hide();
    }
    connect(Label6_, &QPushButton::clicked, this,
            [this] { RunHandler([this] { Label6_Click(); }); });
    connect(cmdCopy, &QPushButton::clicked, this,
            [this] { RunHandler([this] { cmdCopy_Click(); }); });
}

void frmWizWebPublish_Complete::Label6_Click() {
    if (Label6_->IsLink())
        dialogs_.OpenUrl(Label6_->text());
}

void frmWizWebPublish_Complete::cmdCopy_Click() {
    // A line end pasted into a terminal would run what the server put before it.
    QApplication::clipboard()->setText(WithoutControls(Label6_->text()));
    dialogs_.MsgBox("URL copied to clipboard.", MsgIcon::Information);
}

} // namespace pollarix
