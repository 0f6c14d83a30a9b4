// The blank questionnaire on paper, as a PDF: boxes to tick in one line below the other, lines to
// write on, and where to go on after an answer that jumps.
#pragma once

#include <QString>

#include "platform/database/Database.h"
#include "platform/desktop/LongWork.h"

namespace pollarix {

class PdfQuestionnaire {
  public:
    // The file at the path is replaced when the new one is whole. The pages have the size that is
    // usual where the user is. Throws what the database and the file throw.
    static void Write(Connection& survey, const QString& path, const ProgressStep& step);
};

} // namespace pollarix
