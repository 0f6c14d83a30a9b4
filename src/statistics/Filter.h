// Chooses respondents by their answers: a tree of conditions, its sentence in words, and who meets
// it. Knows nothing of tables.
#pragma once

#include <QDate>
#include <QString>

#include <cstdint>
#include <vector>

#include "statistics/Answers.h"

namespace pollarix::statistics {

struct Filter {
    enum class Kind {
        All, // every one of the parts is met; without parts, everybody is in
        Any, // at least one of the parts is met; without parts, nobody is in
        IsOneOf,
        IsNoneOf, // answered, and by none of these
        AtLeast,  // by number: the code's value of an ordinal or scale variable
        AtMost,
        Between, // both bounds are in
        FromDay,
        UntilDay, // that day is in
        Answered,
        LeftEmpty, // asked, but without an answer
        NotAsked,
        NotAnswered, // either of the two
    };

    Kind kind = Kind::All;
    std::vector<Filter> parts = {}; // of All and Any
    std::size_t variable = 0;       // of the conditions
    std::vector<Code> codes = {};   // of IsOneOf, IsNoneOf
    double low = 0;                 // of AtLeast, Between
    double high = 0;                // of AtMost, Between
    QDate day = {}; // of FromDay, UntilDay, which look at the date whatever `variable` is
};

// One byte a respondent, 1 for who meets the filter. An answer that is no number meets no condition
// by number, but is answered. Throws Subscript for a variable or code that does not exist.
std::vector<std::uint8_t> Choose(const Answers& answers, const Filter& filter);
std::size_t CountChosen(const std::vector<std::uint8_t>& chosen);

// The filter as a sentence without full stop, such as: Which one? is "Leek" or "Pea", and Submitted
// from 2024-03-01. "everybody" for a filter without conditions.
QString Sentence(const SurveyVariables& survey, const Filter& filter);

} // namespace pollarix::statistics
