// The lines of a results file, read in blocks: a file of any size in bounded memory. Knows the tags
// and where they stand in a line, and nothing of what they mean.
#pragma once

#include <QFile>
#include <QString>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace pollarix {

// The tags of a line. A closing tag follows its opening one.
enum class ResultsTag {
    UserResponse,
    UserResponseEnd,
    Record,
    RecordEnd,
    DatabaseID,
    DatabaseIDEnd,
    QuestionNo,
    QuestionNoEnd,
    QType,
    QTypeEnd,
    Response,
    ResponseEnd,
    Text,
    TextEnd
};

// A line is what stands between two CR LF; text behind the last one is none. A line longer than a
// block is never held: its tags are found while it passes, and its values are read from the file
// when they are asked for.
class ResultsLines {
  public:
    // How much of the file is held, the values of one line beside it.
    static constexpr std::int64_t BlockSize = 1 << 20;

    static constexpr std::int64_t MaxValue = (std::int64_t(64) << 20) + 1;

    // Throws FileNotFound or PathOrFileAccess, naming the file. `blockSize` is for tests.
    explicit ResultsLines(const QString& path, std::int64_t blockSize = BlockSize);

    // Goes on to the next line; false when there is none. Throws PathOrFileAccess.
    bool Next();

    // Whether the line holds the tag.
    bool Holds(ResultsTag tag) const { return first_[Index(tag)] >= 0; }

    // Puts the text between the tag's first place and that of its closing tag into the value and
    // gives true; leaves it alone unless the line holds both. Of a value in a line longer than a
    // block no more than MaxValue bytes come: the database refuses less. Throws InvalidArgument for
    // a closing tag before its opening one, and PathOrFileAccess.
    bool Value(ResultsTag tag, std::string& value);

    // Bytes behind the current line, and of the file as it was when it was opened.
    std::int64_t Position() const { return blockAt_ + next_; }
    std::int64_t Size() const { return size_; }

  private:
    static constexpr std::size_t TagCount = 14;
    static constexpr std::size_t Index(ResultsTag tag) { return static_cast<std::size_t>(tag); }

    void Note(std::string_view text, std::int64_t at);
    bool ReadOn();
    bool NextLong();
    [[noreturn]] void ThrowFileError() const;

    QFile file_;
    std::int64_t blockSize_;
    std::int64_t size_ = 0;
    std::string block_;
    std::int64_t blockAt_ = 0; // where the block stands in the file
    std::int64_t line_ = 0;    // where the line begins in the block
    std::int64_t next_ = 0;    // where the next one does
    // Where each tag first stands in the line, counted in the file; -1 for none.
    std::array<std::int64_t, TagCount> first_{};
    bool isLong_ = false; // the line is not in the block
};

} // namespace pollarix
