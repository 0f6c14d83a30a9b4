// What the commands share that write a file of the user's choice: the file dialog, the work, and
// the one message when it fails. Not the writing.
#pragma once

#include <functional>

#include "document/ApplicationState.h"
#include "platform/desktop/LongWork.h"

namespace pollarix {

// Asks for the file and runs the action with the answer. A cancelled dialog ends it silently; any
// other failure, of the dialog or the action, is shown in one critical box with the file's name
// (the request's preset one until the dialog has given another). The file of the open survey,
// however its path is spelt, is refused in the same way, before the action. Does nothing while long
// work runs.
void RunSaveCommand(ApplicationState& state, const LongWork& work, const FileDialogRequest& request,
                    const std::function<void(const FileDialogResult&)>& action);

// A rich text report: written while the status bar tells how far it is, then shown if the user
// wants to see it.
struct ReportCommand {
    const char* fileName; // preset in the dialog
    const char* progress;
    const char* offer; // to show it
    void (*write)(Connection& survey, const QString& path, const ProgressStep& step);
};
void RunReportCommand(ApplicationState& state, LongWork& work, const ReportCommand& report);

} // namespace pollarix
