// What can be counted in a survey: its questions taken apart into variables, as the survey file
// holds them. The design with its unsaved changes is another matter, and so are the answers.
#pragma once

#include <QHash>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "platform/database/Database.h"

namespace pollarix::statistics {

// What may be done with the numbers behind the answers: tell them apart, order them, subtract them.
enum class Level { Nominal, Ordinal, Scale };

enum class VariableKind {
    Single, // the answer to a radio question
    Tick,   // one response of a check question: 0 or 1
    Point,  // one sub question of a matrix: the point of its scale
    Open,   // a typed answer; counted as a number where it is one
    Date,   // the day of the submission
    Source, // where the answers came from
};

struct Variable {
    QString name;  // plain ASCII and unique: q1, q2_3, q5_1, date, source
    QString label; // the question in one line; with ": " and the item behind it if there is one
    QString item;  // the response of a tick, the sub question of a point; else ""
    VariableKind kind = VariableKind::Single;
    Level level = Level::Nominal;
    int question = -1; // place in SurveyVariables::questions; -1 for date and source
    // Texts by code. Of an open question, of date and source they are known only when the answers
    // were read; see Answers.
    std::vector<QString> categories;
    // The number that each code stands for: 1..n for responses and points, 0 and 1 for ticks, the
    // number itself for an open answer, the day number (of the Julian calendar) for a date.
    std::vector<double> values;

    // Takes the points of a scale as n..1 instead of 1..n, or back again.
    void Reverse();
};

// One question of any kind, instruction texts included: a jump may lead to them.
struct SurveyQuestion {
    std::int64_t id = 0;
    std::int64_t qtype = 0;
    QString number; // as shown before the question; "" for none
    QString text;   // plain, in one line
    std::size_t firstVariable = 0;
    std::size_t variableCount = 0;
    // By response.id. Of a radio question the code; of the others the variable's place behind
    // firstVariable.
    QHash<std::int64_t, std::uint32_t> responses;
    std::vector<QHash<std::int64_t, std::uint32_t>> points; // of each sub question: code by point
    std::vector<int> jumps; // of a radio question by code: place of the target, or one of these
    static constexpr int NoJump = -1;
    static constexpr int LostJump = -2; // to a question that is gone
};

struct SurveyVariables {
    // Reads questions, responses and scales. Questions of an unknown kind have no variables.
    explicit SurveyVariables(Connection& survey);

    std::vector<SurveyQuestion> questions; // by pos
    std::vector<Variable> variables;       // date and source first, then by question
    bool hasJumps = false;

    static constexpr std::size_t Date = 0;
    static constexpr std::size_t Source = 1;

    // The variable's place, or none. Names are compared as they stand.
    std::optional<std::size_t> Find(const QString& name) const;
};

} // namespace pollarix::statistics
