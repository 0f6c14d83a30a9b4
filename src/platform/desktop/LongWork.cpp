#include "platform/desktop/LongWork.h"

#include <QLocale>

#include "platform/base/Handlers.h"
#include "platform/desktop/HourGlass.h"
#include "platform/desktop/InputLock.h"

namespace pollarix {

namespace {

// Repainting after each step would take longer than the work itself; at this pace nobody sees the
// difference.
constexpr qint64 BreathMs = 50;

} // namespace

void LongWork::Do(const QString& what, const std::function<void(const ProgressStep&)>& work) {
    if (running_)
        return;
    struct Running {
        explicit Running(LongWork& owner_) : owner(owner_) { owner.running_ = true; }
        ~Running() {
            // What was pressed since the last repaint would start something else after the work.
            DoEvents();
            owner.display_.ClearProgress();
            owner.running_ = false;
        }
        LongWork& owner;
        HourGlass hourGlass;
        InputLock inputLock;
    } const running(*this);

    sinceBreath_.invalidate(); // the first step repaints what the file dialog covered
    work([&](std::int64_t done, std::int64_t total) {
        if (sinceBreath_.isValid() && sinceBreath_.elapsed() < BreathMs)
            return;
        const QLocale locale;
        Breathe(what + ' ' + locale.toString(done) + " of " + locale.toString(total));
    });
}

void LongWork::Breathe(const QString& text) {
    display_.ShowProgress(text);
    DoEvents();
    sinceBreath_.start();
}

} // namespace pollarix
