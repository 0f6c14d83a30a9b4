// Reads the parts of a zip file piece by piece, and gives up on one that was made to fill memory or
// disk when it is unpacked.
#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <functional>
#include <memory>

namespace pollarix::tables {

class ZipFile {
  public:
    // Throws InvalidArgument, with the path, for what is no zip file or a damaged one.
    explicit ZipFile(const QString& path);
    ~ZipFile();
    ZipFile(const ZipFile&) = delete;
    ZipFile& operator=(const ZipFile&) = delete;

    bool Has(const QString& part) const;
    // Gives the part's bytes block by block, and how much of it has been read, 0 to 1. False from
    // `take` ends the reading. Throws InvalidArgument for a part that is not there, is damaged, or
    // unpacks to more than `most` bytes or too many for its size.
    void Read(const QString& part, std::int64_t most,
              const std::function<bool(QByteArrayView block, double read)>& take) const;
    const QString& Path() const { return path_; }
    [[noreturn]] void Refuse(const QString& why) const;

  private:
    struct State;
    QString path_;
    std::unique_ptr<State> state_;
};

} // namespace pollarix::tables
