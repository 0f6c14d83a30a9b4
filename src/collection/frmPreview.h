// Walks a design as a respondent does: the window of manual entry over a survey of its own in
// memory. Nothing of it reaches a file, the open survey or its respondents.
#pragma once

#include "collection/frmManualResponse.h"
#include "document/SurveySnapshot.h"

namespace pollarix {

// The survey that a preview asks and answers: what saving the design would make of the open file,
// without its respondents.
struct SurveyPreview {
    // The scales, and what a save would find, are read from the open survey; without one from the
    // template. Throws what saving and reading throw.
    SurveyPreview(ApplicationState& open, const SurveySnapshot& design);

    ApplicationState state;
    ManualEntryState entry;
};

class frmPreview : public frmManualResponse {
    Q_OBJECT
  public:
    // Begins with the question at the position, from 1.
    frmPreview(SurveyPreview& preview, int position, QWidget* parent);

  private:
    static ManualEntryState& BeginningAt(ManualEntryState& entry, int position);
};

} // namespace pollarix
