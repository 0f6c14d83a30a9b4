#include "tables/Targets.h"

#include <algorithm>

#include "document/Kinds.h"
#include "tables/AnswerKeys.h"
#include "tables/ColumnTitles.h"

namespace pollarix::tables {

using statistics::SurveyQuestion;
using statistics::SurveyVariables;
using statistics::Variable;
using statistics::VariableKind;

namespace {

// Letters and digits alone: what other programs do to names leaves these.
QString KeyOf(const QString& name) {
    QString key;
    for (const QChar letter : name.toCaseFolded())
        if (letter.isLetterOrNumber() || letter.isSurrogate() || letter.isMark())
            key += letter;
    return key;
}

// Where a name leads, in the order of the survey: each place is taken by the first column that has
// the name.
class Places {
  public:
    void Add(const QString& name, Target target) {
        if (!name.isEmpty())
            targets_[name].push_back(target);
    }
    std::optional<Target> Take(const QString& name, std::vector<Target>& taken) const {
        const auto found = targets_.constFind(name);
        if (name.isEmpty() || found == targets_.cend())
            return std::nullopt;
        for (const Target& target : *found)
            if (std::find(taken.begin(), taken.end(), target) == taken.end()) {
                taken.push_back(target);
                return target;
            }
        return std::nullopt;
    }
    bool Has(const QString& name) const { return targets_.contains(name); }

  private:
    QHash<QString, std::vector<Target>> targets_;
};

QString NameOfQuestion(const SurveyVariables& survey, const SurveyQuestion& question) {
    const QString name = survey.variables[question.firstVariable].name;
    return name.left(name.indexOf('_'));
}

// Everything by which the survey's parts are known.
struct Known {
    Places names;       // q1, q2_3
    Places exactTitles; // these two letter by letter
    Places exactLabels;
    Places titles; // as the table of the export has them
    Places labels; // as the files with labels have them
    Places items;  // the response or sub question alone, where no other is called so

    explicit Known(const SurveyVariables& survey) {
        const std::vector<QString> all = TitlesOf(survey);
        const Target date{Target::Kind::Date, 0};
        names.Add("date", date);
        AddTitle(all[SurveyVariables::Date], date);
        QHash<QString, int> count;
        for (const Variable& variable : survey.variables)
            ++count[KeyOf(variable.item)];
        for (std::size_t i = SurveyVariables::Source + 1; i < survey.variables.size(); ++i) {
            const Variable& variable = survey.variables[i];
            const Target target{Target::Kind::Variable, i};
            names.Add(variable.name, target);
            const SurveyQuestion& question = survey.questions[variable.question];
            if (variable.kind == VariableKind::Tick || variable.kind == VariableKind::Point)
                names.Add(
                    IdKey(question.id, IdsOf(question.responses,
                                             question.variableCount)[i - question.firstVariable]),
                    target);
            else
                names.Add(IdKey(question.id), target);
            AddTitle(all[i], target);
            AddLabel(variable.label, target);
            if (count[KeyOf(variable.item)] == 1)
                items.Add(KeyOf(variable.item), target);
        }
        for (std::size_t i = 0; i < survey.questions.size(); ++i) {
            const SurveyQuestion& question = survey.questions[i];
            if (question.qtype != kind::Check || question.variableCount == 0)
                continue;
            const Target target{Target::Kind::Choices, i};
            names.Add(NameOfQuestion(survey, question), target);
            AddTitle(QuestionTitle(question.number, question.text).simplified(), target);
            AddLabel(question.text, target);
        }
    }

