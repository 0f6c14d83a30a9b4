#include "analysis/AnswerReader.h"

namespace pollarix {

AnswerReader::AnswerReader(Connection& survey, const ReportSurvey& layout)
    : layout_(layout), rows_(survey), ranges_(layout.questions.size()) {}

bool AnswerReader::Next() {
    for (const std::size_t question : answered_)
        ranges_[question] = {};
    answered_.clear();
    answers_.clear();
    if (!rows_.NextRespondent())
        return false;
    respondent_ = {rows_.Id(), rows_.SubmittedDate(), rows_.Source()};
    while (rows_.NextAnswer())
        ReadAnswer();
    return true;
}

void AnswerReader::ReadAnswer() {
    // Answers to deleted questions stay in the file and belong to nothing.
    const int owner = layout_.questionPlaces.Of(rows_.QuestionId()).at;
    if (owner < 0)
        return;
    const auto place = static_cast<std::size_t>(owner);
    const ReportQuestion& question = layout_.questions[place];
    ReportAnswer answer;
    if (question.AnswerShape() == Shape::Text) {
        answer.simpleresponse = rows_.SimpleResponse();
        if (answer.simpleresponse)
            answer.simpleresponse->detach(); // more rows are read before it is used
    } else {
        const ReportSurvey::ResponsePlace found = layout_.responsePlaces.Of(rows_.ResponseId());
        if (found.question != owner)
            return; // of another question, or gone
        answer.response = found.response;
        if (question.AnswerShape() == Shape::Grid)
            answer.point = layout_.pointPlaces.Of(rows_.PointId()).at;
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
