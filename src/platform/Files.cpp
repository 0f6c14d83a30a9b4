#include "platform/Files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include "platform/Failure.h"

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
    constexpr auto anyWrite =
        QFileDevice::WriteOwner | QFileDevice::WriteGroup | QFileDevice::WriteOther;
    if (info.exists() && !(info.permissions() & anyWrite))
        Refuse(path, "it is read-only");
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

void CopyFileOver(const QString& from, const QString& to) {
    if (!QFileInfo(from).isFile())
        throw Failure(failure::FileNotFound, "File not found: " + from);
    const QString source = QFileInfo(from).canonicalFilePath();
    const QString target = QFileInfo(to).canonicalFilePath();
    if (source == target)
        Refuse(to, "a file can't be copied onto itself");
    QFile in(from);
    if (!in.open(QIODevice::ReadOnly))
        Refuse(from, in.errorString());
    WholeFile out(to);
    QByteArray block;
    do {
        block = in.read(1 << 20);
        if (in.error() != QFileDevice::NoError)
            Refuse(from, in.errorString());
        out.Write(block);
    } while (!block.isEmpty());
    out.Finish();
}

void WriteWholeFile(const QString& path, QByteArrayView bytes) {
    WholeFile out(path);
    out.Write(bytes);
    out.Finish();
}

} // namespace pollarix
