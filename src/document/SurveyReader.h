// Reads the design out of a survey file: the one reader of the tables question and response into
// the model. Knows no window; what is shown of it is SurveyDocument's.
#pragma once

#include <QByteArray>

#include <optional>

#include "document/SurveySnapshot.h"
#include "platform/base/Failure.h"
#include "platform/database/Database.h"

namespace pollarix {

struct DesignRead {
    SurveySnapshot design;          // as far as it was read, under new keys
    std::optional<Failure> failure; // what ended the reading early
};

// Reads all questions in their order, then all responses: a jump may point forward, and a key
// exists only once its question has been read. Throws nothing of the file: what fails, or does not
// fit the model's 16 bits, ends the reading.
DesignRead ReadDesign(Connection& file);

// A number for all that the two tables hold: files with equal numbers hold the same design. Throws
// what the database throws.
QByteArray DigestOfDesign(Connection& file);

} // namespace pollarix
