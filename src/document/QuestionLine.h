// A question as one line, number and text, for lists and sentences that name it. Knows no control.
#pragma once

#include <QString>

#include <cstdint>

namespace pollarix {

// Line ends and runs of blanks become one blank each; at most so many characters.
QString OnOneLine(const QString& text, qsizetype most);

// "7. Where do you live?"; the words for a missing text, where there is none. `rtf` is the text as
// clsQ::Question has it.
QString QuestionLine(std::int32_t qType, const QString& QuestionNo, const QString& rtf,
                     qsizetype most);

} // namespace pollarix
