#include "shell/frmAbout.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "platform/base/Handlers.h"
#include "platform/desktop/Dialogs.h"
#include "shell/Addresses.h"
#include "shell/LegalWarning.h"
#include "shell/Picture.h"
#include "shell/SystemInformation.h"
#include "shell/modDetectWindows.h"

namespace pollarix {

frmAbout::frmAbout(Dialogs& dialogs, QWidget* parent) : QDialog(parent), dialogs_(dialogs) {
    setObjectName("frmAbout");
    setWindowTitle("About Pollarix");
    setModal(true);

    auto* const Picture2 = new Picture("Picture2", "about", this);
    auto* const Picture5 = new Picture("Picture5", "splash", this);
    const bool xp = IsWindowsXP();
    Picture5->setVisible(xp);
    Picture2->setVisible(!xp);

    const auto line = [this](const char* name, const QString& text) {
        auto* const label = new QLabel(text, this);
        label->setObjectName(name);
        label->setWordWrap(true);
        return label;
    };
    auto* const lblTitle = line("lblTitle", "Pollarix v1.12");
    QFont font = lblTitle->font();
    font.setPointSizeF(font.pointSizeF() * 1.6);
    font.setBold(true);
    lblTitle->setFont(font);
    auto* const lblDescription =
        line("lblDescription", "The fully flexible and easy to use survey system.");
    auto* const lblDisclaimer = line("lblDisclaimer", LegalWarning);

    auto* const Picture4 = new Picture("Picture4", "web-page", this);
    Picture4->setFixedSize(24, 24);
    Picture4->setCursor(Qt::PointingHandCursor);
    Picture4->setToolTip(MakersPage);
    Picture4->Click = [this] { OpenMakersPage(); };
    auto* const Label2 = line("Label2", QString("<a href=\"%1\">%1</a>").arg(MakersPage));
    Label2->setAccessibleName("Web page");
    Label2->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    connect(Label2, &QLabel::linkActivated, this,
            [this] { RunHandler([this] { OpenMakersPage(); }); });
    auto* const link = new QHBoxLayout;
    link->addWidget(Picture4);
    link->addWidget(Label2, 1);

    auto* const cmdSysInfo = new QPushButton("&System Info...", this);
    cmdSysInfo->setObjectName("cmdSysInfo");
    cmdSysInfo->setAutoDefault(false);
    auto* const cmdOK = new QPushButton("OK", this);
    cmdOK->setObjectName("cmdOK");
    cmdOK->setDefault(true);
    connect(cmdSysInfo, &QPushButton::clicked, this,
            [this] { RunHandler([this] { StartSysInfo(dialogs_); }); });
    connect(cmdOK, &QPushButton::clicked, this, [this] { close(); });
    auto* const buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdSysInfo);
    buttons->addWidget(cmdOK);

    auto* const texts = new QVBoxLayout;
    texts->setContentsMargins(20, 12, 20, 16);
    texts->setSpacing(10);
    texts->addWidget(lblTitle);
    texts->addWidget(lblDescription);
    texts->addLayout(link);
    texts->addWidget(lblDisclaimer);
    texts->addStretch();
    texts->addLayout(buttons);
    auto* const page = new QVBoxLayout(this);
    page->setContentsMargins(0, 0, 0, 0);
    page->setSpacing(0);
    page->addWidget(Picture2);
    page->addWidget(Picture5);
    page->addLayout(texts);
    page->setSizeConstraint(QLayout::SetFixedSize);
    cmdOK->setFocus();
}

void frmAbout::OpenMakersPage() {
    dialogs_.OpenUrl(MakersPage);
}

} // namespace pollarix
