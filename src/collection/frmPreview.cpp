#include "collection/frmPreview.h"

#include <QLabel>

#include "document/SurveyScales.h"
#include "document/SurveyWriter.h"
#include "platform/base/Failure.h"
#include "platform/desktop/HourGlass.h"

namespace pollarix {

namespace {

// A save treats what has a row otherwise than what is new. The rows' own fields it writes anew.
void CopyRows(Connection& from, Connection& to) {
    WriteBatch batch(to);
    TableInsert question(to, "question", {"id"});
    for (Recordset row = from.Execute("SELECT id FROM question"); !row.AtEnd(); row.MoveNext())
        question.Add({row.Integer(0)});
    TableInsert response(to, "response", {"id", "questionid"});
    for (Recordset row = from.Execute("SELECT id, questionid FROM response"); !row.AtEnd();
         row.MoveNext())
        response.Add({row.Integer(0), row.Integer(1)});
    batch.Commit();
}

} // namespace

SurveyPreview::SurveyPreview(ApplicationState& open, const SurveySnapshot& design)
    : state(open.directories, open.settings, open.dialogs) {
    const HourGlass hourGlass;
    Connection& memory = state.SurveyConnection;
    memory.OpenInMemory();
    {
        Connection blank;
        blank.Open(state.directories.InProgram("blank.mdb"), Connection::Mode::ReadOnly);
        blank.CopyTo(memory);
    }
    if (open.SurveyConnection.IsOpen()) {
        WriteScales(memory, ReadScales(open.SurveyConnection));
        CopyRows(open.SurveyConnection, memory);
    }
    WriteBatch batch(memory);
    WriteDesign(memory, design);
    entry.CurrentRespondentID =
        Narrow32(TableInsert(memory, "Respondent", {"Source"}).Add({"Preview"}));
    batch.Commit();
}

frmPreview::frmPreview(SurveyPreview& preview, int position, QWidget* parent)
    : frmManualResponse(preview.state, BeginningAt(preview.entry, position), parent) {
    setObjectName("frmPreview");
    setWindowTitle("Survey Preview");
    if (auto* const instructions = findChild<QLabel*>("lblInstructions"))
        instructions->setText("Preview - You see the survey as a respondent does, also what is not "
                              "saved yet. Nothing that you answer here is stored. For more help "
                              "press F1.");
}

ManualEntryState& frmPreview::BeginningAt(ManualEntryState& entry, int position) {
    entry.FirstPosition = position;
    return entry;
}

} // namespace pollarix
