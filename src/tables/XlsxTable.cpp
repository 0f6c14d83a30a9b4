#include "tables/XlsxTable.h"

#include <QDateTime>
#include <QHash>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>

#include "platform/base/Failure.h"
#include "tables/XmlPart.h"

namespace pollarix::tables {

namespace {

constexpr std::int64_t MostBytesOfPlan = 16 << 20;   // sheets' names, relations, formats
constexpr std::int64_t MostBytesOfTexts = 512 << 20; // shared by all sheets
constexpr std::int64_t MostBytesOfSheet = std::int64_t(16) << 30;
constexpr std::size_t MostSheets = 1000;
constexpr std::size_t MostFormats = 1 << 20;
constexpr std::int64_t LastRow = 1 << 24;
constexpr double SecondsOfDay = 86400;
constexpr double LastDay = 2958466; // behind the year 9999

QString FromUtf8(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

std::optional<std::int64_t> WholeNumber(std::string_view text) {
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.empty() || error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return number;
}

// Characters that XML has no way to hold stand as _xHHHH_.
QString Unescaped(const QString& text) {
    if (!text.contains("_x"))
        return text;
    QString plain;
    for (qsizetype i = 0; i < text.size(); ++i) {
        bool isNumber = false;
        if (text[i] == '_' && i + 6 < text.size() && text[i + 1] == 'x' && text[i + 6] == '_') {
            const uint letter = QStringView(text).mid(i + 2, 4).toUInt(&isNumber, 16);
            if (isNumber && letter != 0) {
                plain += QChar(static_cast<char16_t>(letter));
                i += 6;
                continue;
            }
        }
        plain += text[i];
    }
    return plain;
}

// A format of numbers that shows a date or a time.
bool IsDateFormat(const QString& format) {
    QChar inside = u'\0'; // of quotes or brackets
    for (qsizetype i = 0; i < format.size(); ++i) {
        const QChar letter = format[i];
        if (!inside.isNull()) {
            if (letter == inside)
                inside = u'\0';
        } else if (letter == '"') {
            inside = u'"';
        } else if (letter == '[') {
            inside = u']';
        } else if (letter == '\\' || letter == '_' || letter == '*') {
            ++i;
        } else if (QStringView(u"dmyhsDMYHS").contains(letter)) {
            return !format.contains("General", Qt::CaseInsensitive);
        }
    }
    return false;
}

constexpr bool IsBuiltInDate(std::int64_t format) {
    return (format >= 14 && format <= 22) || (format >= 27 && format <= 36) ||
           (format >= 45 && format <= 47) || (format >= 50 && format <= 58);
}

QString DirectoryOf(const QString& part) {
    return part.left(part.lastIndexOf('/') + 1);
}

// The parts that one part refers to: by id, with what they are.
struct Relation {
    QString type; // the last word of it
    QString target;
};

class Relations : public XmlHandler {
  public:
    explicit Relations(QString directory) : directory_(std::move(directory)) {}
    bool Start(std::string_view name, const XmlAttributes& attributes) override {
        if (name != "Relationship" || byId.size() >= static_cast<qsizetype>(MostSheets) * 4)
            return true;
        const QString type = FromUtf8(attributes.Of("Type"));
        const QString target = FromUtf8(attributes.Of("Target"));
        byId.insert(FromUtf8(attributes.Of("Id")),
                    {type.mid(type.lastIndexOf('/') + 1),
                     target.startsWith('/') ? target.mid(1) : directory_ + target});
        return true;
    }
    // The first part of a type, "" for none.
    QString Of(const char* type) const {
        for (const Relation& relation : byId)
            if (relation.type == QLatin1String(type))
                return relation.target;
        return {};
    }
    QHash<QString, Relation> byId;

  private:
    QString directory_;
};

class Sheets : public XmlHandler {
  public:
    bool Start(std::string_view name, const XmlAttributes& attributes) override {
        if (name == "workbookPr") {
            const std::string_view from1904 = attributes.Of("date1904");
            is1904 = from1904 == "1" || from1904 == "true";
        }
        if (name == "sheet" && names.size() < static_cast<qsizetype>(MostSheets)) {
            names << FromUtf8(attributes.Of("name"));
            ids << FromUtf8(attributes.Of("id"));
        }
        return true;
    }
    QStringList names;
    QStringList ids;
    bool is1904 = false;
};

// Which of the formats of cells are those of dates.
class Formats : public XmlHandler {
  public:
    bool Start(std::string_view name, const XmlAttributes& attributes) override {
        if (name == "cellXfs") {
            inCells_ = true;
        } else if (name == "numFmt") {
            const auto id = WholeNumber(attributes.Of("numFmtId"));
            if (id && IsDateFormat(FromUtf8(attributes.Of("formatCode"))))
                own_.insert(*id, true);
        } else if (name == "xf" && inCells_ && isDate.size() < MostFormats) {
            const std::int64_t id = WholeNumber(attributes.Of("numFmtId")).value_or(0);
            isDate.push_back(IsBuiltInDate(id) || own_.contains(id));
        }
        return true;
    }
    bool End(std::string_view name) override {
        inCells_ &= name != "cellXfs";
        return true;
    }
    std::vector<bool> isDate;

  private:
    bool inCells_ = false;
    QHash<std::int64_t, bool> own_;
};

// Gathers the text of elements <t>, but not of phonetic hints.
class TextOfCell {
  public:
    void Clear() { text_.clear(); }
    void Start(std::string_view name) {
        inHint_ |= name == "rPh";
        inText_ = name == "t" && !inHint_;
    }
    void End(std::string_view name) {
        inHint_ &= name != "rPh";
        inText_ &= name != "t";
    }
    void Text(std::string_view utf8, const ZipFile& file) {
        if (inText_)
            Append(utf8, file);
    }
    void Append(std::string_view utf8, const ZipFile& file) {
        if (static_cast<qsizetype>(text_.size() + utf8.size()) > 4 * LongestCell)
            file.Refuse("has a cell that is longer than any table needs");
        text_ += utf8;
    }
    QString Taken() const { return Unescaped(FromUtf8(text_)); }
    const std::string& Bytes() const { return text_; }

  private:
    std::string text_;
    bool inText_ = false;
    bool inHint_ = false;
};

class SharedTexts : public XmlHandler {
  public:
    explicit SharedTexts(const ZipFile& file) : file_(file) {}
    bool Start(std::string_view name, const XmlAttributes&) override {
        if (name == "si")
            text_.Clear();
        text_.Start(name);
        return true;
    }
    bool End(std::string_view name) override {
        text_.End(name);
        if (name == "si")
            texts.push_back(text_.Taken());
        return true;
    }
    bool Text(std::string_view utf8) override {
        text_.Text(utf8, file_);
        return true;
    }
    std::vector<QString> texts;

  private:
    const ZipFile& file_;
    TextOfCell text_;
};

} // namespace

struct XlsxTable::Book {
    QStringList parts; // of the sheets, in their order
    std::vector<QString> texts;
    std::vector<bool> isDate; // by format of cells
    bool is1904 = false;
};

namespace {

QString DateText(double days, bool is1904) {
    // Days are counted from the end of 1899, or from 1904 on.
    constexpr double DaysTo1904 = 1462;
    if (is1904)
        days += DaysTo1904;
    if (!(days >= 0 && days < LastDay))
        return {};
    const auto seconds = static_cast<qint64>(std::llround(days * SecondsOfDay));
    const QDateTime when = QDateTime(QDate(1899, 12, 30), QTime(0, 0), Qt::UTC).addSecs(seconds);
    return when.toString("yyyy-MM-dd hh:mm:ss");
}

class SheetReader : public XmlHandler {
  public:
    SheetReader(const ZipFile& file, const XlsxTable::Book& book, const RowSink& sink)
        : file_(file), book_(book), sink_(sink) {}

