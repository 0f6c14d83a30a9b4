// Walks the respondents, oldest first, with their answers sorted out by question. One statement
// reads everything in this order, so that only one respondent stands in memory at a time.
#pragma once

#include <QByteArray>

#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "analysis/ReportSurvey.h"
#include "document/AnswerRows.h"

namespace pollarix {

struct ReportAnswer {
    int response = -1; // place in the question's responses; -1 for an open ended question
    int point = -1;    // place in the survey's points; -1 for none
    // Read for open ended questions only; UTF-8, none for Null.
    std::optional<QByteArray> simpleresponse;
};

struct Respondent {
    std::int64_t id = 0;
    // As stored, in UTF-8; none for Null. They stand until the next respondent.
    std::optional<QByteArray> submitteddate;
    std::optional<QByteArray> source;
};

class AnswerReader {
  public:
    // The survey's questions must outlive the reader.
    AnswerReader(Connection& survey, const ReportSurvey& layout);

    // Goes to the next respondent, at first to the first one; false at the end.
    bool Next();
    const Respondent& Current() const { return respondent_; }

    // The respondent's answers to the question at this place of the survey's questions, in the
    // order in which they were stored. Those to a response that the question does not have are left
    // out.
    std::span<const ReportAnswer> AnswersTo(std::size_t question) const;

    // The first answer to each of the question's responses or sub questions; null for one without.
    // It stands until the next call.
    const std::vector<const ReportAnswer*>& FirstByResponse(std::size_t question);

  private:
    void ReadAnswer();

    const ReportSurvey& layout_;
    AnswerRows rows_;
    Respondent respondent_;
    std::vector<ReportAnswer> answers_;
    std::vector<std::pair<std::size_t, std::size_t>> ranges_; // of answers_, for each question
    std::vector<std::size_t> answered_;                       // questions with a range
    std::vector<const ReportAnswer*> byResponse_;
};

} // namespace pollarix
