#include "platform/network/FtpReply.h"

#include <QStringDecoder>

#include "platform/base/Windows1252.h"

namespace pollarix {

namespace {

constexpr qsizetype LongestReply = 4096;
constexpr qsizetype LongestShown = 256;

} // namespace

void FtpReply::Clear() {
    text_.clear();
    code_ = 0;
    goesOn_ = false;
}

void FtpReply::AddLine(const QByteArray& line) {
    bool isNumber = false;
    const int code = line.left(3).toInt(&isNumber);
    const bool isCoded = isNumber && code >= 100 && code <= 599;
    const char mark = line.size() > 3 ? line[3] : ' ';
    if (goesOn_) {
        goesOn_ = !(isCoded && code == code_ && mark != '-');
        if (text_.size() < LongestReply)
            text_ += line;
        return;
    }
    if (!isCoded)
        return;
    code_ = code;
    text_ = line;
    goesOn_ = mark == '-';
    passwordAsked_ = passwordAsked_ || code == 331;
}

// A reply's bytes have no declared encoding: what is not UTF-8 is taken as Windows-1252.
QString FtpReply::Shown() const {
    QStringDecoder utf8(QStringDecoder::Utf8);
    QString text = utf8(text_);
    if (utf8.hasError())
        text = FromWindows1252(text_);
    return text.trimmed().left(LongestShown);
}

} // namespace pollarix
