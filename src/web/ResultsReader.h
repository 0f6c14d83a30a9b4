// Reads a results file of the survey server and adds its respondents and their answers to the open
// survey file. A line scanner, not an XML parser: it looks for fixed tags in each line that ends in
// CR LF, and whatever else is there is ignored.
#pragma once

#include <QString>

#include <cstdint>
#include <functional>

#include "document/ApplicationState.h"

namespace pollarix {

// Told now and then while a file is imported, and at its end, before anything is in the survey for
// good: the respondents so far, the bytes read and those of the file. False takes everything back.
using ImportProgress = std::function<bool(int respondents, std::int64_t bytes, std::int64_t size)>;

// Imports the file and says in one message how many respondents came. All rows are written in one
// SurveyBatch; when a line is refused, those before it stay. Throws FileNotFound or
// PathOrFileAccess for the file, TypeMismatch or Overflow for a kind that is no number, Subscript
// for a matrix answer without a comma, InvalidArgument for a closing tag before its opening one,
// and database failures for a value that a number column refuses. Marks nothing as changed and
// refreshes nothing. False when `progress` has stopped it: the survey is as before, and nothing was
// said.
bool DoLoadXML(ApplicationState& state, const QString& path, const ImportProgress& progress = {});

} // namespace pollarix
