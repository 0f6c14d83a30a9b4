// Jumps in words: where a response leads, and from where a question is jumped to. Read out of the
// survey at each call, so that numbers are those of now.
#pragma once

#include <QString>

#include "document/clsSurvey.h"

namespace pollarix {

// "7. Where do you live?", or what says that the target was deleted; "" for no jump.
QString JumpTarget(const clsSurvey& survey, const clsResponse& response);

// A line for each question that jumps to the one with the key, with its responses that do; "" where
// there is none. Only questions with a single response jump.
QString JumpsTo(const clsSurvey& survey, const QString& key);

} // namespace pollarix
