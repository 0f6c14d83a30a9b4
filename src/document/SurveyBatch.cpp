#include "document/SurveyBatch.h"

#include <exception>

namespace pollarix {

SurveyBatch::SurveyBatch(ApplicationState& state, WriteBatch::OnFailure onFailure)
    : state_(state), onFailure_(onFailure) {
    if (state_.beginBatch_)
        state_.beginBatch_(batch_);
    else // nobody has opened the file as a survey
        batch_.emplace(state_.SurveyConnection, WriteBatch::OnFailure::TakeBack);
}

SurveyBatch::~SurveyBatch() {
    if (onFailure_ == WriteBatch::OnFailure::TakeBack)
        return; // which the batch does
    try {
        Commit();
    } catch (const std::exception&) {
        // What brought us here is the failure to tell, and it is on its way already.
    }
}

void SurveyBatch::Commit() {
    if (!batch_)
        return;
    // It ends here in any case: what can't be committed is not tried again.
    struct End {
        std::optional<WriteBatch>& batch;
        ~End() { batch.reset(); }
    } const end{batch_};
    if (state_.commitBatch_)
        state_.commitBatch_(*batch_);
    else
        batch_->Commit();
}

void SurveyBatch::TakeBack() {
    batch_.reset();
}

} // namespace pollarix
