#include "statistics/Filter.h"

#include <QStringList>

#include <algorithm>
#include <numeric>

#include "platform/base/Failure.h"

namespace pollarix::statistics {

namespace {

using Kind = Filter::Kind;
using Chosen = std::vector<std::uint8_t>;

// A condition by answer as a table: whether each code meets it. What is no answer is tested apart.
struct Meets {
    std::vector<std::uint8_t> answers;
    bool noNumber = false;
    bool leftEmpty = false;
    bool notAsked = false;

    std::uint8_t operator()(Code code) const {
        if (IsAnswer(code))
            return answers[code];
        return code == NoNumber ? noNumber : code == LeftEmpty ? leftEmpty : notAsked;
    }
};

template <typename Test> void ByValue(Meets& meets, const Variable& variable, Test test) {
    for (std::size_t code = 0; code < meets.answers.size(); ++code)
        meets.answers[code] = test(variable.values[code]);
}

Meets TableOf(const Filter& filter, const Variable& variable) {
    Meets meets;
    meets.answers.assign(variable.categories.size(), 0);
    switch (filter.kind) {
    case Kind::IsOneOf:
    case Kind::IsNoneOf:
        if (filter.kind == Kind::IsNoneOf) {
            std::fill(meets.answers.begin(), meets.answers.end(), 1);
            meets.noNumber = true;
        }
        for (const Code code : filter.codes) {
            if (code >= meets.answers.size())
                throw Failure(failure::Subscript);
            meets.answers[code] = filter.kind == Kind::IsOneOf;
        }
        break;
    case Kind::AtLeast:
        ByValue(meets, variable, [&](double value) { return value >= filter.low; });
        break;
    case Kind::AtMost:
        ByValue(meets, variable, [&](double value) { return value <= filter.high; });
        break;
    case Kind::Between:
        ByValue(meets, variable,
                [&](double value) { return value >= filter.low && value <= filter.high; });
        break;
    case Kind::FromDay:
        ByValue(meets, variable, [&](double value) {
            return value >= static_cast<double>(filter.day.toJulianDay());
        });
        break;
    case Kind::UntilDay:
        ByValue(meets, variable, [&](double value) {
            return value <= static_cast<double>(filter.day.toJulianDay());
        });
        break;
    case Kind::Answered:
        std::fill(meets.answers.begin(), meets.answers.end(), 1);
        meets.noNumber = true;
        break;
    case Kind::LeftEmpty:
        meets.leftEmpty = true;
        break;
    case Kind::NotAsked:
        meets.notAsked = true;
        break;
    case Kind::NotAnswered:
        meets.leftEmpty = true;
        meets.notAsked = true;
        break;
    case Kind::All:
    case Kind::Any:
        break;
    }
    return meets;
}

std::size_t VariableOf(const SurveyVariables& survey, const Filter& filter) {
    if (filter.kind == Kind::FromDay || filter.kind == Kind::UntilDay)
        return SurveyVariables::Date;
    if (filter.variable >= survey.variables.size())
        throw Failure(failure::Subscript);
    return filter.variable;
}

QString Quoted(const QString& text) {
    return '"' + text + '"';
}

QString Number(double value) {
    return QString::number(value, 'g', 15);
}

QString Named(const Variable& variable, const std::vector<Code>& codes) {
    QStringList names;
    for (const Code code : codes)
        names << Quoted(code < variable.categories.size() ? variable.categories[code]
                                                          : QString::number(code));
    if (names.isEmpty())
        return "nothing";
    const QString last = names.takeLast();
    return names.isEmpty() ? last : names.join(", ") + " or " + last;
}

QString ConditionInWords(const Variable& variable, const Filter& filter) {
    switch (filter.kind) {
    case Kind::IsOneOf:
        return "is " + Named(variable, filter.codes);
    case Kind::IsNoneOf:
        return "is answered, but not by " + Named(variable, filter.codes);
    case Kind::AtLeast:
        return "is at least " + Number(filter.low);
    case Kind::AtMost:
        return "is at most " + Number(filter.high);
    case Kind::Between:
        return "is from " + Number(filter.low) + " to " + Number(filter.high);
    case Kind::FromDay:
        return "from " + filter.day.toString(Qt::ISODate);
    case Kind::UntilDay:
        return "until " + filter.day.toString(Qt::ISODate);
    case Kind::Answered:
        return "is answered";
    case Kind::LeftEmpty:
        return "was left empty";
    case Kind::NotAsked:
        return "was not asked";
    default:
        return "is not answered";
    }
}

QString InWords(const SurveyVariables& survey, const Filter& filter, bool inner) {
    if (filter.kind != Kind::All && filter.kind != Kind::Any) {
        const Variable& variable = survey.variables[VariableOf(survey, filter)];
        return variable.label + ' ' + ConditionInWords(variable, filter);
    }
    if (filter.parts.empty())
        return filter.kind == Kind::All ? "everybody" : "nobody";
    QStringList parts;
    for (const Filter& part : filter.parts)
        parts << InWords(survey, part, filter.parts.size() > 1);
    const QString joined = parts.join(filter.kind == Kind::All ? ", and " : ", or ");
    return inner && parts.size() > 1 ? '(' + joined + ')' : joined;
}

} // namespace

std::vector<std::uint8_t> Choose(const Answers& answers, const Filter& filter) {
    if (filter.kind == Kind::All || filter.kind == Kind::Any) {
        const bool all = filter.kind == Kind::All;
        Chosen chosen(answers.Respondents(), all);
        for (const Filter& part : filter.parts) {
            const Chosen met = Choose(answers, part);
            std::transform(chosen.begin(), chosen.end(), met.begin(), chosen.begin(),
                           [all](std::uint8_t a, std::uint8_t b) -> std::uint8_t {
                               return all ? a & b : a | b;
                           });
        }
        return chosen;
    }
    const std::size_t variable = VariableOf(answers.Survey(), filter);
    const Meets meets = TableOf(filter, answers.At(variable));
    const Column& codes = answers.Codes(variable);
    Chosen chosen(answers.Respondents());
    for (std::size_t row = 0; row < chosen.size(); ++row)
        chosen[row] = meets(codes[row]);
    return chosen;
}

std::size_t CountChosen(const std::vector<std::uint8_t>& chosen) {
    return std::accumulate(chosen.begin(), chosen.end(), std::size_t{0});
}

QString Sentence(const SurveyVariables& survey, const Filter& filter) {
    return InWords(survey, filter, false);
}

} // namespace pollarix::statistics