  private:
    void AddTitle(const QString& title, Target target) {
        exactTitles.Add(title, target);
        titles.Add(KeyOf(title), target);
    }
    void AddLabel(const QString& label, Target target) {
        exactLabels.Add(label.simplified(), target);
        labels.Add(KeyOf(label), target);
    }
};

// The variables that a target fills.
std::pair<std::size_t, std::size_t> RangeOf(const Target& target, const SurveyVariables& survey) {
    if (target.kind == Target::Kind::Date)
        return {SurveyVariables::Date, SurveyVariables::Date + 1};
    if (target.kind == Target::Kind::Variable)
        return {target.place, target.place + 1};
    if (target.kind == Target::Kind::Nothing)
        return {0, 0};
    const SurveyQuestion& question = survey.questions[target.place];
    return {question.firstVariable, question.firstVariable + question.variableCount};
}

} // namespace

std::vector<NamedTarget> AllTargets(const SurveyVariables& survey) {
    std::vector<NamedTarget> all{{{}, "(not imported)"},
                                 {{Target::Kind::Date, 0}, "Date of the submission"}};
    for (std::size_t i = 0; i < survey.questions.size(); ++i) {
        const SurveyQuestion& question = survey.questions[i];
        if (question.qtype == kind::Check && question.variableCount > 0)
            all.push_back({{Target::Kind::Choices, i},
                           NameOfQuestion(survey, question) + ": " + question.text +
                               " (all chosen responses)"});
        for (std::size_t v = question.firstVariable;
             v < question.firstVariable + question.variableCount; ++v)
            all.push_back({{Target::Kind::Variable, v},
                           survey.variables[v].name + ": " + survey.variables[v].label});
    }
    return all;
}

std::vector<Target> GuessTargets(const std::vector<TableColumn>& columns,
                                 const SurveyVariables& survey) {
    const Known known(survey);
    std::vector<Target> targets(columns.size());
    std::vector<Target> taken;
    std::vector<bool> found(columns.size());
    const auto guess = [&](const Places& places, const auto& nameOf) {
        for (std::size_t i = 0; i < columns.size(); ++i) {
            if (found[i])
                continue;
            if (const auto target = places.Take(nameOf(columns[i]), taken)) {
                targets[i] = *target;
                found[i] = true;
            }
        }
    };
    const auto label = [](const TableColumn& column) { return KeyOf(column.label); };
    const auto title = [](const TableColumn& column) { return KeyOf(column.name); };
    const auto exact = [](const TableColumn& column) { return column.name.simplified(); };
    // A label says more than a number that may have been given to another question since.
    guess(known.exactLabels, [](const TableColumn& column) { return column.label.simplified(); });
    guess(known.titles, label);
    guess(known.labels, label);
    // An export has all of its columns from one of the two, and what reads like the other in it is
    // chance.
    const auto count = [&](const Places& places) {
        return std::count_if(columns.begin(), columns.end(),
                             [&](const TableColumn& column) { return places.Has(exact(column)); });
    };
    const bool areTitles = count(known.exactTitles) >= count(known.exactLabels);
    guess(areTitles ? known.exactTitles : known.exactLabels, exact);
    guess(areTitles ? known.exactLabels : known.exactTitles, exact);
    guess(known.titles, title);
    guess(known.labels, title);
    guess(known.names, [](const TableColumn& column) { return column.name.toLower(); });
    guess(known.items, title);
    return targets;
}

QStringList WithoutColumn(const std::vector<Target>& targets, const SurveyVariables& survey) {
    std::vector<bool> has(survey.variables.size());
    for (const Target& target : targets)
        for (auto [v, end] = RangeOf(target, survey); v < end; ++v)
            has[v] = true;
    QStringList without;
    for (std::size_t v = SurveyVariables::Source + 1; v < survey.variables.size(); ++v)
        if (!has[v])
            without << survey.variables[v].name + ": " + survey.variables[v].label;
    return without;
}

QString Conflict(const std::vector<Target>& targets, const std::vector<TableColumn>& columns,
                 const SurveyVariables& survey) {
    std::vector<std::optional<std::size_t>> owner(survey.variables.size());
    for (std::size_t i = 0; i < targets.size(); ++i)
        for (auto [v, end] = RangeOf(targets[i], survey); v < end; ++v) {
            if (owner[v])
                return QString("The columns \"%1\" and \"%2\" both go to \"%3\".")
                    .arg(columns[*owner[v]].name, columns[i].name, survey.variables[v].label);
            owner[v] = i;
        }
    return {};
}

} // namespace pollarix::tables
