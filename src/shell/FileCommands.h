// The New and Open commands of the File menu. Saving and the save question are the document's.
#pragma once

#include "document/SurveyDocument.h"

namespace pollarix {

class FileCommands {
  public:
    FileCommands(ApplicationState& state, SurveyDocument& document)
        : state_(state), document_(document) {}

    // A new survey from the template, in a temporary file. Also run by Close and at start-up.
    // Throws when the template can't be copied; the survey that was open is closed by then.
    void mnuNew_Click();

    // Asks for a file and opens it. Throws what the save question and the offer to restore throw,
    // which is not about the file that was chosen.
    void mnuFileOpen_Click();

  private:
    ApplicationState& state_;
    SurveyDocument& document_;
};

} // namespace pollarix
