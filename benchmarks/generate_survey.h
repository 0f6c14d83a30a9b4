// Makes large surveys to measure with. The same survey for the same count, whenever and wherever.
#pragma once

#include <QString>

namespace pollarix::benchmarks {

// What each generated survey holds: ten questions of every kind, and for every respondent an answer
// to each, ticks and sub questions counted one by one.
inline constexpr int AnswersPerRespondent = 17;

// Copies the template of new surveys to the path and fills it. Throws what SQLiteCpp and the file
// system throw.
void GenerateSurvey(const QString& blank, const QString& path, int respondents);

// The same with questions instead, of the three kinds with responses in turn and nobody's answers.
// Each response of a radio question jumps to another one of the questions that follow. Ids have 16
// bits in the program: no more than 32,767 responses in all.
void GenerateQuestions(const QString& blank, const QString& path, int questions, int responses);

} // namespace pollarix::benchmarks
