// The few things the program does with whole files.
#pragma once

#include <QByteArrayView>
#include <QSaveFile>
#include <QString>

#include <cstdint>
#include <optional>

namespace pollarix {

// A new empty file in the directory: the prefix, a number that no file there has, ".tmp". Gives its
// full path. Throws PathOrFileAccess, naming the directory.
QString NewTempFileName(const QString& directory, const QString& prefix);

// Whether both paths lead to one file: by another spelling, a link or a second name of it. False
// where one leads nowhere.
bool IsSameFile(const QString& one, const QString& other);

// Copies a file over another or to a new one. The target is replaced only when the copy is whole on
// the disk, and keeps its old content at any failure. Throws FileNotFound for a missing source and
// PathOrFileAccess for a copy onto itself, a target that may not be written or is no regular file,
// and anything the system says; the path is named.
void CopyFileOver(const QString& from, const QString& to);

// A new empty file that lies beside its later name until it is finished, for what is written by
// others than WholeFile. Removed when it is not finished.
class PendingFile {
  public:
    // A target that is a link is kept, and what it leads to replaced. Throws PathOrFileAccess for a
    // target that may not be written, and naming the directory that takes no file.
    explicit PendingFile(const QString& target);
    ~PendingFile();
    PendingFile(const PendingFile&) = delete;
    PendingFile& operator=(const PendingFile&) = delete;

    const QString& Path() const { return path_; }
    // Replaces the target in one step, which is on the disk when it returns. Throws
    // PathOrFileAccess; the target then keeps its old content.
    void Finish();

  private:
    QString target_;
    QString path_;
};

// Which file lies under a name, and as of when: two that are equal were one file that nobody wrote
// in between.
struct FileState {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::int64_t size = 0;
    std::int64_t changed = 0; // nanoseconds
    bool IsSameFile(const FileState& other) const {
        return device == other.device && inode == other.inode;
    }
    bool operator==(const FileState&) const = default;
};
// None when there is no such file. Links are followed.
std::optional<FileState> StateOfFile(const QString& path);

// Writes a file piece by piece, in bounded memory and in the same way: only Finish replaces the
// target, and without it the target keeps its old content. A target that is there and no regular
// file is refused. All throw PathOrFileAccess with the
// path and the system's words.
class WholeFile {
  public:
    explicit WholeFile(const QString& path);
    void Write(QByteArrayView bytes);
    // Writes again what stands at the beginning; not more than was written.
    void RewriteBeginning(QByteArrayView bytes);
    void Finish();

  private:
    QString path_;
    QSaveFile file_;
};

// Replaces a file's content by the given bytes in the same way.
void WriteWholeFile(const QString& path, QByteArrayView bytes);

} // namespace pollarix
