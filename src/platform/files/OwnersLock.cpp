#include "platform/files/OwnersLock.h"

#include <QDir>
#include <QFile>

namespace pollarix {

namespace {

constexpr const char* Suffix = ".lock";

} // namespace

std::unique_ptr<QLockFile> LockBeside(const QString& path) {
    auto lock = std::make_unique<QLockFile>(path + Suffix);
    lock->setStaleLockTime(0); // however long it is held
    return lock->tryLock() ? std::move(lock) : nullptr;
}

void DropLocksOfNothing(const QString& directory, const QString& pattern) {
    const QDir files(directory);
    for (const QString& name : files.entryList({pattern + Suffix}, QDir::Files | QDir::Hidden)) {
        const QString path = files.filePath(name.chopped(qsizetype(qstrlen(Suffix))));
        if (!QFile::exists(path))
            LockBeside(path); // takes what nobody holds, and ends at once
    }
}

} // namespace pollarix
