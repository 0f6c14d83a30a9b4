// Writes the results file that the program collects: the answers of one respondent after another,
// in Windows-1252, tag by tag as the program's reader looks for them. No answer can pass for a tag.
#pragma once

#include <string>

#include "exchange/CodePage.h"
#include "exchange/Questionnaire.h"

namespace pollarix::exchange {

// The lines of one respondent; the file is these one behind the other. The answers have the shape
// of the questionnaire. Also a respondent who answered nothing is one: each question has its
// record.
std::string ResultsOf(const Questionnaire& questionnaire, const Answers& answers,
                      LostLetters& lost);

} // namespace pollarix::exchange
