// The blank questionnaire as one page of HTML that works from a file: it asks nobody for anything,
// follows the jumps as manual entry does, and saves the answers as a file for "Import Answers".
#pragma once

#include <QString>

#include "platform/database/Database.h"
#include "platform/desktop/LongWork.h"

namespace pollarix {

class HtmlQuestionnaire {
  public:
    // The file at the path is replaced when the new one is whole. Throws what the database and the
    // file throw.
    static void Write(Connection& survey, const QString& path, const ProgressStep& step);
};

} // namespace pollarix
