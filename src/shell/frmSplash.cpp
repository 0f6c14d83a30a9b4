#include "shell/frmSplash.h"

#include <QEvent>
#include <QFrame>
#include <QGuiApplication>
#include <QLabel>
#include <QScreen>
#include <QTimer>
#include <QVBoxLayout>

#include "shell/LegalWarning.h"
#include "shell/Picture.h"
#include "shell/modDetectWindows.h"

namespace pollarix {

namespace {

constexpr int Interval = 3000; // milliseconds

QLabel* NewLine(const char* name, const QString& text, double size, QWidget* parent) {
    auto* line = new QLabel(text, parent);
    line->setObjectName(name);
    line->setTextFormat(Qt::PlainText);
    QFont font = line->font();
    font.setPointSizeF(font.pointSizeF() * size);
    line->setFont(font);
    return line;
}

} // namespace

frmSplash::frmSplash(QWidget* parent) : QDialog(parent, Qt::Dialog | Qt::FramelessWindowHint) {
    setObjectName("frmSplash");
    setWindowTitle("Pollarix");
    setModal(true);
    // The main window may not be up yet: this one's end must not count as the program's.
    setAttribute(Qt::WA_QuitOnClose, false);

    Frame1_ = new QFrame(this);
    Frame1_->setObjectName("Frame1");
    Frame1_->setFrameShape(QFrame::Box);
    Frame1_->setForegroundRole(QPalette::Mid);
    Frame1_->installEventFilter(this);

    auto* const Picture2 = new Picture("Picture2", "about", Frame1_);
    auto* const Picture5 = new Picture("Picture5", "splash", Frame1_);
    const bool named = IsWindows2000() || IsWindows98() || IsWindows95();
    Picture2->hide();
    Picture5->setVisible(!named);
    if (!named)
        Picture5->raise();

    auto* const lblProductName = NewLine("lblProductName", "Pollarix", 2.4, Frame1_);
    QFont bold = lblProductName->font();
    bold.setBold(true);
    lblProductName->setFont(bold);
    auto* const lblCompanyProduct = NewLine("lblCompanyProduct", "Quillmark", 1.1, Frame1_);
    auto* const lblPlatform = NewLine("lblPlatform", "98/2000/XP", 1.1, Frame1_);
    auto* const lblDisclaimer = NewLine("lblDisclaimer", LegalWarning, 0.9, Frame1_);
    lblDisclaimer->setWordWrap(true);

    auto* const names = new QHBoxLayout;
    names->addWidget(lblProductName);
    names->addStretch();
    auto* const side = new QVBoxLayout;
    side->setSpacing(2);
    side->addWidget(lblCompanyProduct, 0, Qt::AlignRight);
    side->addWidget(lblPlatform, 0, Qt::AlignRight);
    names->addLayout(side);

    auto* const texts = new QVBoxLayout;
    texts->setContentsMargins(24, 14, 24, 16);
    texts->setSpacing(14);
    texts->addLayout(names);
    texts->addWidget(lblDisclaimer);

    auto* const frame = new QVBoxLayout(Frame1_);
    frame->setContentsMargins(1, 1, 1, 1);
    frame->setSpacing(0);
    frame->addWidget(Picture2);
    frame->addWidget(Picture5);
    frame->addLayout(texts);
    auto* const page = new QVBoxLayout(this);
    page->setContentsMargins(0, 0, 0, 0);
    page->setSizeConstraint(QLayout::SetFixedSize);
    page->addWidget(Frame1_);

    Timer1_ = new QTimer(this);
    Timer1_->setObjectName("Timer1");
    Timer1_->setInterval(Interval);
    Timer1_->setSingleShot(true);
    Timer1_->setTimerType(Qt::PreciseTimer);
    connect(Timer1_, &QTimer::timeout, this, [this] { close(); });
}

void frmSplash::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    // In the middle of the screen: the main window behind it has no place yet.
    if (const QScreen* const on = screen())
        move(on->availableGeometry().center() - rect().center());
    activateWindow();
    Timer1_->start();
}

bool frmSplash::event(QEvent* event) {
    // Any key, also those that windows and applications would take for themselves.
    if (event->type() == QEvent::KeyPress) {
        close();
        return true;
    }
    return QDialog::event(event);
}

bool frmSplash::eventFilter(QObject* watched, QEvent* event) {
    if (watched == Frame1_ && event->type() == QEvent::MouseButtonRelease) {
        close();
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

} // namespace pollarix
