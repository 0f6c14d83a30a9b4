// One respondent's answers as one line of text: what the store keeps, and what a form carries along
// for the pages that aren't shown. The same answers always give the same bytes.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "exchange/Questionnaire.h"

namespace pollarix::server {

// "12=some text;13=40,41;14=50:300,51:301": question, then the text, the responses ticked, or for
// each sub question the point of the scale, all by their ids. Questions without an answer are left
// out. In a text "\" is "\\", a line end "\n" and ";" "\s".
std::string StoredAnswers(const exchange::Questionnaire& questionnaire,
                          const exchange::Answers& answers);

// The way back, on the same version of the survey. Nothing unless the text is exactly what the
// above would give: it also comes from respondents.
std::optional<exchange::Answers> ReadStoredAnswers(const exchange::Questionnaire& questionnaire,
                                                   std::string_view stored);

} // namespace pollarix::server
