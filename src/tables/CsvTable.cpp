#include "tables/CsvTable.h"

#include <QFile>
#include <QStringDecoder>

#include <algorithm>
#include <array>

#include "platform/base/Failure.h"
#include "platform/base/Windows1252.h"
#include "tables/FormulaGuard.h"

namespace pollarix::tables {

namespace {

constexpr qint64 BlockSize = 1 << 16;
constexpr qint64 BytesToGuessFrom = 1 << 16;
constexpr qint64 BytesHeldAgainstUtf8 = 64 << 20;
constexpr std::size_t RowsToGuessFrom = 50;
constexpr double NearlyAll = 0.9;

// Takes characters as they come and gives rows. Knows no file.
class RowParser {
  public:
    // `take` is given each row; false ends the parsing.
    using Take = std::function<bool(std::int64_t number, std::vector<QString>& cells)>;
    RowParser(const TextShape& shape, QString path, Take take)
        : shape_(shape), path_(std::move(path)), take_(std::move(take)) {}

    // False once a row was not wanted any more.
    bool Add(QStringView text) {
        for (const QChar character : text)
            if (!AddCharacter(character.unicode()))
                return false;
        return true;
    }
    // The end of the file ends the last row, where it has no line end.
    bool Finish() {
        if (state_ == State::Quoted)
            Fail(QString("the quoted text of column %1 that begins in this row has no end")
                     .arg(cells_.size() + 1));
        return state_ == State::Begin && cells_.empty() && cell_.isEmpty() ? true : EndRow();
    }
    [[noreturn]] void Fail(const QString& what) const {
        throw Failure(failure::InvalidArgument, path_ + QString(", row %1: ").arg(row_) + what);
    }
    bool IsInQuotes() const { return state_ == State::Quoted; }

  private:
    enum class State {
        Begin,    // of a cell: nothing yet, or blanks
        Plain,    // without quotes
        Quoted,   // between quotes
        QuoteSeen // a quote within quotes: the end, or the first of two
    };

    bool AddCharacter(char16_t character) {
        const bool afterReturn = std::exchange(afterReturn_, false);
        if (state_ == State::Quoted) {
            if (character == shape_.quote)
                state_ = State::QuoteSeen;
            else
                Append(character);
            return true;
        }
        if (character == u'\n' && afterReturn)
            return true; // the second half of a line end
        if (character == shape_.separator) {
            EndCell();
            return true;
        }
        if (character == u'\n' || character == u'\r') {
            afterReturn_ = character == u'\r';
            return EndRow();
        }
        if (shape_.quote && character == shape_.quote && state_ != State::Plain) {
            if (state_ == State::QuoteSeen)
                Append(character);
            else
                cell_.clear(); // blanks before a quote
            state_ = State::Quoted;
            return true;
        }
        if (state_ == State::QuoteSeen || character != u' ')
            state_ = State::Plain;
        Append(character);
        return true;
    }

    void Append(char16_t character) {
        if (cell_.size() >= LongestCell || inRow_ >= LongestRow)
            Fail(QString("column %1 holds more than %2 million characters. Is the closing quote of "
                         "a text missing?")
                     .arg(cells_.size() + 1)
                     .arg(LongestCell >> 20));
        cell_ += QChar(character);
        ++inRow_;
    }
    void EndCell() {
        if (cells_.size() >= MostColumns)
            Fail(QString("has more than %1 columns").arg(MostColumns));
        cells_.push_back(cell_);
        cell_.resize(0);
        state_ = State::Begin;
    }
    bool EndRow() {
        EndCell();
        const bool goOn = take_(row_, cells_);
        cells_.clear();
        inRow_ = 0;
        ++row_;
        return goOn;
    }

