#include "platform/desktop/QtDialogs.h"

#include <QApplication>
#include <QDesktopServices>
#include <QFileDialog>
#include <QFileInfo>
#include <QPageSetupDialog>
#include <QPrintDialog>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QUrl>

#include <algorithm>
#include <utility>

#include "platform/base/Failure.h"
#include "platform/base/ShownText.h"
#include "platform/base/WebAddress.h"
#include "platform/desktop/HourGlass.h"

namespace pollarix {

namespace {

// What of a text fits into a box on a small screen.
constexpr qsizetype LongestText = 2000;
constexpr qsizetype MostLines = 30;
// What of it can be read behind the button.
constexpr qsizetype LongestDetails = 20000;

qsizetype ShownLength(const QString& text) {
    qsizetype end = std::min(text.size(), LongestText);
    qsizetype lines = 0;
    for (qsizetype i = 0; i < end; ++i) {
        if (text[i] == u'\n' && ++lines == MostLines)
            end = i;
    }
    return end;
}

// One entry of a filter: what it is called, and its patterns in Qt's form.
struct FilterEntry {
    QString name;
    QStringList patterns;

    QString ForQt() const { return name + " (" + patterns.join(' ') + ')'; }
    QString Suffix() const {
        static const QRegularExpression form(R"(^\*\.(\w+)$)");
        return patterns.isEmpty() ? QString() : form.match(patterns.first()).captured(1);
    }
};

QList<FilterEntry> EntriesOf(const QString& filter) {
    static const QRegularExpression brackets(R"(\s*\([^)]*\)\s*$)");
    QList<FilterEntry> entries;
    const QStringList parts = filter.split('|');
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        FilterEntry entry{QString(parts[i]).remove(brackets),
                          parts[i + 1].split(';', Qt::SkipEmptyParts)};
        for (QString& pattern : entry.patterns) {
            // All files, also those without a dot.
            if (pattern == "*.*")
                pattern = "*";
        }
        entries.append(entry);
    }
    return entries;
}

// "Results 2.0" and "Dr. Who" have no suffix, "answers.csv" has one.
bool HasSuffix(const QString& path) {
    static const QRegularExpression form(R"([^/]\.[A-Za-z]\w{0,7}$)");
    return form.match(path).hasMatch();
}

// A dialog whose parent may be deleted while it shows, and take the dialog with it.
template <typename Dialog> class Shown {
  public:
    template <typename... Arguments>
    explicit Shown(Arguments&&... arguments)
        : dialog_(new Dialog(std::forward<Arguments>(arguments)...)) {}
    ~Shown() { delete dialog_.data(); }
    Shown(const Shown&) = delete;
    Shown& operator=(const Shown&) = delete;

    Dialog* operator->() const { return dialog_.data(); }
    bool IsThere() const { return !dialog_.isNull(); }
    bool Accepted() {
        const HourGlass::Pause pause;
        return dialog_->exec() == QDialog::Accepted && dialog_;
    }

  private:
    QPointer<Dialog> dialog_;
};

} // namespace

void QtDialogs::SetDefaultParent(QWidget* parent) {
    defaultParent_ = parent;
}

QWidget* QtDialogs::Parent() const {
    if (QWidget* const modal = QApplication::activeModalWidget())
        return modal;
    if (QWidget* const active = QApplication::activeWindow())
        return active;
    return defaultParent_;
}

QMessageBox::StandardButton QtDialogs::Ask(const QString& text, QMessageBox::Icon icon,
                                           QMessageBox::StandardButtons buttons,
                                           QMessageBox::StandardButton preset,
                                           QMessageBox::StandardButton onEscape) {
    // Texts hold what users and servers wrote: they are shown as they are, never as markup, and one
    // longer than a screen can be read behind a button.
    const qsizetype length = ShownLength(text);
    const bool tooLong = length < text.size();
    Shown<QMessageBox> box(icon, "Pollarix", QString(), buttons, Parent());
    box->setTextFormat(Qt::PlainText);
    box->setText(Breakable(Shortened(text, length)));
    if (tooLong)
        box->setDetailedText(Shortened(text, LongestDetails));
    box->setDefaultButton(preset);
    box->setEscapeButton(onEscape);
    box.Accepted();
    if (!box.IsThere() || !box->clickedButton())
        return onEscape;
    return box->standardButton(box->clickedButton());
}

MsgAnswer QtDialogs::MsgBox(const QString& text, MsgIcon icon, MsgButtons buttons) {
    QMessageBox::Icon shown = QMessageBox::NoIcon;
    switch (icon) {
    case MsgIcon::None:
        break;
    case MsgIcon::Information:
        shown = QMessageBox::Information;
        break;
    case MsgIcon::Question:
        shown = QMessageBox::Question;
        break;
    case MsgIcon::Critical:
        shown = QMessageBox::Critical;
        break;
    }
    if (buttons == MsgButtons::Ok) {
        Ask(text, shown, QMessageBox::Ok, QMessageBox::Ok, QMessageBox::Ok);
        return MsgAnswer::Ok;
    }
    QMessageBox::StandardButtons offered = QMessageBox::Yes | QMessageBox::No;
    if (buttons == MsgButtons::YesNoCancel)
        offered |= QMessageBox::Cancel;
    switch (Ask(text, shown, offered, QMessageBox::Yes,
                buttons == MsgButtons::YesNoCancel ? QMessageBox::Cancel : QMessageBox::No)) {
    case QMessageBox::Yes:
        return MsgAnswer::Yes;
    case QMessageBox::No:
        return MsgAnswer::No;
    default:
        return MsgAnswer::Cancel;
    }
}

