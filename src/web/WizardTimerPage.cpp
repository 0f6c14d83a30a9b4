#include "web/WizardTimerPage.h"

#include <QTimer>

#include "platform/base/Handlers.h"

namespace pollarix {

namespace {

constexpr int TimerInterval = 500; // milliseconds

} // namespace

WizardTimerPage::WizardTimerPage(WizardRun& run, const char* name, const QString& caption,
                                 const QString& message, int step, QWidget* parent)
    : WizardPage(run, name, caption, message, step, parent) {
    Timer1_ = new QTimer(this);
    Timer1_->setObjectName("Timer1");
    Timer1_->setInterval(TimerInterval);
    connect(Timer1_, &QTimer::timeout, this, [this] {
        Timer1_->stop();
        if (HasLeft())
            return;
        const Work work(*this);
        RunHandler([this] { Timer1_Timer(); });
    });
    Timer1_->start();
}

} // namespace pollarix
