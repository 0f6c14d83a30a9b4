#include <QRegularExpression>
#include <QTemporaryDir>

#include <xlsxwriter.h>

#include <algorithm>
#include <array>

#include "labelled/Codebook.h"
#include "labelled/LabelledFile.h"
#include "platform/base/Failure.h"
#include "platform/files/Files.h"

namespace pollarix::labelled {

namespace {

constexpr std::int64_t MostRows = LXW_ROW_MAX - 1; // beside the head
constexpr std::size_t MostColumns = LXW_COL_MAX;
constexpr qsizetype MostCharacters = 32767;
constexpr double DaysTo1970 = 25569; // from where the days of a sheet begin
constexpr double SecondsOfDay = 86400;
constexpr qint64 BlockSize = 1 << 20;

// A sheet is written from top to bottom, each row from left to right: what is above is on disk.
class Sheet {
  public:
    Sheet(lxw_workbook* book, const char* name, const std::array<lxw_format*, 2>& formats)
        : sheet_(workbook_add_worksheet(book, name)), heading_(formats[0]), date_(formats[1]) {
        if (!sheet_)
            throw std::bad_alloc();
        worksheet_freeze_panes(sheet_, 1, 0);
    }

    void Head(std::initializer_list<const char*> titles) {
        for (const char* title : titles)
            Heading(QString::fromUtf8(title));
        NextRow();
    }
    void Heading(const QString& text) { Put(text, heading_); }
    void Text(const QString& text) { Put(text, nullptr); }
    void Number(double value) {
        Check(worksheet_write_number(sheet_, row_, column_++, value, nullptr));
    }
    void Date(double seconds) {
        Check(worksheet_write_number(sheet_, row_, column_++, seconds / SecondsOfDay + DaysTo1970,
                                     date_));
    }
    void Nothing() { ++column_; }
    void NextRow() {
        ++row_;
        column_ = 0;
    }
    void Widths(std::initializer_list<double> widths) {
        lxw_col_t column = 0;
        for (const double width : widths) {
            worksheet_set_column(sheet_, column, column, width, nullptr);
            ++column;
        }
    }

  private:
    // Always as a string cell: what begins with "=" is no formula.
    void Put(const QString& text, lxw_format* format) {
        const lxw_col_t column = column_++;
        if (!text.isEmpty())
            Check(worksheet_write_string(
                sheet_, row_, column, Escaped(WholeCharacters(text)).toUtf8().constData(), format));
    }
    // A text that looks like the sign for a character is no such sign.
    static QString Escaped(QString text) {
        static const QRegularExpression sign("_(x[0-9A-Fa-f]{4}_)");
        return text.contains("_x") ? text.replace(sign, R"(_x005F_\1)") : text;
    }
    static QString WholeCharacters(const QString& text) {
        if (text.size() <= MostCharacters)
            return text;
        const bool split = text[MostCharacters - 1].isHighSurrogate();
        return text.left(MostCharacters - (split ? 1 : 0));
    }
    static void Check(lxw_error error) {
        if (error != LXW_NO_ERROR)
            throw Failure(failure::InvalidArgument, QString::fromUtf8(lxw_strerror(error)));
    }

    lxw_worksheet* sheet_;
    lxw_format* heading_;
    lxw_format* date_;
    lxw_row_t row_ = 0;
    lxw_col_t column_ = 0;
};

struct CountedColumn {
    std::vector<double> values; // by place in Column::values
    double leftEmpty = 0;
    double notAsked = 0;
    double other = 0; // texts and typed numbers
};

class Counts {
  public:
    explicit Counts(const Codebook& codebook) : columns_(codebook.columns.size()) {
        for (std::size_t i = 0; i < columns_.size(); ++i)
            columns_[i].values.resize(codebook.columns[i].values.size());
    }
    void Add(const Codebook& codebook, const std::vector<Cell>& cells) {
        const double weight =
            codebook.columns.back().kind == Column::Kind::Weight ? cells.back().number : 1;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            CountedColumn& counted = columns_[i];
            if (cells[i].kind == Cell::Kind::LeftEmpty)
                counted.leftEmpty += weight;
            else if (cells[i].kind == Cell::Kind::NotAsked)
                counted.notAsked += weight;
            else if (codebook.columns[i].kind == Column::Kind::Codes)
                counted.values[codebook.columns[i].PlaceOf(cells[i].number)] += weight;
            else
                counted.other += weight;
        }
    }
    const CountedColumn& Of(std::size_t column) const { return columns_[column]; }

  private:
    std::vector<CountedColumn> columns_;
};

void WriteRow(Sheet& texts, Sheet& codes, const Codebook& codebook,
              const std::vector<Cell>& cells) {
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const Column& column = codebook.columns[i];
        const Cell& cell = cells[i];
        if (cell.kind == Cell::Kind::Text) {
            texts.Text(cell.text);
            codes.Text(cell.text);
        } else if (cell.kind != Cell::Kind::Number) {
            texts.Nothing();
            if (column.HasMissing())
                codes.Number(cell.kind == Cell::Kind::NotAsked ? column.notAsked
                                                               : column.leftEmpty);
            else
                codes.Nothing();
        } else if (column.kind == Column::Kind::Date) {
            texts.Date(cell.number);
            codes.Date(cell.number);
        } else {
            if (column.kind == Column::Kind::Codes)
                texts.Text(column.values[column.PlaceOf(cell.number)].second);
            else
                texts.Number(cell.number);
            codes.Number(cell.number);
        }
    }
    texts.NextRow();
    codes.NextRow();
}

