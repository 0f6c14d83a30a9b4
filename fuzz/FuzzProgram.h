// What every fuzzer runs in: the program's own application class without a screen, a state on a
// private directory in memory, and dialogs that answer by themselves. Not for what is fuzzed.
#pragma once

#include <QByteArray>
#include <QTemporaryDir>

#include <cstdint>
#include <functional>

#include "document/ApplicationState.h"
#include "platform/base/Failure.h"

namespace pollarix::fuzz {

// Yes to every question, no file to any file dialog. What was shown is counted.
class SilentDialogs : public Dialogs {
  public:
    int shown = 0;

    MsgAnswer MsgBox(const QString& text, MsgIcon icon, MsgButtons buttons) override;
    FileDialogResult ShowOpen(const FileDialogRequest& request) override;
    FileDialogResult ShowSave(const FileDialogRequest& request) override;
    void ShowPrinter(QPrinter& printer) override;
    bool ShowPageSetup(QPrinter& printer) override;
    void OpenFile(const QString& path) override;
    void OpenUrl(const QString& url) override;
    void SetDefaultParent(QWidget* parent) override;
};

// The directory of this run. Its name is short-lived: it goes when the process ends.
QString Directory();
inline QString Path(const QString& name) {
    return Directory() + '/' + name;
}
QString SettingsDirectory();

// A program's state as after the start, no survey open.
struct Program {
    Settings settings{SettingsDirectory()};
    SilentDialogs dialogs;
    ApplicationState state{Directories{Directory(), Directory()}, settings, dialogs};
};

// The SQL that a new survey file is made of.
QByteArray BlankSurveySql();

void WriteFile(const QString& path, QByteArrayView bytes);
QByteArray ReadFile(const QString& path);

// Ends the process with the words unless the condition holds; the fuzzer then keeps the input.
void Require(bool condition, const char* what);

// Runs an action of the program. Its failures are expected here: only their number is given, 0 for
// none. Any other exception ends the process.
int NumberOf(const std::function<void()>& action);

} // namespace pollarix::fuzz
