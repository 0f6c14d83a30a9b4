#include "tables/StatisticsTable.h"

#include <QDateTime>

#include <readstat.h>

#include <cmath>
#include <exception>
#include <memory>

#include "platform/base/Failure.h"

namespace pollarix::tables {

namespace {

constexpr qint64 SecondsFrom1582 = -12219379200; // where the days of .sav begin, since 1970
constexpr qint64 SecondsFrom1960 = -315619200;   // where those of .dta begin
constexpr double SecondsOfDay = 86400;
constexpr double MostSeconds = 400e9; // from there on
constexpr std::size_t MostLabels = 1 << 20;

// What a variable's number is: seconds, milliseconds or days since the format's first day, if a
// date at all.
double SecondsInOne(StatisticsTable::Format format, const QString& shown) {
    if (format == StatisticsTable::Format::Dta)
        return shown.startsWith("%tc", Qt::CaseInsensitive)        ? 0.001
               : shown.startsWith("%td") || shown.startsWith("%d") ? SecondsOfDay
                                                                   : 0;
    for (const char* name : {"DATE", "ADATE", "EDATE", "SDATE", "JDATE", "YMDHMS"})
        if (shown.startsWith(QLatin1String(name), Qt::CaseInsensitive))
            return 1;
    return 0;
}

} // namespace

// The library calls back into this for every piece of the file. No exception may pass through it.
struct StatisticsTable::Run {
    StatisticsTable& table;
    const RowSink* sink = nullptr; // none in the pass that reads variables and labels
    TableRow row{};
    std::size_t filled = 0;
    long rows = 0;
    std::size_t labelCount = 0;
    bool stopped = false;
    std::exception_ptr failure{};
    struct Kind {
        double secondsInOne = 0;
        const QHash<double, QString>* labels = nullptr;
    };
    std::vector<Kind> kinds{};

    template <typename Action> int Do(const Action& action) noexcept {
        try {
            action();
        } catch (...) {
            failure = std::current_exception(); // thrown on by Parse
            stopped = true;
        }
        return stopped ? READSTAT_HANDLER_ABORT : READSTAT_HANDLER_OK;
    }

    void TakeVariable(int index, readstat_variable_t* variable, const char* labels) {
        if (static_cast<std::size_t>(index) >= MostColumns)
            throw Failure(failure::InvalidArgument,
                          table.path_ + QString(": has more than %1 variables").arg(MostColumns));
        if (!sink) {
            const auto text = [](const char* utf8) { return QString::fromUtf8(utf8).simplified(); };
            table.columns_.push_back({text(readstat_variable_get_name(variable)),
                                      text(readstat_variable_get_label(variable))});
            return;
        }
        Kind kind;
        kind.secondsInOne =
            SecondsInOne(table.format_, QString::fromUtf8(readstat_variable_get_format(variable)));
        const auto set = table.labels_.constFind(QString::fromUtf8(labels));
        if (labels && set != table.labels_.constEnd())
            kind.labels = &*set;
        kinds.push_back(kind);
    }

    void TakeLabel(const char* set, readstat_value_t value, const char* label) {
        if (sink || ++labelCount > MostLabels || readstat_value_is_tagged_missing(value) ||
            readstat_value_type(value) == READSTAT_TYPE_STRING)
            return;
        table.labels_[QString::fromUtf8(set)].insert(readstat_double_value(value),
                                                     QString::fromUtf8(label).simplified());
    }

    void TakeValue(int observation, readstat_variable_t* variable, readstat_value_t value) {
        const auto index = static_cast<std::size_t>(readstat_variable_get_index(variable));
        if (index >= kinds.size())
            throw Failure(failure::InvalidArgument, table.path_ + ": is damaged");
        if (filled == 0) {
            row.number = observation + 1;
            row.part = rows > 0 ? static_cast<double>(row.number) / static_cast<double>(rows) : 1;
            row.cells.assign(kinds.size(), Cell());
        }
        row.cells[index] = CellOf(kinds[index], variable, value);
        if (++filled < kinds.size())
            return;
        filled = 0;
        stopped = !(*sink)(row);
    }

