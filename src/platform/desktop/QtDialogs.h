// The boxes and dialogs the user sees. Tests of other rooms use the queue instead; nothing but the
// main procedure names this class.
#pragma once

#include <QMessageBox>
#include <QPointer>

#include "platform/desktop/Dialogs.h"

class QFileDialog;

namespace pollarix {

class QtDialogs : public Dialogs {
  public:
    MsgAnswer MsgBox(const QString& text, MsgIcon icon,
                     MsgButtons buttons = MsgButtons::Ok) override;
    // Dialogs open in the directory the last one ended in, at first in the user's documents.
    FileDialogResult ShowOpen(const FileDialogRequest& request) override;
    FileDialogResult ShowSave(const FileDialogRequest& request) override;
    void ShowPrinter(QPrinter& printer) override;
    bool ShowPageSetup(QPrinter& printer) override;
    void OpenFile(const QString& path) override;
    void OpenUrl(const QString& url) override;
    void SetDefaultParent(QWidget* parent) override;

  private:
    QWidget* Parent() const;
    QMessageBox::StandardButton Ask(const QString& text, QMessageBox::Icon icon,
                                    QMessageBox::StandardButtons buttons,
                                    QMessageBox::StandardButton preset,
                                    QMessageBox::StandardButton onEscape);
    FileDialogResult RunFileDialog(const FileDialogRequest& request, bool save);

    QPointer<QWidget> defaultParent_;
    QString lastDirectory_;
};

} // namespace pollarix
