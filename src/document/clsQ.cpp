#include "document/clsQ.h"

#include <utility>

#include "platform/base/Failure.h"

namespace pollarix {

void clsQ::RemoveResponse(std::int16_t i) {
    if (ResponsesCount() < 1)
        throw Failure(failure::Subscript);
    for (std::int16_t at = i < 1 ? ResponsesCount() : i; at < ResponsesCount(); ++at)
        responses_[at] = responses_[at + 1];
    responses_.pop_back();
}

void clsQ::AddResponse(const QString& s, std::int32_t ResponseDatabaseID,
                       std::int64_t LogicJumpToQuestionID, const QString& LogicJumpToQuestionKey) {
    auto r = std::make_shared<clsResponse>();
    r->Text = s;
    r->DatabaseID = Narrow16(ResponseDatabaseID);
    r->LogicJumpToQuestionID = Narrow16(LogicJumpToQuestionID);
    r->LogicJumpToQuestionKey = LogicJumpToQuestionKey;
    const std::int16_t count = Narrow16(ResponsesCount() + 1);
    responses_.resize(count + 1);
    responses_[count] = std::move(r);
}

std::shared_ptr<clsResponse> clsQ::GetResponse(std::int16_t i) const {
    if (i < 0 || static_cast<std::size_t>(i) >= responses_.size())
        throw Failure(failure::Subscript);
    return responses_[i];
}

void clsQ::UpdateResponse(std::int16_t i, std::shared_ptr<clsResponse> r) {
    if (i < 0 || static_cast<std::size_t>(i) >= responses_.size())
        throw Failure(failure::Subscript);
    responses_[i] = std::move(r);
}

void clsQ::ClearAllResponses() {
    responses_.clear();
}

} // namespace pollarix
