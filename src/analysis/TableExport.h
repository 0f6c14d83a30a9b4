// The export as a table that spreadsheets and statistics programs read at once: a head line, one
// row a respondent, and the same columns in every row. Comma separated, quoted as RFC 4180 says.
#pragma once

#include <QString>

#include "platform/database/Database.h"
#include "platform/desktop/LongWork.h"

namespace pollarix {

class TableExport {
  public:
    // Writes the table as it reads the answers; the file at the path is replaced when the new one
    // is whole. Throws what the database and the file throw.
    //
    // Columns: the respondent's id, date ("YYYY-MM-DD hh:mm:ss") and source; then by question an
    // open ended answer, the answer to a radio question, 1 or 0 for each choice of a check
    // question, the point of the scale for each sub question of a matrix. Instruction texts have
    // none. A cell without answer is empty. A text that a spreadsheet would take for a formula gets
    // an apostrophe in front, and so does one that has such an apostrophe. The text is UTF-8 and
    // begins with a byte order mark: spreadsheets take a file without it for the system's old code
    // page and spoil every letter beyond ASCII, while other readers skip it or are told to.
    static void Write(Connection& survey, const QString& path, const ProgressStep& step);
};

} // namespace pollarix
