// Writes a design into a survey file: the one writer of the tables question and response. Knows no
// window and no model: what it writes is a value, which stays as it is.
#pragma once

#include "document/SurveySnapshot.h"
#include "platform/database/Database.h"

namespace pollarix {

// Writes the design by mark and sweep, within a batch of the caller's, who takes it back at a
// failure. A question or response whose row is gone gets it back under the id that it had, since
// its answers may still be there. Throws Overflow, before anything is written, for a text that no
// file takes, and what the database throws.
void WriteDesign(Connection& file, const SurveySnapshot& design);

} // namespace pollarix