void WriteCodebookSheet(Sheet& sheet, const Codebook& codebook) {
    sheet.Widths({10, 60, 10, 10, 40});
    sheet.Head({"Variable", "Question", "Level", "Value", "Meaning"});
    for (const Column& column : codebook.columns) {
        const auto row = [&](const auto& value, const QString& meaning) {
            sheet.Text(column.name);
            sheet.Text(column.label);
            sheet.Text(column.LevelName());
            if (value)
                sheet.Number(*value);
            else
                sheet.Nothing();
            sheet.Text(meaning);
            sheet.NextRow();
        };
        if (!column.HasMissing()) {
            row(std::optional<double>(), "");
            continue;
        }
        for (const auto& [value, label] : column.values)
            row(std::optional<double>(value), label);
        row(std::optional<double>(column.leftEmpty), LeftEmptyLabel);
        row(std::optional<double>(column.notAsked), NotAskedLabel);
    }
}

void WriteFrequencies(Sheet& sheet, const Codebook& codebook, const Counts& counts) {
    sheet.Widths({10, 60, 40, 12, 16, 20});
    sheet.Head({"Variable", "Question", "Answer", "Count", "Percent of all", "Percent of answers"});
    for (std::size_t i = 0; i < codebook.columns.size(); ++i) {
        const Column& column = codebook.columns[i];
        if (column.kind != Column::Kind::Codes)
            continue;
        const CountedColumn& counted = counts.Of(i);
        double answered = 0;
        for (const double count : counted.values)
            answered += count;
        const double all = answered + counted.leftEmpty + counted.notAsked;
        const auto row = [&](const QString& answer, double count, bool isAnswer) {
            sheet.Text(column.name);
            sheet.Text(column.label);
            sheet.Text(answer);
            sheet.Number(count);
            sheet.Number(all > 0 ? 100 * count / all : 0);
            if (isAnswer)
                sheet.Number(answered > 0 ? 100 * count / answered : 0);
            sheet.NextRow();
        };
        for (std::size_t place = 0; place < column.values.size(); ++place)
            row(column.values[place].second, counted.values[place], true);
        row(LeftEmptyLabel, counted.leftEmpty, false);
        row(NotAskedLabel, counted.notAsked, false);
    }
}

// Closed in any case: the library holds its memory and temporary files until then.
class Book {
  public:
    explicit Book(const QString& path, const QString& directory)
        : path_(path.toUtf8()), directory_(directory.toUtf8()) {
        lxw_workbook_options options = {};
        options.constant_memory = LXW_TRUE;
        options.tmpdir = directory_.data();
        options.use_zip64 = LXW_TRUE;
        book_ = workbook_new_opt(path_.constData(), &options);
        if (!book_)
            throw std::bad_alloc();
    }
    ~Book() {
        if (book_)
            workbook_close(book_);
    }
    Book(const Book&) = delete;
    Book& operator=(const Book&) = delete;

    lxw_workbook* Get() const { return book_; }
    void Close() {
        const lxw_error error = workbook_close(book_);
        book_ = nullptr;
        if (error != LXW_NO_ERROR)
            throw Failure(failure::PathOrFileAccess, QString::fromUtf8(lxw_strerror(error)));
    }

  private:
    QByteArray path_;
    QByteArray directory_;
    lxw_workbook* book_ = nullptr;
};

void FillBook(lxw_workbook* book, Connection& survey, const Sample& sample, const LoadStep& step) {
    const Codebook codebook(survey, sample.IsWeighted());
    const std::int64_t total = survey.Count("SELECT count(*) FROM respondent");
    if (total > MostRows || codebook.columns.size() > MostColumns)
        throw Failure(failure::InvalidArgument,
                      QString("A sheet has room for %1 respondents and %2 columns. Please choose "
                              "another type of file.")
                          .arg(MostRows)
                          .arg(MostColumns));
    lxw_format* heading = workbook_add_format(book);
    format_set_bold(heading);
    lxw_format* date = workbook_add_format(book);
    format_set_num_format(date, "yyyy-mm-dd hh:mm:ss");
    const std::array<lxw_format*, 2> formats = {heading, date};
    Sheet texts(book, "Answers", formats);
    Sheet codes(book, "Codes", formats);
    for (Sheet* sheet : {&texts, &codes})
        sheet->Widths({10, 20, 15});
    for (const Column& column : codebook.columns) {
        texts.Heading(column.label);
        codes.Heading(column.name);
    }
    texts.NextRow();
    codes.NextRow();
    Counts counts(codebook);
    for (Rows rows(survey, codebook, sample); rows.Next();) {
        if (step)
            step(rows.Done(), total);
        WriteRow(texts, codes, codebook, rows.Cells());
        counts.Add(codebook, rows.Cells());
    }
    Sheet explained(book, "Codebook", formats);
    WriteCodebookSheet(explained, codebook);
    Sheet frequencies(book, "Frequencies", formats);
    WriteFrequencies(frequencies, codebook, counts);
}

} // namespace

void WriteXlsx(Connection& survey, const QString& path, const Sample& sample,
               const LoadStep& step) {
    // The library writes a file of its own; what the user has named is replaced when that is whole.
    WholeFile target(path);
    const QTemporaryDir directory;
    if (!directory.isValid())
        throw Failure(failure::PathOrFileAccess, directory.errorString());
    const QString made = directory.filePath("book.xlsx");
    {
        Book book(made, directory.path());
        FillBook(book.Get(), survey, sample, step);
        book.Close();
    }
    QFile file(made);
    if (!file.open(QIODevice::ReadOnly))
        throw Failure(failure::PathOrFileAccess, made + ": " + file.errorString());
    while (!file.atEnd()) {
        const QByteArray block = file.read(BlockSize);
        if (block.isEmpty())
            throw Failure(failure::PathOrFileAccess, made + ": " + file.errorString());
        target.Write(block);
    }
    target.Finish();
}

} // namespace pollarix::labelled
