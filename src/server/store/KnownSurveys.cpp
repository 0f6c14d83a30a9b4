#include "server/store/KnownSurveys.h"

namespace pollarix::server {

std::shared_ptr<const Survey> KnownSurveys::Find(const std::string& address) const {
    const std::lock_guard lock(mutex_);
    const auto found = known_.find(address);
    return found == known_.end() ? nullptr : found->second;
}

std::uint64_t KnownSurveys::Age() const {
    const std::lock_guard lock(mutex_);
    return age_;
}

void KnownSurveys::Keep(std::uint64_t age, const Survey& survey) {
    const std::lock_guard lock(mutex_);
    if (age != age_)
        return;
    if (known_.size() >= Most)
        known_.clear();
    known_.insert_or_assign(survey.address, std::make_shared<const Survey>(survey));
}

void KnownSurveys::Forget() {
    const std::lock_guard lock(mutex_);
    ++age_;
    known_.clear();
}

} // namespace pollarix::server