    void Progress(double read) override { row_.part = read; }

    bool Start(std::string_view name, const XmlAttributes& attributes) override {
        if (name == "row")
            BeginRow(attributes);
        else if (name == "c" && inRow_)
            BeginCell(attributes);
        else if (name == "v")
            inValue_ = true;
        else if (name == "f")
            isFormula_ = true;
        text_.Start(name);
        return true;
    }
    bool Text(std::string_view utf8) override {
        if (inValue_)
            text_.Append(utf8, file_);
        else
            text_.Text(utf8, file_);
        return true;
    }
    bool End(std::string_view name) override {
        text_.End(name);
        if (name == "v")
            inValue_ = false;
        else if (name == "c" && inRow_)
            EndCell();
        else if (name == "row") {
            inRow_ = false;
            return sink_(row_);
        }
        return true;
    }

  private:
    void BeginRow(const XmlAttributes& attributes) {
        const std::string_view given = attributes.Of("r");
        const std::int64_t number = WholeNumber(given).value_or(row_.number + 1);
        if (number <= row_.number || number > LastRow)
            file_.Refuse(QString("is damaged: behind row %1 comes row %2")
                             .arg(row_.number)
                             .arg(FromUtf8(given.substr(0, 20))));
        row_.number = number;
        row_.cells.clear();
        inRow_ = true;
        column_ = 0;
        length_ = 0;
    }

