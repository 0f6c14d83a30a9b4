// A survey's answers as a table for spreadsheets: comma separated, UTF-8, a line for each
// respondent. Whatever a respondent typed, no cell of it is taken for a formula.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "server/net/Http.h"
#include "server/store/Store.h"
#include "server/survey/Questionnaires.h"

namespace pollarix::server {

// Quoted where it has to be; what would begin a formula gets an apostrophe in front.
std::string CsvCell(std::string_view text);

// All answers that are there, line by line. The columns are the questions of all versions, today's
// first; boxes and sub questions have a column each. The two have to live until it is read.
BodySource ResultTable(Store& store, Questionnaires& questionnaires, const Survey& survey);

} // namespace pollarix::server
