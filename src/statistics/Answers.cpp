#include "statistics/Answers.h"

#include <QDate>
#include <QRegularExpression>

#include <algorithm>
#include <map>
#include <numeric>
#include <unordered_map>

#include "platform/base/Failure.h"

namespace pollarix::statistics {

namespace {

// Gives each distinct value a code as it comes; sorted at the end.
template <typename Value, typename Map> class Dictionary {
  public:
    Code CodeOf(const Value& value) {
        const auto [place, isNew] = codes_.try_emplace(value, static_cast<Code>(codes_.size()));
        return place->second;
    }
    // The values in order, and what each code becomes by that.
    std::vector<Value> Sorted(std::vector<Code>& recoding) const {
        std::vector<std::pair<Value, Code>> pairs(codes_.begin(), codes_.end());
        std::sort(pairs.begin(), pairs.end());
        recoding.resize(pairs.size());
        std::vector<Value> values;
        values.reserve(pairs.size());
        for (const auto& [value, code] : pairs) {
            recoding[code] = static_cast<Code>(values.size());
            values.push_back(value);
        }
        return values;
    }

  private:
    Map codes_;
};

using Numbers = Dictionary<double, std::unordered_map<double, Code>>;
using Texts = Dictionary<QString, std::map<QString, Code>>;

// Dates that no calendar knows have no day.
std::optional<double> DayOf(const std::optional<QString>& stored) {
    const QDate day = QDate::fromString(stored.value_or(QString()).left(10), Qt::ISODate);
    if (!day.isValid())
        return std::nullopt;
    return static_cast<double>(day.toJulianDay());
}

} // namespace

Column::Column(std::size_t codes) : wide_(codes > 250) {}

void Column::Append(Code code) {
    if (wide_)
        four_.push_back(code);
    else
        one_.push_back(static_cast<std::uint8_t>(code));
}

Column Column::Recoded(const std::vector<Code>& codes, std::size_t count) const {
    Column column(count);
    if (column.wide_)
        column.four_.reserve(Size());
    else
        column.one_.reserve(Size());
    for (std::size_t row = 0; row < Size(); ++row) {
        const Code code = (*this)[row];
        column.Append(IsAnswer(code) ? codes[code] : code);
    }
    return column;
}

Answers::Answers(Connection& survey, const LoadStep& step) : survey_(survey) {
    const std::int64_t total = survey.Count("SELECT count(*) FROM respondent");
    std::vector<Variable>& variables = survey_.variables;
    std::unordered_map<std::size_t, Numbers> numbers;
    std::vector<char> allNumbers(variables.size(), 1);
    Texts sources;
    const auto isOpen = [&](std::size_t i) { return variables[i].kind == VariableKind::Open; };

    // What is only known at the end has four bytes meanwhile.
    constexpr std::size_t Unknown = 1U << 31U;
    for (std::size_t i = 0; i < variables.size(); ++i)
        columns_.emplace_back(
            isOpen(i) || variables[i].question < 0 ? Unknown : variables[i].categories.size());
    for (RespondentReader reader(survey, survey_); reader.Next(); ++respondents_) {
        if (step)
            step(static_cast<std::int64_t>(respondents_), total);
        ids_.push_back(reader.Id());
        const std::optional<double> day = DayOf(reader.SubmittedDate());
        columns_[SurveyVariables::Date].Append(day ? numbers[SurveyVariables::Date].CodeOf(*day)
                                                   : LeftEmpty);
        columns_[SurveyVariables::Source].Append(reader.Source() ? sources.CodeOf(*reader.Source())
                                                                 : LeftEmpty);
        for (std::size_t i = SurveyVariables::Source + 1; i < variables.size(); ++i) {
            Code code = reader.Codes()[i];
            if (isOpen(i) && IsAnswer(code)) {
                const std::optional<double> number = NumberIn(reader.TextOf(i));
                code = number ? numbers[i].CodeOf(*number) : NoNumber;
                allNumbers[i] &= number.has_value();
            }
            columns_[i].Append(code);
        }
    }

    std::vector<Code> recoding;
    variables[SurveyVariables::Source].categories = sources.Sorted(recoding);
    const std::size_t sourceCount = recoding.size();
    columns_[SurveyVariables::Source] =
        columns_[SurveyVariables::Source].Recoded(recoding, sourceCount);
    variables[SurveyVariables::Source].values.resize(sourceCount);
    std::iota(variables[SurveyVariables::Source].values.begin(),
              variables[SurveyVariables::Source].values.end(), 1.0);
    for (std::size_t i = 0; i < variables.size(); ++i) {
        Variable& variable = variables[i];
        if (!isOpen(i) && i != SurveyVariables::Date)
            continue;
        variable.values = numbers[i].Sorted(recoding);
        columns_[i] = columns_[i].Recoded(recoding, recoding.size());
        for (const double value : variable.values)
            variable.categories.push_back(
                isOpen(i) ? QString::number(value, 'g', 15)
                          : QDate::fromJulianDay(static_cast<qint64>(value)).toString(Qt::ISODate));
        if (isOpen(i) && !variable.values.empty() && allNumbers[i])
            variable.level = Level::Scale;
    }
}

std::size_t Answers::Bytes() const {
    std::size_t bytes = ids_.capacity() * sizeof(ids_.front());
    for (const Column& column : columns_)
        bytes += column.Bytes();
    return bytes;
}

std::optional<double> NumberIn(const QString& text) {
    static const QRegularExpression number("^[+-]?(\\d+([.,]\\d*)?|[.,]\\d+)([eE][+-]?\\d{1,3})?$");
    static const QRegularExpression perhapsThousands("^[+-]?(?!0+,)\\d+,\\d{3}$");
    QString plain = text.trimmed();
    // Most typed answers are no numbers and need no closer look.
    if (plain.isEmpty() || plain.size() > 40 || plain[plain.size() - 1].unicode() > '9')
        return std::nullopt;
    if (!number.match(plain).hasMatch() || perhapsThousands.match(plain).hasMatch())
        return std::nullopt;
    bool fits = false;
    const double value = plain.replace(',', '.').toDouble(&fits);
    if (!fits || value - value != 0) // beyond what a number can hold
        return std::nullopt;
    return value == 0 ? 0 : value; // -0 is no other number than 0
}

} // namespace pollarix::statistics
