// A text file that is built up by appending and written block by block, so that its size does not
// matter. Knows nothing of what is written.
#pragma once

#include <QByteArray>
#include <QString>

#include "platform/files/Files.h"

namespace pollarix {

class BlockWriter {
  public:
    // Throws PathOrFileAccess, as the two others do. The file at the path is replaced only by Save.
    explicit BlockWriter(const QString& path) : file_(path) { text_.reserve(2 * BlockSize); }

    // What has not been written yet, to append to.
    QByteArray& Text() { return text_; }

    // To be called now and then, after each line say.
    void WriteIfFull() {
        if (text_.size() >= BlockSize)
            WriteBlock();
    }
    void Save() {
        WriteBlock();
        file_.Finish();
    }

  private:
    static constexpr qsizetype BlockSize = 1 << 16;

    void WriteBlock() {
        file_.Write(text_);
        text_.resize(0); // keeps its memory
    }

    WholeFile file_;
    QByteArray text_;
};

} // namespace pollarix