    const TextShape shape_;
    const QString path_;
    const Take take_;
    State state_ = State::Begin;
    bool afterReturn_ = false;
    QString cell_;
    qsizetype inRow_ = 0;
    std::vector<QString> cells_;
    std::int64_t row_ = 1;
};

bool IsBlank(const std::vector<QString>& cells) {
    return std::all_of(cells.begin(), cells.end(),
                       [](const QString& cell) { return cell.trimmed().isEmpty(); });
}

TextShape::Encoding GuessEncoding(QFile& file) {
    const QByteArray head = file.peek(2);
    if (head == "\xFF\xFE" || head == "\xFE\xFF")
        return TextShape::Encoding::Utf16;
    QStringDecoder utf8(QStringDecoder::Utf8);
    for (qint64 read = 0; read < BytesHeldAgainstUtf8;) {
        const QByteArray block = file.read(BlockSize);
        if (block.isEmpty())
            break;
        read += block.size();
        const QString decoded = utf8.decode(block);
        if (utf8.hasError())
            return TextShape::Encoding::Windows1252;
    }
    return TextShape::Encoding::Utf8;
}

// How well a separator and a quote fit a text: rows of as many columns as the first one has.
double FitOf(const QString& sample, const TextShape& shape) {
    std::vector<std::size_t> widths;
    RowParser parser(shape, {}, [&](std::int64_t, std::vector<QString>& cells) {
        if (!IsBlank(cells))
            widths.push_back(cells.size());
        return widths.size() < RowsToGuessFrom;
    });
    try {
        parser.Add(sample); // a row that the sample cuts off does not count
        if (widths.empty() && !parser.IsInQuotes())
            parser.Finish();
    } catch (const Failure&) {
        return 0;
    }
    if (widths.empty() || widths.front() < 2)
        return 0;
    const auto same = static_cast<double>(std::count(widths.begin(), widths.end(), widths.front()));
    const double share = same / static_cast<double>(widths.size());
    return static_cast<double>(widths.front()) * share + (share >= NearlyAll ? MostColumns : 0);
}

TextShape GuessShape(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw Failure(failure::PathOrFileAccess, path + ": " + file.errorString());
    TextShape shape;
    shape.encoding = GuessEncoding(file);
    file.seek(0);
    const QByteArray bytes = file.read(BytesToGuessFrom);
    if (shape.encoding != TextShape::Encoding::Utf16 && bytes.contains('\0'))
        throw Failure(failure::InvalidArgument,
                      path + ": is no table of text, no workbook (.xlsx) and no file of SPSS or "
                             "Stata");
    QString sample;
    if (shape.encoding == TextShape::Encoding::Windows1252)
        sample = FromWindows1252(bytes);
    else
        sample = QStringDecoder(shape.encoding == TextShape::Encoding::Utf8 ? QStringDecoder::Utf8
                                                                            : QStringDecoder::Utf16)
                     .decode(bytes);
    // Apostrophes stand in many texts: they are quotes only where there are no others.
    if (!sample.contains('"') && sample.contains('\''))
        shape.quote = u'\'';
    double best = 0;
    TextShape found = shape;
    found.quote = u'"';
    for (const char16_t quote : {u'"', shape.quote})
        for (const char16_t separator : {u',', u';', u'\t', u'|'}) {
            TextShape tried = shape;
            tried.quote = quote;
            tried.separator = separator;
            const double fit = FitOf(sample, tried);
            if (fit > best) {
                best = fit;
                found = tried;
            }
        }
    return found;
}

} // namespace

CsvTable::CsvTable(const QString& path, const std::optional<TableShape>& shape) : path_(path) {
    if (shape && shape->text)
        shape_ = *shape;
    else
        shape_.text = GuessShape(path);
    shape_.canLackNames = true;
    ReadAll([this](const TableRow& row) {
        for (std::size_t i = 0; i < row.cells.size(); ++i)
            columns_.push_back(
                {shape_.hasNames ? row.cells[i].text.simplified() : QString("Column %1").arg(i + 1),
                 {}});
        return false;
    });
    if (columns_.empty())
        throw Failure(failure::InvalidArgument, path + ": holds no table; it is empty");
}

void CsvTable::Read(const RowSink& sink) {
    bool isHead = shape_.hasNames;
    ReadAll([&](const TableRow& row) {
        // The head is the first row that is not blank.
        if (isHead) {
            isHead = row.cells.empty();
            return true;
        }
        return sink(row);
    });
}

// Blank rows are left out, wherever they stand.
void CsvTable::ReadAll(const RowSink& sink) {
    QFile file(path_);
    if (!file.open(QIODevice::ReadOnly))
        throw Failure(failure::PathOrFileAccess, path_ + ": " + file.errorString());
    const auto size = static_cast<double>(std::max<qint64>(1, file.size()));
    TableRow row;
    RowParser parser(*shape_.text, path_, [&](std::int64_t number, std::vector<QString>& cells) {
        row.number = number;
        row.cells.clear();
        if (IsBlank(cells)) {
            // Who shows how far it is, and may want to stop, is asked now and then all the same.
            return number % 4096 != 0 || columns_.empty() || sink(row);
        }
        for (QString& cell : cells) {
            row.cells.emplace_back();
            cell.remove(QChar(u'\0'));
            row.cells.back().text = WithoutGuard(cell);
        }
        return sink(row);
    });
    const TextShape::Encoding encoding = shape_.text->encoding;
    QStringDecoder decoder(encoding == TextShape::Encoding::Utf16 ? QStringDecoder::Utf16
                                                                  : QStringDecoder::Utf8);
    for (bool atBegin = true; !file.atEnd(); atBegin = false) {
        QByteArray block = file.read(BlockSize);
        if (block.isEmpty())
            throw Failure(failure::PathOrFileAccess, path_ + ": " + file.errorString());
        row.part = static_cast<double>(file.pos()) / size;
        if (encoding == TextShape::Encoding::Windows1252) {
            if (atBegin && block.startsWith("\xEF\xBB\xBF"))
                block.remove(0, 3);
            if (!parser.Add(FromWindows1252(block)))
                return;
            continue;
        }
        QString text = decoder.decode(block);
        const bool bad = decoder.hasError();
        if (bad)
            text.truncate(std::max<qsizetype>(0, text.indexOf(QChar(0xFFFD))));
        if (!parser.Add(text))
            return;
        if (bad)
            parser.Fail("has letters that are not in this encoding. Please choose another");
    }
    parser.Finish();
}

} // namespace pollarix::tables
