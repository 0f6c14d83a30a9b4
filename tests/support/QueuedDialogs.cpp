#include "support/QueuedDialogs.h"

#include <gtest/gtest.h>

#include "platform/base/Failure.h"

namespace pollarix::test {

QStringList QueuedDialogs::TakeTexts() {
    QStringList texts;
    for (const ShownMessage& message : shown)
        texts << message.text;
    shown.clear();
    return texts;
}

MsgAnswer QueuedDialogs::MsgBox(const QString& text, MsgIcon icon, MsgButtons buttons) {
    shown.push_back({text, icon, buttons});
    if (onBox)
        onBox();
    if (buttons == MsgButtons::Ok)
        return MsgAnswer::Ok;
    if (answers.empty()) {
        ADD_FAILURE() << "no answer queued for: " << text.toStdString();
        return buttons == MsgButtons::YesNo ? MsgAnswer::No : MsgAnswer::Cancel;
    }
    const MsgAnswer answer = answers.front();
    answers.pop_front();
    return answer;
}

FileDialogResult QueuedDialogs::NextFile(const FileDialogRequest& request) {
    fileRequests.push_back(request);
    if (fileNames.empty()) {
        ADD_FAILURE() << "no file name queued";
        throw Failure(failure::DialogCancelled);
    }
    FileDialogResult result = fileNames.front();
    fileNames.pop_front();
    if (result.fileName.isEmpty())
        throw Failure(failure::DialogCancelled);
    return result;
}

FileDialogResult QueuedDialogs::ShowOpen(const FileDialogRequest& request) {
    return NextFile(request);
}

FileDialogResult QueuedDialogs::ShowSave(const FileDialogRequest& request) {
    return NextFile(request);
}

void QueuedDialogs::ShowPrinter(QPrinter& printer) {
    if (!onPrinter)
        throw Failure(failure::DialogCancelled);
    onPrinter(printer);
}

bool QueuedDialogs::ShowPageSetup(QPrinter& printer) {
    if (!onPageSetup)
        return false;
    onPageSetup(printer);
    return true;
}

void QueuedDialogs::OpenFile(const QString& path) {
    openedFiles << path;
}

void QueuedDialogs::OpenUrl(const QString& url) {
    openedUrls << url;
}

void QueuedDialogs::SetDefaultParent(QWidget*) {}

} // namespace pollarix::test
