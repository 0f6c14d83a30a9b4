// Imports the answers of a table into the open survey: first a look at every row, which tells what
// can't be matched, then all of them in one batch. Asks nobody; the dialog does.
#pragma once

#include "document/ApplicationState.h"
#include "tables/RowReading.h"

namespace pollarix::tables {

// Where such respondents are from, as reports count them.
inline constexpr const char* ImportedSource = "Imported";

struct Problem {
    std::int64_t row = 0;
    QString column;
    QString text; // of the cell, shortened
    QString why;
};

struct CheckedTable {
    // How many problems are kept. All are counted.
    static constexpr std::size_t MostProblems = 1000;
    std::int64_t respondents = 0;
    std::int64_t answers = 0;
    std::int64_t problemCount = 0;
    std::vector<Problem> problems;
};

// Told now and then: the respondents so far, and how much of the file was read. False ends it.
using ImportStep = std::function<bool(std::int64_t respondents, double part)>;

class AnswerImport {
  public:
    // Both have to outlive the import. There is one target for each column.
    AnswerImport(const statistics::SurveyVariables& survey, Table& table,
                 std::vector<Target> targets);

    // Reads all rows and writes nothing. None when `step` ended it. Throws what reading throws.
    std::optional<CheckedTable> Check(const ImportStep& step);

    // Adds a respondent for each row that is not blank, with all answers that can be matched; gives
    // their count. None when `step` ended it; then, and when anything is thrown, the file is as it
    // was. Throws PathOrFileAccess when the survey is not the one any more that the table was
    // matched with, and what reading and the database throw.
    std::optional<std::int64_t> Write(ApplicationState& state, const QByteArray& designDigest,
                                      const ImportStep& step);

  private:
    const statistics::SurveyVariables& survey_;
    Table& table_;
    const std::vector<Target> targets_;
};

} // namespace pollarix::tables
