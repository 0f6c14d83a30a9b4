#include "FuzzProgram.h"

#include <QDir>
#include <QFile>
#include <QLocale>

#include <cstdio>
#include <cstdlib>

#include "platform/desktop/Application.h"

namespace pollarix::fuzz {

namespace {

// In memory where there is such a place: thousands of files a second are written.
QTemporaryDir& Home() {
    static QTemporaryDir home(
        (QFileInfo("/dev/shm").isWritable() ? QString("/dev/shm") : QDir::tempPath()) +
        "/pollarix-fuzz-XXXXXX");
    return home;
}

} // namespace

MsgAnswer SilentDialogs::MsgBox(const QString&, MsgIcon, MsgButtons buttons) {
    ++shown;
    return buttons == MsgButtons::Ok ? MsgAnswer::Ok : MsgAnswer::Yes;
}

FileDialogResult SilentDialogs::ShowOpen(const FileDialogRequest&) {
    throw Failure(failure::DialogCancelled);
}

FileDialogResult SilentDialogs::ShowSave(const FileDialogRequest&) {
    throw Failure(failure::DialogCancelled);
}

void SilentDialogs::ShowPrinter(QPrinter&) {
    throw Failure(failure::DialogCancelled);
}

bool SilentDialogs::ShowPageSetup(QPrinter&) {
    return false;
}

void SilentDialogs::OpenFile(const QString&) {}
void SilentDialogs::OpenUrl(const QString&) {}
void SilentDialogs::SetDefaultParent(QWidget*) {}

QString Directory() {
    return Home().path();
}

QString SettingsDirectory() {
    return Path("settings");
}

QByteArray BlankSurveySql() {
    return ReadFile(POLLARIX_SOURCE_DIR "/data/sql/blank.sql");
}

void WriteFile(const QString& path, QByteArrayView bytes) {
    QFile file(path);
    Require(file.open(QIODevice::WriteOnly) &&
                file.write(bytes.data(), bytes.size()) == bytes.size(),
            "the fuzzer can't write its own files");
}

QByteArray ReadFile(const QString& path) {
    QFile file(path);
    Require(file.open(QIODevice::ReadOnly), "the fuzzer can't read its own files");
    return file.readAll();
}

void Require(bool condition, const char* what) {
    if (condition)
        return;
    std::fprintf(stderr, "Not so: %s\n", what);
    std::abort();
}

int NumberOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const Failure& failure) {
        return failure.Number();
    }
    return 0;
}

} // namespace pollarix::fuzz

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    using namespace pollarix::fuzz;
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("HOME", Directory().toUtf8());
    qputenv("XDG_CONFIG_HOME", Path("config").toUtf8());
    qputenv("XDG_DATA_HOME", Path("data").toUtf8());
    static pollarix::Application application(*argc, *argv);
    QLocale::setDefault(QLocale::c());
    return 0;
}
