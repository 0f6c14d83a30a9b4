#include "labelled/Codebook.h"

#include <algorithm>
#include <cmath>

#include "platform/base/Failure.h"
#include "platform/base/Formats.h"
#include "statistics/Answers.h"

namespace pollarix::labelled {

using statistics::SurveyVariables;
using statistics::Variable;
using statistics::VariableKind;

namespace {

// What the answers to an open question have in common.
struct Typed {
    std::size_t longest = 1;
    bool allNumbers = true;
    bool hasAnswer = false;
    double smallest = 0;
};

QHash<std::int64_t, Typed> ReadTyped(Connection& survey, const SurveyVariables& variables) {
    QHash<std::int64_t, Typed> typed;
    for (const Variable& variable : variables.variables)
        if (variable.kind == VariableKind::Open)
            typed.insert(variables.questions[variable.question].id, {});
    if (typed.isEmpty())
        return typed;
    for (Recordset rows =
             survey.Execute("SELECT QuestionID, SimpleResponse FROM respondent_responses "
                            "WHERE SimpleResponse <> '' AND QuestionID IN (SELECT id FROM question "
                            "WHERE qtype=0)");
         !rows.AtEnd(); rows.MoveNext()) {
        const auto found = typed.find(rows.Integer(0));
        if (found == typed.end())
            continue;
        const QString text = rows.Text(1);
        found->longest = std::max(found->longest, static_cast<std::size_t>(text.toUtf8().size()));
        found->hasAnswer = true;
        const auto number = found->allNumbers ? statistics::NumberIn(text) : std::nullopt;
        found->allNumbers = number.has_value();
        found->smallest = std::min(found->smallest, number.value_or(0));
    }
    return typed;
}

// -1 and -2 unless there are negative answers: then the first pair that is below all of them.
void ChooseMissing(Column& column, double smallest) {
    for (const int low : {-1, -91, -991, -9991, -99991, -999991, -9999991, -99999991, -999999991}) {
        column.leftEmpty = low;
        column.notAsked = low - 1;
        if (low < smallest)
            return;
    }
    column.kind = Column::Kind::Text; // no number is left to stand for nothing
}

// Dates that no calendar knows are none.
std::optional<double> SecondsOf(const QString& stored) {
    try {
        return std::floor(static_cast<double>(StoredDate(stored.toUtf8()).toMSecsSinceEpoch()) /
                          1000);
    } catch (const Failure&) {
        return std::nullopt;
    }
}

Column MakeColumn(Column::Kind kind, const QString& name, const QString& label,
                  statistics::Level level, std::size_t variable = 0) {
    Column column;
    column.kind = kind;
    column.name = name;
    column.label = label;
    column.level = level;
    column.variable = variable;
    return column;
}

} // namespace

const char* Column::LevelName() const {
    if (!IsNumeric())
        return "text";
    return level == statistics::Level::Nominal   ? "nominal"
           : level == statistics::Level::Ordinal ? "ordinal"
                                                 : "scale";
}

Codebook::Codebook(Connection& connection, bool weighted) : survey(connection) {
    using statistics::Level;
    columns.push_back(MakeColumn(Column::Kind::Id, "id", "Respondent", Level::Nominal));
    columns.push_back(
        MakeColumn(Column::Kind::Date, "date", "Submitted", Level::Scale, SurveyVariables::Date));
    columns.push_back(MakeColumn(Column::Kind::Text, "source", "Source", Level::Nominal,
                                 SurveyVariables::Source));
    columns.back().longest = static_cast<std::size_t>(std::max<std::int64_t>(
        1,
        connection.Count("SELECT ifnull(max(length(CAST(source AS BLOB))), 0) FROM respondent")));
    const QHash<std::int64_t, Typed> typed = ReadTyped(connection, survey);
    for (std::size_t i = SurveyVariables::Source + 1; i < survey.variables.size(); ++i) {
        const Variable& variable = survey.variables[i];
        Column column =
            MakeColumn(Column::Kind::Codes, variable.name, variable.label, variable.level, i);
        if (variable.kind == VariableKind::Open) {
            const Typed& answers = *typed.constFind(survey.questions[variable.question].id);
            column.kind = Column::Kind::Text;
            column.longest = answers.longest;
            if (answers.hasAnswer && answers.allNumbers) {
                column.kind = Column::Kind::Number;
                column.level = Level::Scale;
                ChooseMissing(column, answers.smallest);
            }
        }
        for (std::size_t code = 0; code < variable.categories.size(); ++code)
            column.values.emplace_back(static_cast<int>(variable.values[code]),
                                       variable.categories[code]);
        columns.push_back(std::move(column));
    }
    if (weighted)
        columns.push_back(MakeColumn(Column::Kind::Weight, "weight", "Weight", Level::Scale));
}

Rows::Rows(Connection& survey, const Codebook& codebook, const statistics::Sample& sample)
    : codebook_(codebook), sample_(sample), reader_(survey, codebook.survey),
      cells_(codebook.columns.size()) {}

bool Rows::Next() {
    do {
        if (!reader_.Next())
            return false;
        ++read_;
    } while (!sample_.Has(static_cast<std::size_t>(read_ - 1)));
    for (std::size_t i = 0; i < cells_.size(); ++i)
        cells_[i] = CellOf(codebook_.columns[i]);
    return true;
}

Cell Rows::CellOf(const Column& column) const {
    Cell cell;
    const auto number = [&cell](double value) {
        cell.kind = Cell::Kind::Number;
        cell.number = value;
    };
    if (column.kind == Column::Kind::Id) {
        number(static_cast<double>(reader_.Id()));
    } else if (column.kind == Column::Kind::Weight) {
        number(sample_.WeightOf(static_cast<std::size_t>(read_ - 1)));
    } else if (column.kind == Column::Kind::Date) {
        if (const auto seconds = SecondsOf(reader_.SubmittedDate().value_or(QString())))
            number(*seconds);
    } else if (column.variable == SurveyVariables::Source) {
        if (reader_.Source()) {
            cell.kind = Cell::Kind::Text;
            cell.text = *reader_.Source();
        }
    } else {
        const statistics::Code code = reader_.Codes()[column.variable];
        if (!statistics::IsAnswer(code)) {
            cell.kind = code == statistics::NotAsked ? Cell::Kind::NotAsked : Cell::Kind::LeftEmpty;
        } else if (column.kind == Column::Kind::Codes) {
            number(column.values[code].first);
        } else if (column.kind == Column::Kind::Number) {
            if (const auto typed = statistics::NumberIn(reader_.TextOf(column.variable)))
                number(*typed);
        } else {
            cell.kind = Cell::Kind::Text;
            cell.text = reader_.TextOf(column.variable);
        }
    }
    return cell;
}

QByteArray Utf8UpTo(const QString& text, std::size_t bytes) {
    QByteArray utf8 = text.toUtf8();
    auto end = static_cast<qsizetype>(bytes);
    if (utf8.size() <= end)
        return utf8;
    while (end > 0 && (static_cast<unsigned char>(utf8[end]) & 0xC0U) == 0x80U)
        --end;
    return utf8.left(end);
}

} // namespace pollarix::labelled
