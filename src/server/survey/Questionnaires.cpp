#include "server/survey/Questionnaires.h"

#include <string>

#include "exchange/SurveyReader.h"
#include "server/survey/StoredAnswers.h"

namespace pollarix::server {

namespace {

// The page of one that is larger takes too long to be made between others.
constexpr std::size_t SmallDocument = 128U << 10U;

} // namespace

std::shared_ptr<const exchange::Questionnaire> Questionnaires::Find(Id survey, int version) {
    const Key key(survey, version);
    if (auto kept = FindKept(key, room_))
        return kept;
    // Outside the lock: two that ask for the same new version read it twice, and nobody waits.
    const std::optional<std::string> document = store_.FindVersion(survey, version);
    if (!document)
        return nullptr;
    try {
        auto questionnaire = std::make_shared<const exchange::Questionnaire>(
            exchange::ReadSurveyDocument(*document));
        const std::lock_guard lock(mutex_);
        Keep(key, document->size(), questionnaire);
        return questionnaire;
    } catch (const exchange::DocumentFault& fault) {
        throw StoreFailure("version " + std::to_string(version) + " of survey " +
                           std::to_string(survey) + " can't be read: " + fault.what());
    }
}

Questionnaires::Answered Questionnaires::Read(Id survey, const Submission& submission) {
    auto questionnaire = Find(survey, submission.version);
    auto answers =
        questionnaire ? ReadStoredAnswers(*questionnaire, submission.answers) : std::nullopt;
    if (!answers)
        throw StoreFailure("submission " + std::to_string(submission.id) + " can't be read");
    return {std::move(questionnaire), std::move(*answers)};
}

std::shared_ptr<const exchange::Questionnaire> Questionnaires::Known(Id survey, int version) {
    return FindKept({survey, version}, SmallDocument);
}

std::shared_ptr<const exchange::Questionnaire> Questionnaires::FindKept(const Key& key,
                                                                        std::size_t most) {
    const std::lock_guard lock(mutex_);
    const auto found = kept_.find(key);
    if (found == kept_.end() || found->second.size > most)
        return nullptr;
    order_.splice(order_.begin(), order_, found->second.place);
    return found->second.questionnaire;
}

void Questionnaires::Keep(const Key& key, std::size_t size,
                          const std::shared_ptr<const exchange::Questionnaire>& questionnaire) {
    if (size > room_ || kept_.count(key) > 0)
        return;
    while (used_ + size > room_) {
        const auto oldest = kept_.find(order_.back());
        used_ -= oldest->second.size;
        kept_.erase(oldest);
        order_.pop_back();
    }
    order_.push_front(key);
    kept_.emplace(key, Kept{questionnaire, size, order_.begin()});
    used_ += size;
}

} // namespace pollarix::server
