// Makes results files of the survey server to measure with: answers to the surveys of
// generate_survey.h. The same file for the same count, whenever and wherever.
#pragma once

#include <QString>

#include <cstdint>
#include <functional>
#include <string_view>

namespace pollarix::benchmarks {

// One answer as it is stored. Of the four, only the text of an open ended answer and the point of a
// matrix answer may be missing.
struct GeneratedAnswer {
    int kind;
    int question;
    int response;
    std::string_view text; // Windows-1252
    int point;             // of the scale, 0 for none
};

// The answers of one respondent (from 1), AnswersPerRespondent of them, in the order of the file.
void ForEachAnswer(int respondent, const std::function<void(const GeneratedAnswer&)>& take);

// Writes the results file; gives its size in bytes. Throws std::runtime_error.
std::int64_t GenerateResults(const QString& path, int respondents);

} // namespace pollarix::benchmarks
