// The menu entry "Detailed Report": a rich text file that holds each respondent's answer to each
// question. Written once and never read back.
#pragma once

#include "document/ApplicationState.h"
#include "platform/desktop/LongWork.h"

namespace pollarix {

class DetailedReport {
  public:
    DetailedReport(ApplicationState& state, LongWork& work) : state_(state), work_(work) {}

    void mnuAnalyseDetail_Click();

    // Writes the report as it reads the answers; the file at the path is replaced when the new one
    // is whole. Throws what the database and the file throw, InvalidNull for a question without
    // text or a stored answer without one.
    static void Write(Connection& survey, const QString& path, const ProgressStep& step);

  private:
    ApplicationState& state_;
    LongWork& work_;
};

} // namespace pollarix
