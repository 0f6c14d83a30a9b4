#include "web/WizardProgressPage.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include "platform/base/Handlers.h"
#include "platform/base/ShownText.h"

namespace pollarix {

namespace {

constexpr qsizetype LongestMessage = 4000; // characters; servers write in them

} // namespace

WizardProgressPage::WizardProgressPage(WizardRun& run, const char* name, const QString& caption,
                                       const QString& message, const QString& progressLabel,
                                       QWidget* parent)
    : WizardTimerPage(run, name, caption, message, 5, parent) {
    ProgressBar1_ = new QProgressBar(this);
    ProgressBar1_->setObjectName("ProgressBar1");
    ProgressBar1_->setRange(0, 100);
    ProgressBar1_->setValue(0);
    txtMessages_ = new QPlainTextEdit(this);
    txtMessages_->setObjectName("txtMessages");
    txtMessages_->setReadOnly(true);
    txtMessages_->setUndoRedoEnabled(false);
    txtMessages_->setTabChangesFocus(true);
    // The messages are kept selected, to be copied at once; this shows only when one goes there.
    QPalette palette = txtMessages_->palette();
    palette.setColor(QPalette::Inactive, QPalette::Highlight, palette.color(QPalette::Base));
    palette.setColor(QPalette::Inactive, QPalette::HighlightedText, palette.color(QPalette::Text));
    txtMessages_->setPalette(palette);
    Body().addSpacing(12);
    AddLabelled("Label3", progressLabel, ProgressBar1_);
    Body().addSpacing(6);
    AddLabelled("Label1", "Messages:", txtMessages_);
    lblDetail_ = new QLabel(this);
    lblDetail_->setObjectName("lblDetail");
    lblDetail_->setTextFormat(Qt::PlainText);
    Body().addWidget(lblDetail_);
    cmdNext_->setEnabled(false); // until the run has succeeded
    setFocus();                  // no button is pressed by chance
}

void WizardProgressPage::BeginProgress(int max) {
    ProgressBar1_->setRange(0, max);
    ProgressBar1_->setValue(0);
    txtMessages_->setPlainText({});
    cmdNext_->setEnabled(false);
}

void WizardProgressPage::UP(const QString& message) {
    QTextCursor cursor(txtMessages_->document());
    cursor.movePosition(QTextCursor::End);
    cursor.insertText(Shortened(message, LongestMessage) + '\n');
    cursor.movePosition(QTextCursor::Start);
    cursor.movePosition(QTextCursor::End, QTextCursor::KeepAnchor);
    txtMessages_->setTextCursor(cursor); // shows the last one as well
    if (ProgressBar1_->value() < ProgressBar1_->maximum())
        ProgressBar1_->setValue(ProgressBar1_->value() + 1);
    DoEvents();
}

void WizardProgressPage::ShowDetail(const QString& text) {
    lblDetail_->setText(text);
}

void WizardProgressPage::OfferNext() {
    cmdNext_->setEnabled(true);
    cmdNext_->setFocus();
}

} // namespace pollarix
