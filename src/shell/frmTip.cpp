#include "shell/frmTip.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QFrame>
#include <QIcon>
#include <QLabel>
#include <QPushButton>
#include <QTextStream>
#include <QVBoxLayout>

#include "document/ApplicationState.h"
#include "platform/base/Handlers.h"
#include "platform/controls/ScreenTitle.h"

namespace pollarix {

namespace {

constexpr const char* Section = "Options";
constexpr const char* AtStartup = "Show Tips at Startup";
constexpr const char* CurrentTip = "Current Tip";
constexpr const char* TipFile = "TipOfTheDay.txt";

} // namespace

QString TipsApplication() {
    return QFileInfo(QCoreApplication::applicationFilePath()).completeBaseName();
}

bool ShowTipsAtStartup(const ApplicationState& state) {
    return ToNumber32(state.settings.GetSetting(TipsApplication(), Section, AtStartup, "1")) != 0;
}

frmTip::frmTip(ApplicationState& state, QWidget* parent) : QDialog(parent), state_(state) {
    BuildWindow();
    // The box is ticked whatever the setting says, and nothing is stored by that.
    chkLoadTipsAtStartup_->setChecked(true);
    currentTip_ =
        ToNumber16(state_.settings.GetSetting(TipsApplication(), Section, CurrentTip, "1"));
    if (!LoadTips(state_.directories.InProgram(TipFile)))
        lblTipText_->setText(QString("That the %1 file was not found? \n\n"
                                     "Create a text file named %1 using NotePad with 1 tip per "
                                     "line. Then place it in the same directory as the "
                                     "application. ")
                                 .arg(TipFile));
}

void frmTip::BuildWindow() {
    setObjectName("frmTip");
    setWindowTitle("Tip of the Day");
    setModal(true);

    auto* const box = new QFrame(this);
    box->setFrameShape(QFrame::StyledPanel);
    box->setBackgroundRole(QPalette::Base);
    box->setAutoFillBackground(true);
    auto* const picture = new QLabel(box);
    picture->setPixmap(QIcon(":/icons/tip.svg").pixmap(48, 48));
    QLabel* const heading = NewHeading("Did you know...", box);
    heading->setObjectName("lblHeading");
    heading->setForegroundRole(QPalette::Text);
    QFont font = heading->font();
    font.setPointSizeF(font.pointSizeF() * 1.4);
    heading->setFont(font);
    lblTipText_ = new QLabel(box);
    lblTipText_->setObjectName("lblTipText");
    lblTipText_->setTextFormat(Qt::PlainText);
    lblTipText_->setForegroundRole(QPalette::Text);
    lblTipText_->setWordWrap(true);
    lblTipText_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    // A tip can be taken along by mouse or keyboard, and a screen reader finds it by the latter.
    lblTipText_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);

    auto* const grid = new QGridLayout(box);
    grid->setContentsMargins(16, 16, 16, 16);
    grid->setHorizontalSpacing(16);
    grid->addWidget(picture, 0, 0, 2, 1, Qt::AlignTop);
    grid->addWidget(heading, 0, 1);
    grid->addWidget(lblTipText_, 1, 1);
    grid->setRowStretch(1, 1);
    grid->setColumnStretch(1, 1);

    chkLoadTipsAtStartup_ = new QCheckBox("&Show Tips at Startup", this);
    chkLoadTipsAtStartup_->setObjectName("chkLoadTipsAtStartup");
    auto* const cmdNextTip = new QPushButton("&Next Tip", this);
    cmdNextTip->setObjectName("cmdNextTip");
    cmdNextTip->setAutoDefault(false);
    auto* const cmdOK = new QPushButton("OK", this);
    cmdOK->setObjectName("cmdOK");
    cmdOK->setDefault(true);
    auto* const buttons = new QHBoxLayout;
    buttons->addWidget(chkLoadTipsAtStartup_);
    buttons->addStretch();
    buttons->addWidget(cmdNextTip);
    buttons->addWidget(cmdOK);

    auto* const page = new QVBoxLayout(this);
    page->addWidget(box, 1);
    page->addLayout(buttons);
    resize(460, 260);
    cmdOK->setFocus();

    // Only the user's click stores, so this listens to clicks and not to changes.
    connect(chkLoadTipsAtStartup_, &QCheckBox::clicked, this,
            [this] { RunHandler([this] { chkLoadTipsAtStartup_Click(); }); });
    connect(cmdNextTip, &QPushButton::clicked, this,
            [this] { RunHandler([this] { DoNextTip(); }); });
    connect(cmdOK, &QPushButton::clicked, this, [this] { close(); });
}

bool frmTip::LoadTips(const QString& path) {
    if (path.isEmpty() || !QFileInfo(path).isFile())
        return false;
    QFile file(path);
    if (!file.open(QFile::ReadOnly))
        throw Failure(failure::PathOrFileAccess, path + ": " + file.errorString());
    QTextStream lines(&file);
    while (!lines.atEnd())
        tips_ << lines.readLine();
    file.close();
    DoNextTip();
    return true;
}

void frmTip::DoNextTip() {
    currentTip_ = Narrow16(currentTip_ + 1);
    if (currentTip_ > tips_.size())
        currentTip_ = 1;
    state_.settings.SaveSetting(TipsApplication(), Section, CurrentTip,
                                QString::number(currentTip_));
    DisplayCurrentTip();
}

void frmTip::DisplayCurrentTip() {
    if (tips_.isEmpty())
        return;
    if (currentTip_ < 1 || currentTip_ > tips_.size())
        throw Failure(failure::Subscript);
    lblTipText_->setText(tips_[currentTip_ - 1]);
}

void frmTip::chkLoadTipsAtStartup_Click() {
    state_.settings.SaveSetting(TipsApplication(), Section, AtStartup,
                                chkLoadTipsAtStartup_->isChecked() ? "1" : "0");
}

} // namespace pollarix
