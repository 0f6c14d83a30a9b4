// Reads all answers, respondent by respondent, for who shows or counts them. What is made of them
// is up to its readers.
#pragma once

#include <QByteArray>

#include <cstdint>
#include <optional>

#include "platform/database/Database.h"

namespace pollarix {

class AnswerRows {
  public:
    // Both walks see the file as it is now. This and all others throw what the database throws.
    explicit AnswerRows(Connection& survey);

    // Goes to the next respondent by date, those of one date by id, at first to the first one;
    // false at the end. The answers of the one before need not have been read.
    bool NextRespondent();
    std::int64_t Id() const { return id_; }
    // UTF-8, as stored; none for Null. They stand until the next respondent.
    std::optional<QByteArray> SubmittedDate() const { return respondents_.Utf8(1); }
    std::optional<QByteArray> Source() const { return respondents_.Utf8(2); }

    // Goes to the next answer of the respondent, by question and then as they were stored; false
    // behind the last.
    bool NextAnswer();
    std::optional<std::int64_t> QuestionId() const { return answers_.IntegerOrNull(1); }
    std::optional<std::int64_t> ResponseId() const { return answers_.IntegerOrNull(2); }
    std::optional<std::int64_t> PointId() const { return answers_.IntegerOrNull(3); }
    // UTF-8; it stands until the next answer.
    std::optional<QByteArray> SimpleResponse() const { return answers_.Utf8(4); }

  private:
    Recordset respondents_;
    Recordset answers_;
    std::int64_t id_ = 0;
    bool atRespondent_ = false; // false: the row is one that nobody has seen yet
    bool atAnswer_ = false;
};

} // namespace pollarix
