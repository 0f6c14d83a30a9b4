// The top of every event handler: what a handler does not catch itself ends there, is shown in one
// critical box with description and number, and the program goes on.
#pragma once

#include <functional>

#include "platform/base/Failure.h"

namespace pollarix {

// Runs a handler that the user's action started. A Failure (or any other exception) that leaves
// it is shown by the reporter; nothing is thrown. A handler that code started by writing a property
// is called directly instead, so that its failure reaches that code.
void RunHandler(const std::function<void()>& handler) noexcept;

// For handlers that catch all failures: what a `catch (const std::exception&)` has caught.
Failure CaughtFailure();

// Shows a failure nothing caught. The program sets it once to a message box; tests to a recorder.
// An empty reporter writes to stderr.
using FailureReporter = std::function<void(const Failure&)>;
void SetFailureReporter(FailureReporter reporter);

// Lets the interface handle its pending events once: paints, timers, keys and clicks.
void DoEvents();

// The same, but keys, clicks and shortcuts wait until after the handler. Where they must be lost
// instead, DoEvents under an InputLock.
void DoPaintEvents();

} // namespace pollarix
