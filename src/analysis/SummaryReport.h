// The rows of the summary report: every question with the share of respondents for each answer,
// computed from the survey file. Knows no grid; what it gives is what the grid shows, row by row.
#pragma once

#include <QString>

#include <cstdint>
#include <vector>

#include "analysis/AnswerCounts.h"
#include "platform/database/Database.h"

namespace pollarix {

struct SummaryRow {
    QString percentage; // "n/a", "" or a percentage
    QString text;
    std::int64_t rowData = 0; // -1 for a question, else a response.id; 0 in a blank row
};

struct SummaryReport {
    SummaryTotals totals;
    // By grid row; element 0 stands for the head.
    std::vector<SummaryRow> rows = std::vector<SummaryRow>(1);
    // Grid row to select.
    std::int64_t row = 1;

    // One entry for each step of the building, from 1; element 0 is unused. After a matrix the
    // entries run ahead of the rows by one, and by a further one after each matrix that follows:
    // the graph reads them at the grid's row number as they stand.
    std::vector<std::int32_t> SummaryCounts = {0};
    std::vector<std::int16_t> SummaryKeys = {0};
    std::int32_t SummaryRowCount() const {
        return static_cast<std::int32_t>(SummaryKeys.size()) - 1;
    }

    void AddEntry(std::int32_t count, std::int64_t key);
};

// Adds rows and entries to a new report that has its totals, with the counts of the same file. Row
// is the grid row to select, overridden by the row of the response with ResponseID. Throws Overflow
// for a response.id of a matrix beyond 16 bits, and what the database throws; the report then ends
// where that happened.
void ReadSummary(Connection& file, AnswerCounts& counts, std::int64_t Row, std::int64_t ResponseID,
                 SummaryReport& report);

// Throws what ReadSummary would throw for a file that lacks tables or columns, or that holds
// answers of nobody, without counting.
void CheckSummary(Connection& file);

// "0.0%" for no answers; else the share rounded to one decimal, half to even, in the locale's
// general number format with no zero added, and "%".
QString PercentageText(std::int64_t count, std::int64_t total);

} // namespace pollarix
