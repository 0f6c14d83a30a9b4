#include <readstat.h>

#include <exception>
#include <memory>

#include "labelled/Codebook.h"
#include "labelled/LabelledFile.h"
#include "platform/base/Failure.h"
#include "platform/files/Files.h"

namespace pollarix::labelled {

namespace {

constexpr double SecondsFrom1582 = 12219379200; // to 1970, where the days of .sav begin
constexpr double SecondsFrom1960 = 315619200;   // to 1970, where those of .dta begin
constexpr char LeftEmptyTag = 'a';
constexpr char NotAskedTag = 'b';

enum class Format { Sav, Dta };

struct Limits {
    std::size_t label;      // bytes of a variable's label
    std::size_t valueLabel; // bytes of a value's label
    std::size_t text;       // bytes of a text
};
constexpr Limits LimitsOf(Format format) {
    return format == Format::Sav ? Limits{252, 120, 32767} : Limits{80, 1000, 2045};
}

// The library calls back into this class for every piece of the file.
class Writer {
  public:
    Writer(Format format, const QString& path)
        : format_(format), limits_(LimitsOf(format)), path_(path), file_(path),
          writer_(readstat_writer_init(), readstat_writer_free) {
        if (!writer_)
            throw std::bad_alloc();
        Check(readstat_set_data_writer(writer_.get(), Receive));
    }

    void Write(Connection& survey, const Sample& sample, const LoadStep& step) {
        const Codebook codebook(survey, sample.IsWeighted());
        for (const Column& column : codebook.columns)
            AddVariable(column);
        const std::int64_t total = survey.Count("SELECT count(*) FROM respondent");
        const auto rows = static_cast<long>(
            sample.chosen.empty() ? total
                                  : std::count(sample.chosen.begin(), sample.chosen.end(), 1));
        if (format_ == Format::Sav) {
            Check(readstat_writer_set_compression(writer_.get(), READSTAT_COMPRESS_ROWS));
            if (sample.IsWeighted())
                Check(readstat_writer_set_fweight_variable(writer_.get(), variables_.back()));
        }
        Check(format_ == Format::Sav ? readstat_begin_writing_sav(writer_.get(), this, rows)
                                     : readstat_begin_writing_dta(writer_.get(), this, rows));
        Check(readstat_validate_metadata(writer_.get()));
        for (Rows reader(survey, codebook, sample); reader.Next();) {
            if (step)
                step(reader.Done(), total);
            Check(readstat_begin_row(writer_.get()));
            for (std::size_t i = 0; i < variables_.size(); ++i)
                Insert(codebook.columns[i], variables_[i], reader.Cells()[i]);
            Check(readstat_end_row(writer_.get()));
        }
        Check(readstat_end_writing(writer_.get()));
        file_.Finish();
    }

  private:
    static ssize_t Receive(const void* data, size_t length, void* self) {
        return static_cast<Writer*>(self)->Append(data, length);
    }
    // No exception may pass through the library.
    ssize_t Append(const void* data, size_t length) noexcept {
        try {
            file_.Write(
                QByteArrayView(static_cast<const char*>(data), static_cast<qsizetype>(length)));
            return static_cast<ssize_t>(length);
        } catch (...) {
            failure_ = std::current_exception(); // thrown on by Check
            return -1;
        }
    }

    void Check(readstat_error_t error) const {
        if (failure_)
            std::rethrow_exception(failure_);
        if (error != READSTAT_OK)
            throw Failure(failure::InvalidArgument,
                          path_ + ": " + QString::fromUtf8(readstat_error_message(error)));
    }

    QByteArray Label(const QString& text, std::size_t most) const { return Utf8UpTo(text, most); }

    void AddVariable(const Column& column) {
        const bool isSav = format_ == Format::Sav;
        const bool isText = !column.IsNumeric();
        readstat_type_t type = READSTAT_TYPE_DOUBLE;
        if (isText)
            type = !isSav && column.longest > limits_.text ? READSTAT_TYPE_STRING_REF
                                                           : READSTAT_TYPE_STRING;
        else if (!isSav && column.kind == Column::Kind::Codes)
            type = READSTAT_TYPE_INT32;
        readstat_variable_t* variable = readstat_add_variable(
            writer_.get(), column.name.toLatin1().constData(), type,
            type == READSTAT_TYPE_STRING ? std::min(column.longest, limits_.text) : 0);
        readstat_variable_set_label(variable, Label(column.label, limits_.label).constData());
        readstat_variable_set_measure(variable, MeasureOf(column.level));
        if (column.kind == Column::Kind::Date)
            readstat_variable_set_format(variable, isSav ? "DATETIME20" : "%tc");
        else if (isSav && (column.kind == Column::Kind::Codes || column.kind == Column::Kind::Id))
            readstat_variable_set_format(variable, "F12.0");
        if (column.HasMissing())
            AddLabels(column, variable);
        variables_.push_back(variable);
    }