FileDialogResult QtDialogs::ShowOpen(const FileDialogRequest& request) {
    return RunFileDialog(request, false);
}

FileDialogResult QtDialogs::ShowSave(const FileDialogRequest& request) {
    FileDialogRequest again = request;
    for (;;) {
        const FileDialogResult result = RunFileDialog(again, true);
        const QString directory = QFileInfo(result.fileName).absolutePath();
        // Looked at here and not by the dialog, since some desktops' dialogs do it before the
        // suffix is added and so miss the file that would be lost.
        if (!QFileInfo(directory).isDir())
            Ask(QString("%1\nThis directory does not exist. Please check the path.").arg(directory),
                QMessageBox::Warning, QMessageBox::Ok, QMessageBox::Ok, QMessageBox::Ok);
        else if (!request.promptOverwrite || !QFileInfo::exists(result.fileName) ||
                 Ask(QString("%1 already exists.\nDo you want to replace it?").arg(result.fileName),
                     QMessageBox::Question, QMessageBox::Yes | QMessageBox::No, QMessageBox::No,
                     QMessageBox::No) == QMessageBox::Yes)
            return result;
        again.fileName = result.fileName;
        again.filterIndex = result.filterIndex;
    }
}

FileDialogResult QtDialogs::RunFileDialog(const FileDialogRequest& request, bool save) {
    const QList<FilterEntry> entries = EntriesOf(request.filter);
    QStringList filters;
    for (const FilterEntry& entry : entries)
        filters << entry.ForQt();

    Shown<QFileDialog> dialog(Parent());
    dialog->setObjectName("FileDialog");
    if (!request.title.isEmpty())
        dialog->setWindowTitle(request.title);
    dialog->setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog->setFileMode(save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    dialog->setOption(QFileDialog::DontConfirmOverwrite);
    if (!filters.isEmpty())
        dialog->setNameFilters(filters);
    if (request.filterIndex > 0 && request.filterIndex < filters.size())
        dialog->selectNameFilter(filters[request.filterIndex]);

    const QFileInfo preset(request.fileName);
    const bool isDirectory = preset.isAbsolute() && preset.isDir();
    if (isDirectory)
        lastDirectory_ = preset.absoluteFilePath();
    else if (preset.isAbsolute() && preset.dir().exists())
        lastDirectory_ = preset.absolutePath();
    if (lastDirectory_.isEmpty() || !QFileInfo(lastDirectory_).isDir())
        lastDirectory_ = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    if (!QFileInfo(lastDirectory_).isDir())
        lastDirectory_ = QDir::homePath();
    dialog->setDirectory(lastDirectory_);
    if (!isDirectory && !request.fileName.isEmpty())
        dialog->selectFile(preset.fileName());

    if (!dialog.Accepted() || dialog->selectedFiles().isEmpty())
        throw Failure(failure::DialogCancelled);
    FileDialogResult result;
    result.fileName = dialog->selectedFiles().first();
    result.filterIndex =
        std::max(0, static_cast<int>(filters.indexOf(dialog->selectedNameFilter())));
    if (save && result.filterIndex < entries.size() && !HasSuffix(result.fileName)) {
        const QString suffix = entries[result.filterIndex].Suffix();
        if (!suffix.isEmpty())
            result.fileName += '.' + suffix;
    }
    const QFileInfo chosen(result.fileName);
    if (chosen.dir().exists())
        lastDirectory_ = chosen.absolutePath();
    return result;
}

void QtDialogs::ShowPrinter(QPrinter& printer) {
    Shown<QPrintDialog> dialog(&printer, Parent());
    dialog->setObjectName("PrintDialog");
    if (!dialog.Accepted())
        throw Failure(failure::DialogCancelled);
}

bool QtDialogs::ShowPageSetup(QPrinter& printer) {
    Shown<QPageSetupDialog> dialog(&printer, Parent());
    dialog->setObjectName("PageSetupDialog");
    return dialog.Accepted();
}

void QtDialogs::OpenFile(const QString& path) {
    QDesktopServices::openUrl(path.startsWith("mailto:", Qt::CaseInsensitive)
                                  ? QUrl(path)
                                  : QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath()));
}

void QtDialogs::OpenUrl(const QString& url) {
    if (const QUrl address = WebAddressOf(url); !address.isEmpty())
        QDesktopServices::openUrl(address);
}

} // namespace pollarix
