// What the columns of a table are taken for: which question or part of one each goes to. Guessed by
// their names; the user has the last word.
#pragma once

#include "statistics/Variables.h"
#include "tables/Table.h"

namespace pollarix::tables {

struct Target {
    enum class Kind {
        Nothing,  // the column is not imported
        Date,     // of the submission
        Variable, // an open or single answer, one response of many, one sub question
        Choices   // all chosen responses of a question with many, in one cell
    };
    Kind kind = Kind::Nothing;
    std::size_t place = 0; // of a variable, or of a question for Choices
    bool operator==(const Target&) const = default;
};

struct NamedTarget {
    Target target;
    QString text;
};

// All that a column can be taken for, in the survey's order, "not imported" first.
std::vector<NamedTarget> AllTargets(const statistics::SurveyVariables& survey);

// One for each column. A name as the files with labels have it (q1, q2_3, q5_1) and a title or
// label as an export writes it are known, whatever their case and signs. No two columns get one
// target.
std::vector<Target> GuessTargets(const std::vector<TableColumn>& columns,
                                 const statistics::SurveyVariables& survey);

// Questions and parts of questions that no column goes to.
QStringList WithoutColumn(const std::vector<Target>& targets,
                          const statistics::SurveyVariables& survey);

// Says which two columns go to one place; "" if none do.
QString Conflict(const std::vector<Target>& targets, const std::vector<TableColumn>& columns,
                 const statistics::SurveyVariables& survey);

} // namespace pollarix::tables
