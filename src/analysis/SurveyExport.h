// The menu entry "Export...": all answers as a file for other programs, in one of several formats.
// The one written here has one line a respondent, whose fields are whatever that respondent
// answered. The others are those of TableExport and of the room `labelled`.
#pragma once

#include "document/ApplicationState.h"
#include "platform/desktop/LongWork.h"

namespace pollarix {

class SurveyExport {
  public:
    SurveyExport(ApplicationState& state, LongWork& work) : state_(state), work_(work) {}

    void mnuFileExport_Click();

    // The text between double quotes, without the double quotes and the commas it holds. Line ends
    // stay.
    static QString QuoteMe(const QString& s);

    // Writes the file in Windows-1252 as it reads the answers; the file at the path is replaced
    // when the new one is whole. Throws what the database and the file throw, InvalidNull for a
    // respondent without source and for a stored answer without text.
    static void Write(Connection& survey, const QString& path, const ProgressStep& step);

  private:
    ApplicationState& state_;
    LongWork& work_;
};

} // namespace pollarix
