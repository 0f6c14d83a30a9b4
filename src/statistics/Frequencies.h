// How often each answer was given: of one variable, or of all responses of a check question.
#pragma once

#include "statistics/Answers.h"
#include "statistics/Sample.h"

namespace pollarix::statistics {

// The interval of a share at a confidence of 95 percent, after Wilson (1927), without correction
// for continuity. With weights, n is the effective size (sum of weights)² / sum of squares.
struct ShareInterval {
    double low = 0;
    double high = 0;
};
ShareInterval WilsonInterval(double share, double n);

struct FrequencyLine {
    QString label;
    double value = 0;          // the number behind the label
    double count = 0;          // the sum of weights
    double shareOfAll = 0;     // of all respondents in the sample
    double shareOfValid = 0;   // of those who answered
    double cumulative = 0;     // of those who answered; of no meaning for check questions
    double shareOfAnswers = 0; // of all ticks of a check question; else as shareOfValid
    ShareInterval interval;    // of shareOfValid
};

struct Frequencies {
    std::vector<FrequencyLine> lines;
    double all = 0; // sums of weights
    double valid = 0;
    double leftEmpty = 0;
    double notAsked = 0;
    double noNumber = 0; // typed, but no number
    std::size_t validRespondents = 0;
    bool weighted = false;
};

// Shares are from 0 to 1, and 0 where there is nothing to share.
Frequencies CountFrequencies(const Answers& answers, std::size_t variable, const Sample& sample);

// A line for each response of the check question at the place. Respondents who ticked nothing have
// not answered. Throws InvalidArgument for a question of another kind.
Frequencies CountTicks(const Answers& answers, std::size_t question, const Sample& sample);

} // namespace pollarix::statistics
