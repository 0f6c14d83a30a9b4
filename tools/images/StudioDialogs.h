// The program's own dialogs, but for boxes that no scene expects: those would wait for ever for
// somebody to press a button.
#pragma once

#include <deque>
#include <functional>

#include "platform/desktop/QtDialogs.h"

namespace pollarix::images {

class StudioDialogs : public QtDialogs {
  public:
    // Given to the next boxes, which don't show.
    std::deque<MsgAnswer> answers;
    // How many boxes after those may show, to be pictured.
    int boxesToShow = 0;
    // Path for the next save dialog.
    QString saveAs;
    // And for the next open dialog.
    QString open;
    // Takes the text of a box that was not expected.
    std::function<void(const QString& text)> unexpected;

    MsgAnswer MsgBox(const QString& text, MsgIcon icon, MsgButtons buttons) override;
    FileDialogResult ShowOpen(const FileDialogRequest& request) override;
    FileDialogResult ShowSave(const FileDialogRequest& request) override;
};

} // namespace pollarix::images
