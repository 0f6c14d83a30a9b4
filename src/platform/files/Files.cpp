#include "platform/files/Files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <filesystem>
#include <system_error>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

#include "platform/base/Failure.h"

namespace pollarix {

namespace {

[[noreturn]] void Refuse(const QString& path, const QString& why) {
    throw Failure(failure::PathOrFileAccess, path + ": " + why);
}

// A file without write permission is not replaced, also not by a user who could: the permission
// bits alone count, since the system lets some users write whatever they say.
void RequireWritable(const QString& path) {
    const QFileInfo info(path);
    if (info.isDir())
        Refuse(path, "it is a directory");
    // A device or a pipe would be replaced by the file, and lost to all who use it.
    if (info.exists() && !info.isFile())
        Refuse(path, "it is no regular file");
    constexpr auto anyWrite =
        QFileDevice::WriteOwner | QFileDevice::WriteGroup | QFileDevice::WriteOther;
    if (info.exists() && !(info.permissions() & anyWrite))
        Refuse(path, "it is read-only");
}

std::filesystem::path EncodedPath(const QString& path) {
    return QFile::encodeName(path).toStdString();
}

void RequireTwoFiles(const QString& from, const QString& to) {
    if (!QFileInfo(from).isFile())
        throw Failure(failure::FileNotFound, "File not found: " + from);
    if (IsSameFile(from, to))
        Refuse(to, "a file can't be copied onto itself");
}

// Calls `write` for each block of a file.
template <typename Write> void ReadBlocks(const QString& path, const Write& write) {
    QFile in(path);
    if (!in.open(QIODevice::ReadOnly))
        Refuse(path, in.errorString());
    QByteArray block;
    do {
        block = in.read(1 << 20);
        if (in.error() != QFileDevice::NoError)
            Refuse(path, in.errorString());
        write(block);
    } while (!block.isEmpty());
}

// Waits until a file, or what is named in a directory, survives a power cut. Some file systems
// can't say, and then nothing is lost by it.
void SyncToDisk([[maybe_unused]] const QString& path) {
#ifdef Q_OS_UNIX
    const int opened = open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (opened < 0)
        return;
    fsync(opened);
    close(opened);
#endif
}

} // namespace

QString NewTempFileName(const QString& directory, const QString& prefix) {
    for (int attempt = 0; attempt < 1000; ++attempt) {
        const QString number = QString::number(QRandomGenerator::global()->bounded(0x10000), 16);
        const QString path = directory + '/' + prefix + number.toUpper() + ".tmp";
        QFile file(path);
        if (file.open(QIODevice::WriteOnly | QIODevice::NewOnly))
            return path;
        if (!file.exists())
            Refuse(directory, file.errorString());
    }
    Refuse(directory, "no free name for a temporary file");
}

bool IsSameFile(const QString& one, const QString& other) {
    std::error_code missing;
    return std::filesystem::equivalent(EncodedPath(one), EncodedPath(other), missing);
}

WholeFile::WholeFile(const QString& path) : path_(path), file_(path) {
    RequireWritable(path);
    if (!file_.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        Refuse(path, file_.errorString());
}

void WholeFile::Write(QByteArrayView bytes) {
    // A disk that is about to be full takes a part without saying why: the next write says it.
    while (!bytes.isEmpty()) {
        const qint64 written = file_.write(bytes.data(), bytes.size());
        if (written <= 0)
            Refuse(path_, file_.errorString());
        bytes = bytes.sliced(written);
    }
}

void WholeFile::RewriteBeginning(QByteArrayView bytes) {
    const qint64 end = file_.pos();
    if (!file_.seek(0))
        Refuse(path_, file_.errorString());
    Write(bytes);
    if (!file_.seek(end))
        Refuse(path_, file_.errorString());
}

void WholeFile::Finish() {
    if (!file_.commit())
        Refuse(path_, file_.errorString());
}

std::optional<FileState> StateOfFile(const QString& path) {
#ifdef Q_OS_UNIX
    struct stat status {};
    if (stat(QFile::encodeName(path).constData(), &status) != 0)
        return std::nullopt;
    return FileState{status.st_dev, status.st_ino, status.st_size,
                     status.st_mtim.tv_sec * 1'000'000'000LL + status.st_mtim.tv_nsec};
#else
    const QFileInfo info(path);
    if (!info.exists())
        return std::nullopt;
    return FileState{0, 0, info.size(), info.lastModified().toMSecsSinceEpoch() * 1'000'000};
#endif
}

void CopyFileOver(const QString& from, const QString& to) {
    RequireTwoFiles(from, to);
    WholeFile out(to);
    ReadBlocks(from, [&](const QByteArray& block) { out.Write(block); });
    out.Finish();
}

PendingFile::PendingFile(const QString& target) : target_(target) {
    RequireWritable(target);
    if (const QString real = QFileInfo(target).canonicalFilePath(); !real.isEmpty())
        target_ = real;
    const QFileInfo replaced(target_);
    path_ = NewTempFileName(replaced.absolutePath(), replaced.fileName() + '-');
    if (replaced.exists())
        QFile(path_).setPermissions(replaced.permissions());
}

PendingFile::~PendingFile() {
    if (!path_.isEmpty())
        QFile::remove(path_);
}

void PendingFile::Finish() {
    SyncToDisk(path_);
    std::error_code why;
    std::filesystem::rename(EncodedPath(path_), EncodedPath(target_), why);
    if (why)
        Refuse(target_, QString::fromLocal8Bit(why.message().c_str()));
    path_.clear();
    SyncToDisk(QFileInfo(target_).absolutePath());
}

void WriteWholeFile(const QString& path, QByteArrayView bytes) {
    WholeFile out(path);
    out.Write(bytes);
    out.Finish();
}

} // namespace pollarix
