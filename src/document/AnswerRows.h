// The one statement that reads all answers, respondent by respondent, for who shows or counts them.
// What is made of a row is up to its readers.
#pragma once

#include <QString>

#include <optional>

#include "platform/database/Database.h"

namespace pollarix::answer_rows {

// Indexes give this order: no sorting, no waiting before the first row.
inline constexpr const char* AllAnswers =
    "SELECT respondent.id, submitteddate, source, answer.id, QuestionID, ResponseID, "
    "ResponseMatrixID, SimpleResponse "
    "FROM respondent LEFT JOIN respondent_responses AS answer ON RespondentID = respondent.id "
    "ORDER BY submitteddate, respondent.id, QuestionID, answer.id";

enum Field { Id, SubmittedDate, Source, AnswerId, QuestionId, ResponseId, PointId, SimpleResponse };

inline std::optional<QString> TextOrNull(const Recordset& rows, Field field) {
    if (rows.IsNull(field))
        return std::nullopt;
    return rows.Text(field);
}

} // namespace pollarix::answer_rows
