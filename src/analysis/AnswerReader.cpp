#include "analysis/AnswerReader.h"

#include "document/AnswerRows.h"

namespace pollarix {

using namespace answer_rows;

namespace {

int PlaceIn(const QHash<std::int64_t, int>& places, const Recordset& rows, Field field) {
    return rows.IsNull(field) ? -1 : places.value(rows.Integer(field), -1);
}

} // namespace

AnswerReader::AnswerReader(Connection& survey, const ReportSurvey& layout)
    : layout_(layout), rows_(survey.Execute(AllAnswers)), ranges_(layout.questions.size()) {}

bool AnswerReader::Next() {
    if (rows_.AtEnd())
        return false;
    for (const std::size_t question : answered_)
        ranges_[question] = {};
    answered_.clear();
    answers_.clear();

    respondent_.id = rows_.Integer(Id);
    respondent_.submitteddate = TextOrNull(rows_, SubmittedDate);
    respondent_.source = TextOrNull(rows_, Source);
    do {
        if (!rows_.IsNull(AnswerId))
            ReadAnswer();
        rows_.MoveNext();
    } while (!rows_.AtEnd() && rows_.Integer(Id) == respondent_.id);
    return true;
}

void AnswerReader::ReadAnswer() {
    // Answers to deleted questions stay in the file and belong to nothing.
    const int place = PlaceIn(layout_.questionIndex, rows_, QuestionId);
    if (place < 0)
        return;
    const ReportQuestion& question = layout_.questions[place];
    ReportAnswer answer;
    if (question.AnswerShape() == Shape::Text) {
        answer.simpleresponse = TextOrNull(rows_, SimpleResponse);
    } else {
        answer.response = PlaceIn(question.responseIndex, rows_, ResponseId);
        if (answer.response < 0)
            return; // of another question, or gone
        if (question.AnswerShape() == Shape::Grid)
            answer.point = PlaceIn(layout_.pointIndex, rows_, PointId);
    }
    auto& [begin, end] = ranges_[place];
    if (begin == end) {
        begin = answers_.size();
        answered_.push_back(place);
    }
    answers_.push_back(std::move(answer));
    end = answers_.size();
}

std::span<const ReportAnswer> AnswerReader::AnswersTo(std::size_t question) const {
    const auto [begin, end] = ranges_[question];
    return {answers_.data() + begin, end - begin};
}

const std::vector<const ReportAnswer*>& AnswerReader::FirstByResponse(std::size_t question) {
    byResponse_.assign(layout_.questions[question].responses.size(), nullptr);
    for (const ReportAnswer& answer : AnswersTo(question)) {
        if (!byResponse_[answer.response])
            byResponse_[answer.response] = &answer;
    }
    return byResponse_;
}

} // namespace pollarix
