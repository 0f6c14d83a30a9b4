// Looks a design through for what will trouble respondents or analysts. Gives what it finds as
// values; showing them, and leading to their places, is the Design screen's. Changes nothing.
#pragma once

#include <QString>

#include <optional>
#include <vector>

#include "document/SurveyScales.h"
#include "document/SurveySnapshot.h"

namespace pollarix {

struct Finding {
    enum class Kind {
        EmptyText,
        FewResponses,
        EqualResponses,
        NoSubQuestions,
        NoPoints,
        JumpToDeleted,
        JumpToItself,
        Loop,
        NotReached,
        LostLetters
    };
    // A problem stops respondents, misleads them or loses what they say; a note may well be meant.
    enum class Gravity { Problem, Note };

    Kind kind;
    Gravity gravity;
    QString key;      // of the question
    int response = 0; // its place in the question, from 1; 0 for the question itself
    QString question; // number and text, on one line
    QString words;    // one sentence
    bool operator==(const Finding&) const = default;
};

// In the order of the survey, in a time that grows with its length only. Without scales, as when
// no file is open, nothing is said about points.
std::vector<Finding> CheckSurvey(const SurveySnapshot& survey,
                                 const std::optional<SurveyScales>& scales);

// How many of them are problems.
int CountProblems(const std::vector<Finding>& findings);

} // namespace pollarix
