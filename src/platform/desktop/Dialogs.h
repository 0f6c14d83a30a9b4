// Message boxes, file dialogs, printer dialogs and the desktop's openers, behind one seam so that
// tests can queue answers and read what was shown. Nothing else in the program knows of the seam.
#pragma once

#include <QString>
#include <QStringList>

class QPrinter;
class QWidget;

namespace pollarix {

enum class MsgIcon { None, Information, Question, Critical };
enum class MsgButtons { Ok, YesNo, YesNoCancel };
enum class MsgAnswer { Ok, Yes, No, Cancel };

// What a file dialog is asked with. The filter has the form "Name (*.ext)|*.ext", entries joined by
// "|".
struct FileDialogRequest {
    QString title;
    QString fileName; // preset name, path or directory, "" for none
    QString filter;
    bool promptOverwrite = false; // save dialogs only
    int filterIndex = 0;          // preset entry of the filter, from 0
};

struct FileDialogResult {
    QString fileName;    // full path
    int filterIndex = 0; // chosen entry of the filter, from 0
};

class Dialogs {
  public:
    virtual ~Dialogs() = default;

    // The title of boxes is the program's name, "Pollarix".
    virtual MsgAnswer MsgBox(const QString& text, MsgIcon icon,
                             MsgButtons buttons = MsgButtons::Ok) = 0;

    // The user's choice; throws Failure 32755 when cancelled. A save dialog adds the suffix of the
    // chosen filter entry to a name typed without one, before it asks about overwriting, and takes
    // no name in a directory that does not exist.
    virtual FileDialogResult ShowOpen(const FileDialogRequest& request) = 0;
    virtual FileDialogResult ShowSave(const FileDialogRequest& request) = 0;

    // The print dialog on the given printer; throws Failure 32755 when cancelled.
    virtual void ShowPrinter(QPrinter& printer) = 0;
    // The page setup dialog; false when cancelled.
    virtual bool ShowPageSetup(QPrinter& printer) = 0;

    // Opens a file that the program has written, or a "mailto:" address, with the desktop's
    // program.
    virtual void OpenFile(const QString& path) = 0;
    // Opens a web page. Only http and https are opened, anything else is silently refused: links
    // come from outside.
    virtual void OpenUrl(const QString& url) = 0;

    // The window the next dialogs belong to when no window is active.
    virtual void SetDefaultParent(QWidget* parent) = 0;
};

} // namespace pollarix