    Cell CellOf(const Kind& kind, readstat_variable_t* variable, readstat_value_t value) const {
        Cell cell;
        if (readstat_value_is_missing(value, variable))
            return cell;
        if (readstat_value_type(value) == READSTAT_TYPE_STRING) {
            cell.text = QString::fromUtf8(readstat_string_value(value));
            return cell;
        }
        const double number = readstat_double_value(value);
        if (!std::isfinite(number))
            return cell;
        if (kind.secondsInOne > 0) {
            const double seconds = std::floor(number * kind.secondsInOne);
            if (std::abs(seconds) > MostSeconds) {
                cell.fault = "holds no date, although it should";
                return cell;
            }
            const qint64 from = table.format_ == Format::Sav ? SecondsFrom1582 : SecondsFrom1960;
            cell.text = QDateTime::fromSecsSinceEpoch(from + static_cast<qint64>(seconds), Qt::UTC)
                            .toString("yyyy-MM-dd hh:mm:ss");
            return cell;
        }
        cell.number = number;
        if (kind.labels)
            cell.text = kind.labels->value(number);
        if (cell.text.isEmpty())
            cell.text = QString::number(number, 'g', 15);
        return cell;
    }
};

namespace {

int OnMetadata(readstat_metadata_t* metadata, void* data) {
    static_cast<StatisticsTable::Run*>(data)->rows = readstat_get_row_count(metadata);
    return READSTAT_HANDLER_OK;
}
int OnVariable(int index, readstat_variable_t* variable, const char* labels, void* data) {
    auto& run = *static_cast<StatisticsTable::Run*>(data);
    return run.Do([&] { run.TakeVariable(index, variable, labels); });
}
int OnLabel(const char* set, readstat_value_t value, const char* label, void* data) {
    auto& run = *static_cast<StatisticsTable::Run*>(data);
    return run.Do([&] { run.TakeLabel(set, value, label); });
}
int OnValue(int observation, readstat_variable_t* variable, readstat_value_t value, void* data) {
    auto& run = *static_cast<StatisticsTable::Run*>(data);
    return run.Do([&] { run.TakeValue(observation, variable, value); });
}

} // namespace

StatisticsTable::StatisticsTable(const QString& path, Format format)
    : path_(path), format_(format) {
    Run run{*this};
    Parse(run);
    if (columns_.empty())
        throw Failure(failure::InvalidArgument, path + ": has no variables");
}

void StatisticsTable::Read(const RowSink& sink) {
    Run run{*this, &sink};
    Parse(run);
    if (!run.stopped && run.rows > run.row.number)
        throw Failure(
            failure::InvalidArgument,
            path_ + QString(": is cut off behind row %1 of %2").arg(run.row.number).arg(run.rows));
}

void StatisticsTable::Parse(Run& run) const {
    const std::unique_ptr<readstat_parser_t, decltype(&readstat_parser_free)> parser(
        readstat_parser_init(), readstat_parser_free);
    if (!parser)
        throw std::bad_alloc();
    readstat_set_metadata_handler(parser.get(), OnMetadata);
    readstat_set_variable_handler(parser.get(), OnVariable);
    readstat_set_value_label_handler(parser.get(), OnLabel);
    if (run.sink)
        readstat_set_value_handler(parser.get(), OnValue);
    const auto parse = format_ == Format::Sav ? readstat_parse_sav : readstat_parse_dta;
    const readstat_error_t error = parse(parser.get(), path_.toUtf8().constData(), &run);
    if (run.failure)
        std::rethrow_exception(run.failure);
    if (error != READSTAT_OK && !run.stopped)
        throw Failure(failure::InvalidArgument,
                      path_ +
                          (run.row.number > 0 ? QString(", behind row %1: ").arg(run.row.number)
                                              : QString(": ")) +
                          "is damaged or cut off (" +
                          QString::fromUtf8(readstat_error_message(error)) + ')');
}

} // namespace pollarix::tables