    // Where a cell stands is written in letters, or it follows the one before.
    void BeginCell(const XmlAttributes& attributes) {
        std::size_t column = 0;
        for (const char letter : attributes.Of("r")) {
            if (letter < 'A' || letter > 'Z' || column > MostColumns)
                break;
            column = 26 * column + static_cast<std::size_t>(letter - 'A') + 1;
        }
        column_ = column > 0 ? column : column_ + 1;
        if (column_ > MostColumns)
            file_.Refuse(
                QString("row %1 has more than %2 columns").arg(row_.number).arg(MostColumns));
        type_ = attributes.Of("t");
        const auto format = WholeNumber(attributes.Of("s")).value_or(-1);
        isDate_ = format >= 0 && static_cast<std::size_t>(format) < book_.isDate.size() &&
                  book_.isDate[static_cast<std::size_t>(format)];
        isFormula_ = false;
        text_.Clear();
    }

    void EndCell() {
        Cell cell = Made();
        length_ += cell.text.size();
        if (length_ > LongestRow)
            file_.Refuse(QString("row %1 is longer than any table needs").arg(row_.number));
        if (cell.IsEmpty())
            return;
        if (row_.cells.size() < column_)
            row_.cells.resize(column_);
        row_.cells[column_ - 1] = std::move(cell);
    }

    Cell Made() const {
        Cell cell;
        const std::string& value = text_.Bytes();
        if (value.empty()) {
            if (isFormula_)
                cell.fault = "is a formula without a result";
        } else if (type_ == "inlineStr" || type_ == "str" || type_ == "d") {
            cell.text = text_.Taken();
        } else if (type_ == "s") {
            const auto place = WholeNumber(value);
            if (place && *place >= 0 && static_cast<std::size_t>(*place) < book_.texts.size())
                cell.text = book_.texts[static_cast<std::size_t>(*place)];
            else
                cell.fault = "refers to a text that the workbook does not hold";
        } else if (type_ == "e") {
            cell.fault = "holds an error";
            cell.text = text_.Taken();
        } else {
            MakeNumber(cell, value);
        }
        return cell;
    }

    void MakeNumber(Cell& cell, const std::string& value) const {
        bool isNumber = false;
        const double number =
            QByteArray::fromRawData(value.data(), static_cast<qsizetype>(value.size()))
                .trimmed()
                .toDouble(&isNumber);
        if (!isNumber || !std::isfinite(number)) {
            cell.fault = "holds no number, although it should";
            cell.text = FromUtf8(value);
        } else if (isDate_) {
            cell.text = DateText(number, book_.is1904);
            if (cell.text.isEmpty())
                cell.fault = "holds no date, although it should";
        } else {
            cell.number = number;
            cell.text = QString::number(number, 'g', 15);
        }
    }

