// Keeps the recovery file of the running program up to date while its survey has unsaved changes,
// a few seconds behind them. What is worth keeping, the caller says.
#pragma once

#include <QTimer>

#include <functional>
#include <optional>

#include "document/Recovery.h"

namespace pollarix {

class RecoveryWriter {
  public:
    // So that the file is there ten seconds after an edit, also where writing it takes a while.
    static constexpr int IntervalMs = 4000;

    // The source gives what is not saved at this moment, or nothing.
    using Source = std::function<std::optional<UnsavedSurvey>()>;
    RecoveryWriter(const QString& directory, int intervalMs, Source source);

    // The survey was changed: writes soon, and goes on to write what is new, until Stop. What is
    // not worth keeping just now is not kept, and may be at the next turn.
    void Start();
    // Nothing is unsaved any more.
    void Stop();
    // Leaves what is unsaved now for the next start; for a survey that is left without a question.
    void LeaveBehind();

    Recovery& Files() { return files_; }
    const Recovery& Files() const { return files_; }

  private:
    // Failures are not told: a box every few seconds would keep the user from saving, and a disk
    // that takes nothing is told then.
    void Write() noexcept;

    Recovery files_;
    Source source_;
    std::optional<SurveySnapshot> written_;
    QTimer timer_;
};

} // namespace pollarix
