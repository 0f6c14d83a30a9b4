#include "tables/AnswerImport.h"

#include "document/SurveyBatch.h"
#include "document/SurveyReader.h"
#include "platform/base/Failure.h"
#include "platform/base/ShownText.h"

namespace pollarix::tables {

namespace {

constexpr std::int64_t RowsBetweenSteps = 64;
constexpr qsizetype LongestShown = 80; // characters of a cell

} // namespace

AnswerImport::AnswerImport(const statistics::SurveyVariables& survey, Table& table,
                           std::vector<Target> targets)
    : survey_(survey), table_(table), targets_(std::move(targets)) {}

std::optional<CheckedTable> AnswerImport::Check(const ImportStep& step) {
    RowReading reading(survey_, targets_);
    CheckedTable checked;
    bool stopped = false;
    std::int64_t rows = 0;
    table_.Read([&](const TableRow& row) {
        if (step && ++rows % RowsBetweenSteps == 0 && !step(checked.respondents, row.part)) {
            stopped = true;
            return false;
        }
        if (RowReading::IsBlank(row))
            return true;
        const ReadAnswers& read =
            reading.Read(row, [&](std::size_t column, const Cell& cell, const QString& why) {
                if (checked.problems.size() < CheckedTable::MostProblems)
                    checked.problems.push_back(
                        {row.number,
                         column < targets_.size() ? table_.Columns()[column].name : QString(),
                         Shortened(cell.text.simplified(), LongestShown), why});
                ++checked.problemCount;
            });
        checked.answers += static_cast<std::int64_t>(read.answers.size());
        ++checked.respondents;
        return true;
    });
    if (stopped)
        return std::nullopt;
    return checked;
}

std::optional<std::int64_t> AnswerImport::Write(ApplicationState& state,
                                                const QByteArray& designDigest,
                                                const ImportStep& step) {
    SurveyBatch batch(state);
    if (!batch || DigestOfDesign(state.SurveyConnection) != designDigest)
        throw Failure(failure::PathOrFileAccess,
                      "The survey was changed by another program. Nothing was imported");
    Connection& file = state.SurveyConnection;
    TableInsert undated(file, "Respondent", {"Source"});
    TableInsert dated(file, "Respondent", {"Source", "submitteddate"});
    TableInsert answers(
        file, "Respondent_Responses",
        {"QuestionID", "RespondentID", "ResponseID", "SimpleResponse", "ResponseMatrixID"});
    RowReading reading(survey_, targets_);
    std::int64_t respondents = 0;
    std::int64_t rows = 0;
    bool stopped = false;
    const auto ignore = [](std::size_t, const Cell&, const QString&) {};
    table_.Read([&](const TableRow& row) {
        if (step && ++rows % RowsBetweenSteps == 0 && !step(respondents, row.part)) {
            stopped = true;
            return false;
        }
        if (RowReading::IsBlank(row))
            return true;
        const ReadAnswers& read = reading.Read(row, ignore);
        const std::int64_t respondent = read.date.isEmpty()
                                            ? undated.Add({ImportedSource})
                                            : dated.Add({ImportedSource, read.date});
        for (const StoredAnswer& answer : read.answers)
            answers.Add({answer.question, respondent, answer.response, answer.text,
                         answer.point ? DbValue(*answer.point) : DbValue()});
        ++respondents;
        return true;
    });
    if (stopped) {
        batch.TakeBack();
        return std::nullopt;
    }
    batch.Commit();
    return respondents;
}

} // namespace pollarix::tables