    const ZipFile& file_;
    const XlsxTable::Book& book_;
    const RowSink& sink_;
    TableRow row_;
    bool inRow_ = false;
    bool inValue_ = false;
    bool isFormula_ = false;
    bool isDate_ = false;
    std::string type_;
    std::size_t column_ = 0; // of the cell, from 1
    qsizetype length_ = 0;   // of the row's texts
    TextOfCell text_;
};

bool IsBlank(const TableRow& row) {
    return std::all_of(row.cells.begin(), row.cells.end(),
                       [](const Cell& cell) { return cell.text.trimmed().isEmpty(); });
}

} // namespace

XlsxTable::XlsxTable(const QString& path, const std::optional<TableShape>& shape)
    : file_(path), book_(std::make_unique<Book>()) {
    if (shape)
        shape_ = *shape;
    Relations root{QString()};
    if (!file_.Has("_rels/.rels"))
        file_.Refuse("is no workbook (.xlsx)");
    ReadXml(file_, "_rels/.rels", MostBytesOfPlan, root);
    const QString workbook = root.Of("officeDocument");
    if (workbook.isEmpty() || !file_.Has(workbook))
        file_.Refuse("is no workbook (.xlsx)");
    Sheets sheets;
    ReadXml(file_, workbook, MostBytesOfPlan, sheets);
    const QString directory = DirectoryOf(workbook);
    Relations parts(directory);
    ReadXml(file_, directory + "_rels/" + workbook.mid(directory.size()) + ".rels", MostBytesOfPlan,
            parts);
    shape_.sheets.clear();
    for (qsizetype i = 0; i < sheets.names.size(); ++i) {
        const Relation sheet = parts.byId.value(sheets.ids[i]);
        if (sheet.type != "worksheet")
            continue; // a chart
        shape_.sheets << sheets.names[i];
        book_->parts << sheet.target;
    }
    if (shape_.sheets.isEmpty())
        file_.Refuse("has no sheet");
    shape_.sheet = std::clamp(shape_.sheet, 0, static_cast<int>(shape_.sheets.size()) - 1);
    shape_.canLackNames = true;
    book_->is1904 = sheets.is1904;
    if (const QString styles = parts.Of("styles"); !styles.isEmpty() && file_.Has(styles)) {
        Formats formats;
        ReadXml(file_, styles, MostBytesOfPlan, formats);
        book_->isDate = std::move(formats.isDate);
    }
    if (const QString texts = parts.Of("sharedStrings"); !texts.isEmpty() && file_.Has(texts)) {
        SharedTexts shared(file_);
        ReadXml(file_, texts, MostBytesOfTexts, shared);
        book_->texts = std::move(shared.texts);
    }
    ReadAll([this](const TableRow& row) {
        if (IsBlank(row))
            return true;
        for (std::size_t i = 0; i < row.cells.size(); ++i)
            columns_.push_back(
                {shape_.hasNames ? row.cells[i].text.simplified() : QString("Column %1").arg(i + 1),
                 {}});
        return false;
    });
    if (columns_.empty())
        file_.Refuse("the sheet \"" + shape_.sheets[shape_.sheet] + "\" is empty");
}

XlsxTable::~XlsxTable() = default;

void XlsxTable::Read(const RowSink& sink) {
    bool isHead = shape_.hasNames;
    ReadAll([&](const TableRow& row) {
        if (isHead && !IsBlank(row)) {
            isHead = false;
            return true;
        }
        return isHead || sink(row);
    });
}

void XlsxTable::ReadAll(const RowSink& sink) {
    SheetReader reader(file_, *book_, sink);
    ReadXml(file_, book_->parts[shape_.sheet], MostBytesOfSheet, reader);
}

} // namespace pollarix::tables
