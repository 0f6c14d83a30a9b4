#include "document/RecoveryWriter.h"

#include <utility>

#include "platform/base/Failure.h"

namespace pollarix {

RecoveryWriter::RecoveryWriter(const QString& directory, int intervalMs, Source source)
    : files_(directory), source_(std::move(source)) {
    timer_.setInterval(intervalMs);
    QObject::connect(&timer_, &QTimer::timeout, [this] { Write(); });
}

void RecoveryWriter::Start() {
    if (!timer_.isActive())
        timer_.start();
}

void RecoveryWriter::Stop() {
    timer_.stop();
    written_.reset();
    files_.Drop();
}

void RecoveryWriter::LeaveBehind() {
    Write();
    timer_.stop();
    written_.reset();
    files_.Leave();
}

void RecoveryWriter::Write() noexcept {
    try {
        const std::optional<UnsavedSurvey> unsaved = source_();
        // The turns go on: the text of a key that is still down comes with its release.
        if (!unsaved) {
            written_.reset();
            files_.Drop();
        } else if (unsaved->design != written_) {
            files_.Keep(*unsaved);
            written_ = unsaved->design;
        }
    } catch (const std::exception&) {
        // Tried again at the next turn.
    }
}

} // namespace pollarix
