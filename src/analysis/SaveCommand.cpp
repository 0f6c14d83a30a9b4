#include "analysis/SaveCommand.h"

#include "platform/base/Handlers.h"
#include "platform/desktop/LongWork.h"

namespace pollarix {

void RunSaveCommand(Dialogs& dialogs, const LongWork& work, const FileDialogRequest& request,
                    const std::function<void(const FileDialogResult&)>& action) {
    if (work.IsRunning())
        return;
    QString FileName = request.fileName;
    try {
        const FileDialogResult chosen = dialogs.ShowSave(request);
        FileName = chosen.fileName;
        if (!FileName.isEmpty())
            action(chosen);
    } catch (const std::exception&) {
        const Failure failure = CaughtFailure();
        if (failure.Number() == failure::DialogCancelled)
            return;
        dialogs.MsgBox("Unable to write to file " + FileName + ' ' + failure.Description() + ' ' +
                           QString::number(failure.Number()) + ' ' + failure.Source(),
                       MsgIcon::Critical);
    }
}

} // namespace pollarix
