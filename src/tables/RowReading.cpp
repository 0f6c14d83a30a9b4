#include "tables/RowReading.h"

#include <QDateTime>
#include <QRegularExpression>

#include <algorithm>
#include <array>

#include "document/Kinds.h"
#include "tables/AnswerKeys.h"

namespace pollarix::tables {

using statistics::SurveyQuestion;
using statistics::SurveyVariables;
using statistics::Variable;
using statistics::VariableKind;

namespace {

// The response of an open ended answer, which refers to nothing.
constexpr std::int64_t ResponseOfText = 1;

// What the files with labels write where there is no answer, and what numbers stand for that.
constexpr std::array NoAnswerTexts = {"no answer", "not asked"};
constexpr std::array NoAnswerNumbers = {-1.0, -2.0};
constexpr std::array YesTexts = {"1", "yes", "true", "x", "\u2713", "\u2714"};
constexpr std::array NoTexts = {"0", "no", "false", "-"};

template <std::size_t Count>
bool IsOneOf(const QString& text, const std::array<const char*, Count>& texts) {
    return std::any_of(texts.begin(), texts.end(), [&](const char* known) {
        return text.compare(QString::fromUtf8(known), Qt::CaseInsensitive) == 0;
    });
}

std::optional<QDateTime> DateOf(const QString& text) {
    for (const char* format :
         {"yyyy-M-d H:m:s", "yyyy-M-d H:m:s.z", "yyyy-M-d H:m", "yyyy-M-d", "yyyy/M/d H:m:s",
          "yyyy/M/d H:m", "yyyy/M/d", "d.M.yyyy H:m:s", "d.M.yyyy H:m", "d.M.yyyy"}) {
        const QDateTime when = QDateTime::fromString(text, QLatin1String(format));
        if (when.isValid())
            return when;
    }
    return std::nullopt;
}

} // namespace

void RowReading::Names::Add(const QString& name, std::int64_t id) {
    ids_.insert(IdKey(id), count_);
    const auto add = [this](QHash<QString, std::size_t>& names, const QString& key) {
        const auto found = names.find(key);
        if (found == names.end())
            names.insert(key, count_);
        else
            *found = Several;
    };
    add(exact_, name);
    add(folded_, name.toCaseFolded());
    ++count_;
}

std::optional<std::size_t> RowReading::Names::Find(const QString& text, QString& why) const {
    const QString simple = text.simplified();
    for (const auto& [names, key] :
         {std::pair(&exact_, simple), std::pair(&folded_, simple.toCaseFolded())}) {
        const auto found = names->constFind(key);
        if (found == names->cend())
            continue;
        if (*found == Several) {
            why = "is what several answers of this question are called";
            return std::nullopt;
        }
        return *found;
    }
    if (const auto id = ids_.constFind(simple); id != ids_.cend())
        return *id;
    bool isNumber = false;
    const int number = simple.toInt(&isNumber);
    if (isNumber && number >= 1 && static_cast<std::size_t>(number) <= count_)
        return static_cast<std::size_t>(number) - 1;
    why = isNumber
              ? QString("is no answer of this question, and no number from 1 to %1").arg(count_)
              : QString("is no answer of this question");
    return std::nullopt;
}

RowReading::RowReading(const SurveyVariables& survey, std::vector<Target> targets)
    : survey_(survey) {
    for (const Target& target : targets)
        columns_.push_back(MakeColumn(target));
}

RowReading::Column RowReading::MakeColumn(const Target& target) const {
    Column column;
    column.target = target;
    if (target.kind == Target::Kind::Nothing || target.kind == Target::Kind::Date)
        return column;
    if (target.kind == Target::Kind::Choices) {
        const SurveyQuestion& question = survey_.questions[target.place];
        column.question = question.id;
        column.ids = IdsOf(question.responses, question.variableCount);
        for (std::size_t i = 0; i < question.variableCount; ++i)
            column.names.Add(survey_.variables[question.firstVariable + i].item, column.ids[i]);
        return column;
    }
    const Variable& variable = survey_.variables[target.place];
    const SurveyQuestion& question = survey_.questions[variable.question];
    const std::size_t item = target.place - question.firstVariable;
    column.kind = variable.kind;
    column.question = question.id;
    column.item = variable.item;
    if (variable.kind == VariableKind::Single) {
        column.ids = IdsOf(question.responses, variable.categories.size());
    } else if (variable.kind != VariableKind::Open) {
        column.response = IdsOf(question.responses, question.variableCount)[item];
        if (variable.kind == VariableKind::Point)
            column.ids = IdsOf(question.points[item], variable.categories.size());
    }
    if (variable.kind == VariableKind::Single || variable.kind == VariableKind::Point)
        for (std::size_t i = 0; i < column.ids.size(); ++i)
            column.names.Add(variable.categories[i], column.ids[i]);
    return column;
}

bool RowReading::IsBlank(const TableRow& row) {
    return std::all_of(row.cells.begin(), row.cells.end(), [](const Cell& cell) {
        return cell.fault.isEmpty() && cell.text.trimmed().isEmpty();
    });
}

const ReadAnswers& RowReading::Read(const TableRow& row, const Complain& complain) {
    read_.date.clear();
    read_.answers.clear();
    for (std::size_t i = 0; i < row.cells.size(); ++i) {
        const Cell& cell = row.cells[i];
        if (i >= columns_.size()) {
            if (!cell.IsEmpty())
                complain(columns_.size(), cell, "stands behind the last column that has a name");
            continue;
        }
        if (columns_[i].target.kind == Target::Kind::Nothing)
            continue;
        const QString why = cell.fault.isEmpty() ? TakeCell(columns_[i], cell) : cell.fault;
        if (!why.isEmpty())
            complain(i, cell, why);
    }
    return read_;
}

QString RowReading::TakeCell(const Column& column, const Cell& cell) {
    if (column.target.kind == Target::Kind::Date)
        return TakeDate(cell);
    if (column.target.kind == Target::Kind::Variable && column.kind == VariableKind::Open) {
        if (!cell.text.isEmpty())
            Store(column, ResponseOfText, cell.text);
        return {};
    }
    if (cell.text.trimmed().isEmpty())
        return {};
    if (column.target.kind == Target::Kind::Choices)
        return TakeChoices(column, cell);
    if (column.kind == VariableKind::Tick)
        return TakeTick(column, cell);
    QString why;
    auto place = column.names.Find(cell.text, why);
    // A label that the format has cut, or that was another once, stands for its number.
    if (!place && cell.number && !why.startsWith("is what")) {
        QString whyNumber;
        place = column.names.Find(QString::number(*cell.number, 'g', 15), whyNumber);
    }
    if (place && column.kind == VariableKind::Single)
        Store(column, column.ids[*place]);
    else if (place)
        Store(column, column.response, "", column.ids[*place]);
    else if (IsOneOf(cell.text.simplified(), NoAnswerTexts) ||
             (cell.number && std::find(NoAnswerNumbers.begin(), NoAnswerNumbers.end(),
                                       *cell.number) != NoAnswerNumbers.end()))
        return {};
    else
        return why;
    return {};
}

QString RowReading::TakeDate(const Cell& cell) {
    QString text = cell.text.simplified();
    if (text.isEmpty())
        return {};
    // ISO 8601 as other programs write it. The time stays the one that was written.
    static const QRegularExpression iso(
        R"(^(\d{4}-\d\d-\d\d)T(\d\d:\d\d(:\d\d)?)(\.\d+)?(Z|[-+]\d\d:?\d\d)?$)");
    if (const auto match = iso.match(text); match.hasMatch())
        text = match.captured(1) + ' ' + match.captured(2);
    const auto when = DateOf(text);
    if (!when)
        return "is no date that can be read. Please write it as 2024-12-31 23:59:59";
    if (when->date().year() < 1 || when->date().year() > 9999)
        return "is a date of no year from 1 to 9999";
    read_.date = when->toString("yyyy-MM-dd hh:mm:ss.zzz");
    return {};
}

QString RowReading::TakeTick(const Column& column, const Cell& cell) {
    const QString text = cell.text.simplified();
    const bool isItem = text.compare(column.item, Qt::CaseInsensitive) == 0;
    if (IsOneOf(text, YesTexts) || isItem || (cell.number && *cell.number == 1))
        Store(column, column.response);
    else if (!IsOneOf(text, NoTexts) && !IsOneOf(text, NoAnswerTexts) &&
             !(cell.number && *cell.number <= 0 && *cell.number >= -2))
        return "is neither 1 (chosen) nor 0 (not chosen)";
    return {};
}

// One after the other, between signs that no response holds.
QString RowReading::TakeChoices(const Column& column, const Cell& cell) {
    QString why;
    if (const auto place = column.names.Find(cell.text, why)) {
        Store(column, column.ids[*place]);
        return {};
    }
    static const QRegularExpression outer(R"([;|\r\n]+)");
    static const QRegularExpression inner(R"([,;|\r\n]+)");
    for (const QRegularExpression& separators : {outer, inner}) {
        std::vector<std::size_t> places;
        bool all = true;
        for (const QString& part : cell.text.split(separators, Qt::SkipEmptyParts)) {
            if (part.trimmed().isEmpty())
                continue;
            const auto place = column.names.Find(part, why);
            all &= place.has_value();
            if (place && std::find(places.begin(), places.end(), *place) == places.end())
                places.push_back(*place);
        }
        if (!all)
            continue;
        for (const std::size_t place : places)
            Store(column, column.ids[place]);
        return {};
    }
    return "holds something that is no answer of this question";
}

void RowReading::Store(const Column& column, std::int64_t response, const QString& text,
                       std::optional<std::int64_t> point) {
    read_.answers.push_back({column.question, response, text, point});
}

} // namespace pollarix::tables
