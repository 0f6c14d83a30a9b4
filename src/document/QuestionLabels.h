// The words before and in place of a question's text in trees and lists. Knows no control.
#pragma once

#include <QString>

#include <cstdint>

#include "document/Kinds.h"

namespace pollarix {

// What a question without text shows in the tree.
inline constexpr const char* NoTextYet = "<Text not yet entered>";

// The number with ". " behind it, also where there is no number: a lone ". ".
inline QString NumberAndDot(const QString& QuestionNo) {
    return QuestionNo + ". ";
}

// The same, but never a lone ". ".
inline QString NumberPrefix(const QString& QuestionNo) {
    return QuestionNo.isEmpty() ? QString() : NumberAndDot(QuestionNo);
}

// What stands before the text of a question of this kind.
inline QString PrefixOf(std::int32_t qType, const QString& QuestionNo) {
    return IsNumbered(qType) ? NumberPrefix(QuestionNo) : QString();
}

} // namespace pollarix
