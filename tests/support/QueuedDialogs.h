// The tests' side of the dialog seam: answers are queued beforehand, what was shown is recorded. A
// box that no answer was queued for fails the test.
#pragma once

#include <deque>
#include <functional>
#include <vector>

#include "platform/desktop/Dialogs.h"

namespace pollarix::test {

struct ShownMessage {
    QString text;
    MsgIcon icon;
    MsgButtons buttons;
};

class QueuedDialogs : public Dialogs {
  public:
    // Questions (YesNo, YesNoCancel) take the next queued answer; Ok boxes need none.
    std::deque<MsgAnswer> answers;
    // The next file dialogs' names; "" cancels (Failure 32755).
    std::deque<FileDialogResult> fileNames;
    std::function<void()> onBox;                // as each box shows
    std::function<void(QPrinter&)> onPrinter;   // empty cancels
    std::function<void(QPrinter&)> onPageSetup; // empty cancels

    std::vector<ShownMessage> shown;
    std::vector<FileDialogRequest> fileRequests;
    QStringList openedFiles;
    QStringList openedUrls;

    // Texts of the boxes shown since the last call.
    QStringList TakeTexts();

    MsgAnswer MsgBox(const QString& text, MsgIcon icon, MsgButtons buttons) override;
    FileDialogResult ShowOpen(const FileDialogRequest& request) override;
    FileDialogResult ShowSave(const FileDialogRequest& request) override;
    void ShowPrinter(QPrinter& printer) override;
    bool ShowPageSetup(QPrinter& printer) override;
    void OpenFile(const QString& path) override;
    void OpenUrl(const QString& url) override;
    void SetDefaultParent(QWidget* parent) override;

  private:
    FileDialogResult NextFile(const FileDialogRequest& request);
};

} // namespace pollarix::test
