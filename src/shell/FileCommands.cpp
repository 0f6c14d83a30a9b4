#include "shell/FileCommands.h"

#include "platform/base/Handlers.h"

namespace pollarix {

void FileCommands::mnuNew_Click() {
    if (!document_.AskToSave(Qt::CaseSensitive))
        return;
    document_.DoClose();
    // The temporary file of the survey before stays where it is.
    document_.DoOpen(document_.NewSurveyFile(), true, -1);
}

void FileCommands::mnuFileOpen_Click() {
    if (!document_.AskToSave(Qt::CaseInsensitive))
        return;
    QString name;
    try {
        FileDialogRequest request;
        request.title = "Open";
        request.filter = "Pollarix (*.plxs)|*.plxs";
        name = state_.dialogs.ShowOpen(request).fileName;
        if (name.isEmpty())
            return;
        document_.DoClose();
        document_.DoOpen(name, true, 1);
    } catch (const std::exception&) {
        if (CaughtFailure().Number() != failure::DialogCancelled)
            state_.dialogs.MsgBox("Unable to open file.", MsgIcon::Critical);
        return;
    }
    document_.OfferRecovery(name);
}

} // namespace pollarix
