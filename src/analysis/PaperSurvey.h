// The menu entry "Create Paper Based Survey...": the questionnaire as a rich text file with tick
// boxes, to be printed and filled in by hand.
#pragma once

#include "document/ApplicationState.h"
#include "platform/desktop/LongWork.h"

namespace pollarix {

class PaperSurvey {
  public:
    PaperSurvey(ApplicationState& state, LongWork& work) : state_(state), work_(work) {}

    void mnuDataCollectionPaperSurvey_Click();

    // Writes the form; the file at the path is replaced when the new one is whole. Throws what the
    // database and the file throw, InvalidNull for a question without text and a sub question
    // without scale, NoCurrentRecord for a matrix without sub questions.
    static void Write(Connection& survey, const QString& path, const ProgressStep& step);

  private:
    ApplicationState& state_;
    LongWork& work_;
};

} // namespace pollarix