    static readstat_measure_t MeasureOf(statistics::Level level) {
        switch (level) {
        case statistics::Level::Nominal:
            return READSTAT_MEASURE_NOMINAL;
        case statistics::Level::Ordinal:
            return READSTAT_MEASURE_ORDINAL;
        default:
            return READSTAT_MEASURE_SCALE;
        }
    }

    // In .dta only whole numbers can have labels, so typed ones have none there.
    void AddLabels(const Column& column, readstat_variable_t* variable) {
        const bool isSav = format_ == Format::Sav;
        if (!isSav && column.kind == Column::Kind::Number)
            return;
        readstat_label_set_t* labels = readstat_add_label_set(
            writer_.get(), isSav ? READSTAT_TYPE_DOUBLE : READSTAT_TYPE_INT32,
            (column.name + "_labels").toLatin1().constData());
        for (const auto& [value, text] : column.values) {
            const QByteArray label = Label(text, limits_.valueLabel);
            if (isSav)
                readstat_label_double_value(labels, value, label.constData());
            else
                readstat_label_int32_value(labels, value, label.constData());
        }
        if (isSav) {
            readstat_label_double_value(labels, column.leftEmpty, LeftEmptyLabel);
            readstat_label_double_value(labels, column.notAsked, NotAskedLabel);
            Check(readstat_variable_add_missing_double_value(variable, column.leftEmpty));
            Check(readstat_variable_add_missing_double_value(variable, column.notAsked));
        } else {
            readstat_label_tagged_value(labels, LeftEmptyTag, LeftEmptyLabel);
            readstat_label_tagged_value(labels, NotAskedTag, NotAskedLabel);
        }
        readstat_variable_set_label_set(variable, labels);
    }

    void Insert(const Column& column, const readstat_variable_t* variable, const Cell& cell) {
        if (!column.IsNumeric())
            InsertText(variable, cell);
        else if (cell.kind == Cell::Kind::Number)
            InsertNumber(column, variable, cell.number);
        else if (!column.HasMissing())
            Check(readstat_insert_missing_value(writer_.get(), variable));
        else if (format_ == Format::Sav)
            Check(readstat_insert_double_value(
                writer_.get(), variable,
                cell.kind == Cell::Kind::NotAsked ? column.notAsked : column.leftEmpty));
        else
            Check(readstat_insert_tagged_missing_value(
                writer_.get(), variable,
                cell.kind == Cell::Kind::NotAsked ? NotAskedTag : LeftEmptyTag));
    }

    void InsertNumber(const Column& column, const readstat_variable_t* variable, double number) {
        if (column.kind == Column::Kind::Date)
            number = format_ == Format::Sav ? number + SecondsFrom1582
                                            : (number + SecondsFrom1960) * 1000;
        Check(variable->type == READSTAT_TYPE_INT32
                  ? readstat_insert_int32_value(writer_.get(), variable, static_cast<int>(number))
                  : readstat_insert_double_value(writer_.get(), variable, number));
    }

    void InsertText(const readstat_variable_t* variable, const Cell& cell) {
        if (variable->type == READSTAT_TYPE_STRING_REF) {
            Check(readstat_insert_string_ref(
                writer_.get(), variable,
                readstat_add_string_ref(writer_.get(), cell.text.toUtf8().constData())));
            return;
        }
        const QByteArray text = Utf8UpTo(cell.text, limits_.text);
        Check(readstat_insert_string_value(writer_.get(), variable, text.constData()));
    }

    const Format format_;
    const Limits limits_;
    const QString path_;
    WholeFile file_;
    const std::unique_ptr<readstat_writer_t, decltype(&readstat_writer_free)> writer_;
    std::vector<readstat_variable_t*> variables_;
    std::exception_ptr failure_;
};

} // namespace

void WriteSav(Connection& survey, const QString& path, const Sample& sample, const LoadStep& step) {
    Writer(Format::Sav, path).Write(survey, sample, step);
}

void WriteDta(Connection& survey, const QString& path, const Sample& sample, const LoadStep& step) {
    Writer(Format::Dta, path).Write(survey, sample, step);
}

} // namespace pollarix::labelled
