#include "shell/SystemInformation.h"

#include <QFileInfo>
#include <QProcess>

#include "platform/base/Failure.h"
#include "platform/desktop/Dialogs.h"

namespace pollarix {

namespace {

// True when a program was started.
bool RunNamedProgram(const RegistryLookup& lookup) {
    if (const auto path = lookup("SOFTWARE\\Microsoft\\Shared Tools\\MSINFO", "PATH"))
        return QProcess::startDetached(*path, {});
    if (const auto directory = lookup("SOFTWARE\\Microsoft\\Shared Tools Location", "MSINFO")) {
        const QString path = *directory + "\\MSINFO32.EXE";
        return QFileInfo::exists(path) && QProcess::startDetached(path, {});
    }
    return false;
}

} // namespace

std::optional<QString> GetKeyValue(const QString&, const QString&) {
    return std::nullopt;
}

void StartSysInfo(Dialogs& dialogs, const RegistryLookup& lookup) {
    bool started = false;
    try {
        started = RunNamedProgram(lookup);
    } catch (const Failure&) {
        started = false;
    }
    if (!started)
        dialogs.MsgBox("System Information Is Unavailable At This Time", MsgIcon::None);
}

} // namespace pollarix
