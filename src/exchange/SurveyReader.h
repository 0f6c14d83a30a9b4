// Reads the survey document that the program publishes, version 1.4. It looks like XML and is none:
// nothing in it is escaped, and texts may hold tags. So it is read in the one order in which it is
// written, and a text ends where its closing tag is followed by the line that has to come next.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string_view>

#include "exchange/Questionnaire.h"

namespace pollarix::exchange {

// The program itself writes no more than that.
constexpr std::size_t LargestSurveyDocument = 64U << 20U;

// What is wrong with a document and where, in words for its author, below 200 characters.
struct DocumentFault : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Takes the document's bytes, Windows-1252. What comes back can be answered and collected: all ids
// are there and each stands once. Throws DocumentFault for the first fault.
Questionnaire ReadSurveyDocument(std::string_view bytes);

} // namespace pollarix::exchange
