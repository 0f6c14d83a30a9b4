// A text file that is built up by appending and written block by block, so that its size does not
// matter. Knows nothing of what is written.
#pragma once

#include <QByteArrayView>
#include <QString>

#include <array>
#include <cstring>
#include <memory>

#include "platform/files/Files.h"

namespace pollarix {

class BlockWriter {
  public:
    // Throws PathOrFileAccess, as the others do. The file at the path is replaced only by Save.
    explicit BlockWriter(const QString& path) : file_(path) {}

    void Add(QByteArrayView bytes) {
        if (bytes.isEmpty())
            return; // which may have no address
        if (bytes.size() > BlockSize - used_) {
            WriteBlock();
            if (bytes.size() > BlockSize) {
                file_.Write(bytes);
                return;
            }
        }
        std::memcpy(block_->data() + used_, bytes.data(), static_cast<std::size_t>(bytes.size()));
        used_ += bytes.size();
    }
    void Add(char byte) { Add(QByteArrayView(&byte, 1)); }
    void Save() {
        WriteBlock();
        file_.Finish();
    }

  private:
    static constexpr qsizetype BlockSize = 1 << 16;

    void WriteBlock() {
        file_.Write(QByteArrayView(block_->data(), used_));
        used_ = 0;
    }

    WholeFile file_;
    std::unique_ptr<std::array<char, BlockSize>> block_ =
        std::make_unique<std::array<char, BlockSize>>();
    qsizetype used_ = 0;
};

} // namespace pollarix
