// The one way to write into the open survey file: a batch that begins only while the file is the
// one that was opened, looked at once more under its lock. What the batch leaves in the file is
// known to be ours from then on. What is written is the caller's; who looks and asks is
// SurveyDocument.
#pragma once

#include <optional>

#include "document/ApplicationState.h"

namespace pollarix {

class SurveyBatch {
  public:
    // Asks the user when the file is another by now. When the user has saved the survey as a file
    // of its own, that is open and takes what is to be written; when nothing is to be written, the
    // batch is none, and another survey may be open. Throws what the database throws.
    explicit SurveyBatch(ApplicationState& state,
                         WriteBatch::OnFailure onFailure = WriteBatch::OnFailure::TakeBack);
    // Without Commit, what was written so far is taken back or stays, as in a WriteBatch.
    ~SurveyBatch();
    SurveyBatch(const SurveyBatch&) = delete;
    SurveyBatch& operator=(const SurveyBatch&) = delete;

    explicit operator bool() const { return batch_.has_value(); }

    // Both end the batch. Commit throws when the file can't take it, and then holds nothing of it.
    void Commit();
    void TakeBack();

  private:
    ApplicationState& state_;
    WriteBatch::OnFailure onFailure_;
    std::optional<WriteBatch> batch_;
};

} // namespace pollarix
