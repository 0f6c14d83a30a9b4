// Writes the open survey as the tagged text document that a survey server takes. It looks like XML
// and is none: no declaration, no root, nothing is escaped. The server reads it line by line.
#pragma once

#include <QString>

#include "document/ApplicationState.h"
#include "document/SurveyViews.h"

namespace pollarix {

// Where the document is written: one file, replaced at each run.
QString SurveyXmlPath(const ApplicationState& state);

// Writes what the model holds at this moment, saved or not; only the matrix scales come from the
// file. Throws NoObject when no node of the tree is selected, database failures, and
// PathOrFileAccess; the document of the run before then stays.
void DoSaveXML(ApplicationState& state, const SurveyViews& views);

} // namespace pollarix
