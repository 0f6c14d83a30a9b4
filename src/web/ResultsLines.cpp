#include "web/ResultsLines.h"

#include <algorithm>

#include "platform/base/Failure.h"

namespace pollarix {

namespace {

constexpr std::array<std::string_view, 14> TagTexts = {
    "<userresponse>", "</userresponse>", "<r>",           "</r>",    "<DatabaseID>",
    "</DatabaseID>",  "<QuestionNo>",    "</QuestionNo>", "<QType>", "</QType>",
    "<Response>",     "</Response>",     "<text>",        "</text>"};

// The longest tag but one byte, or the CR: what the end of a block may hold of something that goes
// on in the next one.
constexpr std::int64_t Overlap = 14;

} // namespace

ResultsLines::ResultsLines(const QString& path, std::int64_t blockSize)
    : file_(path), blockSize_(std::max(blockSize, Overlap + 2)) {
    if (!file_.exists())
        throw Failure(failure::FileNotFound, "File not found: " + path);
    if (!file_.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        ThrowFileError();
    size_ = file_.size();
}

bool ResultsLines::Next() {
    first_.fill(-1);
    isLong_ = false;
    line_ = next_;
    std::size_t from = static_cast<std::size_t>(line_);
    for (;;) {
        const std::size_t end = block_.find("\r\n", from);
        if (end != std::string::npos) {
            Note(std::string_view(block_).substr(line_, end - line_), blockAt_ + line_);
            next_ = static_cast<std::int64_t>(end) + 2;
            return true;
        }
        const std::int64_t held = static_cast<std::int64_t>(block_.size()) - line_;
        if (held >= blockSize_)
            return NextLong();
        // A CR at the end may belong to a LF that is still to come.
        from = static_cast<std::size_t>(std::max<std::int64_t>(held - 1, 0));
        if (!ReadOn())
            return false;
    }
}

// Drops what stands before the line and reads a block behind what is held; false at the end.
bool ResultsLines::ReadOn() {
    block_.erase(0, static_cast<std::size_t>(line_));
    blockAt_ += line_;
    line_ = 0;
    const std::size_t held = block_.size();
    block_.resize(held + static_cast<std::size_t>(blockSize_));
    const qint64 read = file_.seek(blockAt_ + static_cast<qint64>(held))
                            ? file_.read(block_.data() + held, blockSize_)
                            : -1;
    block_.resize(held + static_cast<std::size_t>(std::max<qint64>(read, 0)));
    if (read < 0)
        ThrowFileError();
    return read > 0;
}

// The line is longer than a block: it passes, and only the places of its tags are kept.
bool ResultsLines::NextLong() {
    isLong_ = true;
    for (;;) {
        const std::size_t end = block_.find("\r\n", static_cast<std::size_t>(line_));
        const std::string_view rest =
            std::string_view(block_).substr(static_cast<std::size_t>(line_));
        if (end != std::string::npos) {
            Note(rest.substr(0, end - static_cast<std::size_t>(line_)), blockAt_ + line_);
            next_ = static_cast<std::int64_t>(end) + 2;
            return true;
        }
        Note(rest, blockAt_ + line_);
        line_ = std::max(line_, static_cast<std::int64_t>(block_.size()) - Overlap);
        if (!ReadOn())
            return false;
    }
}

void ResultsLines::Note(std::string_view text, std::int64_t at) {
    for (std::size_t place = text.find('<'); place != std::string_view::npos;
         place = text.find('<', place + 1)) {
        const std::string_view rest = text.substr(place);
        for (std::size_t tag = 0; tag < TagCount; ++tag)
            if (first_[tag] < 0 && rest.starts_with(TagTexts[tag]))
                first_[tag] = at + static_cast<std::int64_t>(place);
    }
}

bool ResultsLines::Value(ResultsTag tag, std::string& value) {
    const std::size_t opening = Index(tag);
    const std::size_t closing = opening + 1;
    if (first_[opening] < 0 || first_[closing] < 0)
        return false;
    const std::int64_t begin =
        first_[opening] + static_cast<std::int64_t>(TagTexts[opening].size());
    const std::int64_t length = first_[closing] - begin;
    if (length < 0)
        throw Failure(failure::InvalidArgument, QString("%1 stands before %2")
                                                    .arg(QLatin1String(TagTexts[closing].data()),
                                                         QLatin1String(TagTexts[opening].data())));
    if (!isLong_) {
        value.assign(block_, static_cast<std::size_t>(begin - blockAt_),
                     static_cast<std::size_t>(length));
        return true;
    }
    const std::int64_t kept = std::min(length, MaxValue);
    value.resize(static_cast<std::size_t>(kept));
    if (!file_.seek(begin) || file_.read(value.data(), kept) != kept)
        ThrowFileError();
    return true;
}

void ResultsLines::ThrowFileError() const {
    throw Failure(failure::PathOrFileAccess, file_.fileName() + ": " + file_.errorString());
}

} // namespace pollarix
