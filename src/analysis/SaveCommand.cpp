#include "analysis/SaveCommand.h"

#include "platform/base/Handlers.h"
#include "platform/files/Files.h"

namespace pollarix {

namespace {

// All questions and answers would be gone, and the connection left without a file.
void RefuseOpenSurvey(const ApplicationState& state, const QString& path) {
    const Connection& survey = state.SurveyConnection;
    if (state.IsOpenSurvey(path) || (survey.IsOpen() && IsSameFile(survey.Path(), path)))
        throw Failure(failure::PathOrFileAccess, path + ": it is the open survey");
}

} // namespace

void RunSaveCommand(ApplicationState& state, const LongWork& work, const FileDialogRequest& request,
                    const std::function<void(const FileDialogResult&)>& action) {
    if (work.IsRunning())
        return;
    QString FileName = request.fileName;
    try {
        const FileDialogResult chosen = state.dialogs.ShowSave(request);
        FileName = chosen.fileName;
        if (FileName.isEmpty())
            return;
        RefuseOpenSurvey(state, FileName);
        action(chosen);
    } catch (const std::exception&) {
        const Failure failure = CaughtFailure();
        if (failure.Number() == failure::DialogCancelled)
            return;
        state.dialogs.MsgBox("Unable to write to file " + FileName + ' ' + failure.Description() +
                                 ' ' + QString::number(failure.Number()) + ' ' + failure.Source(),
                             MsgIcon::Critical);
    }
}

void RunReportCommand(ApplicationState& state, LongWork& work, const ReportCommand& report) {
    FileDialogRequest request;
    request.title = "Save As";
    request.fileName = report.fileName;
    request.filter = "Rich Text Format (*.rtf)|*.rtf";
    request.promptOverwrite = true;
    RunSaveCommand(state, work, request, [&](const FileDialogResult& chosen) {
        work.Do(report.progress, [&](const ProgressStep& step) {
            report.write(state.SurveyConnection, chosen.fileName, step);
        });
        if (state.dialogs.MsgBox(report.offer, MsgIcon::Question, MsgButtons::YesNo) ==
            MsgAnswer::Yes)
            state.dialogs.OpenFile(chosen.fileName);
    });
}

} // namespace pollarix
