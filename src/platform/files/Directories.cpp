#include "platform/files/Directories.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include "platform/base/Failure.h"

namespace pollarix {

void MakeOwnersDirectory(const QString& path) {
    const QFileInfo info(path);
    if (info.isDir())
        return;
    const auto onlyOwner = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
    QDir above(info.absolutePath());
    if (!above.mkpath(".") || !above.mkdir(info.fileName(), onlyOwner))
        throw Failure(failure::PathOrFileAccess,
                      QString("The directory %1 can't be made").arg(path));
}

Directories Directories::OfThisProgram() {
    Directories directories;
    const QDir executables(QCoreApplication::applicationDirPath());
    directories.program = executables.exists("blank.mdb")
                              ? executables.absolutePath()
                              : QDir::cleanPath(executables.filePath("../share/pollarix"));
    directories.user =
        QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + "/pollarix";
    MakeOwnersDirectory(directories.user);
    return directories;
}

} // namespace pollarix
