#include "images/StudioDialogs.h"

#include <utility>

namespace pollarix::images {

MsgAnswer StudioDialogs::MsgBox(const QString& text, MsgIcon icon, MsgButtons buttons) {
    if (!answers.empty()) {
        const MsgAnswer answer = answers.front();
        answers.pop_front();
        return answer;
    }
    if (boxesToShow > 0) {
        --boxesToShow;
        return QtDialogs::MsgBox(text, icon, buttons);
    }
    unexpected("a box that no scene expects: " + text);
    return buttons == MsgButtons::Ok ? MsgAnswer::Ok : MsgAnswer::No;
}

FileDialogResult StudioDialogs::ShowOpen(const FileDialogRequest& request) {
    if (open.isEmpty())
        return QtDialogs::ShowOpen(request);
    return {std::exchange(open, QString()), 0};
}

FileDialogResult StudioDialogs::ShowSave(const FileDialogRequest& request) {
    if (saveAs.isEmpty())
        return QtDialogs::ShowSave(request);
    return {std::exchange(saveAs, QString()), 0};
}

} // namespace pollarix::images
