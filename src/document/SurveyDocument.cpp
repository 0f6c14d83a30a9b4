#include "document/SurveyDocument.h"

#include <QHash>

#include "platform/base/Failure.h"
#include "platform/base/Formats.h"
#include "platform/files/Files.h"

namespace pollarix {

namespace {

constexpr const char* SaveQuestion = "Do you want to save the changes you made?";
constexpr const char* SurveyFilter = "Pollarix (*.plxs)|*.plxs";

// Nothing is painted while this stands.
class RedrawOff {
  public:
    explicit RedrawOff(SurveyViews& views) : views_(views) { views_.SetRedraw(false); }
    ~RedrawOff() { views_.SetRedraw(true); }
    RedrawOff(const RedrawOff&) = delete;
    RedrawOff& operator=(const RedrawOff&) = delete;

  private:
    SurveyViews& views_;
};

// Carries the steps that can be undone over the reading back of what was just written.
class CarriedHistory {
  public:
    explicit CarriedHistory(ApplicationState& state)
        : state_(state), history_(std::move(state.History)),
          written_(SurveySnapshot::Take(state.CurrentSurvey)) {}
    void Arrive() {
        history_.FollowSave(written_, SurveySnapshot::Take(state_.CurrentSurvey));
        state_.History = std::move(history_);
    }

  private:
    ApplicationState& state_;
    DesignHistory history_;
    SurveySnapshot written_;
};

} // namespace

bool EndsInTmp(const QString& path, Qt::CaseSensitivity sensitivity) {
    return path.endsWith(".tmp", sensitivity);
}

bool SurveyDocument::IsFileChanged() const {
    if (state_.CurrentSurvey.QCount == 1 && views_.EditorText().isEmpty())
        return false;
    return state_.FileChanged;
}

void SurveyDocument::DoOpen(const QString& sFilename, bool bIsNew, int SelectIndex) {
    try {
        state_.IsNewFile = bIsNew;
        state_.CurrentFilename = sFilename;
        views_.ShowPath(EndsInTmp(sFilename, Qt::CaseInsensitive) ? QString() : sFilename);
        state_.SurveyConnection.Open(sFilename);

        {
            const Recordset version = state_.SurveyConnection.Execute("SELECT * FROM version");
            // A warning only: a file of another version is loaded as far as its tables allow.
            if (!version.AtEnd() && !version.IsNull(0) && version.Real(0) != FormatVersion)
                state_.dialogs.MsgBox(
                    "Unable to open survey file - expecting version 1.7, but found version " +
                        GeneralNumber(version.Real(0)),
                    MsgIcon::Critical);
        }

        {
            // One transaction over the whole reading: no other program can lock or change the file
            // in the middle and leave half of it here.
            const Recordset reading =
                state_.SurveyConnection.Execute("SELECT name FROM sqlite_schema");
            const RedrawOff redrawOff(views_);
            views_.ClearTree();
            views_.AddRootNode();
            state_.CurrentSurvey.ClearAll();
            views_.LoadMatrixResponses();

            QString selectKey;
            ReadQuestions(SelectIndex, selectKey);
            // After all questions: a jump may point forward, and a key exists only once its
            // question has been read.
            ReadResponses();

            // The second click on it, with the responses in, is what shows them.
            if (!selectKey.isEmpty()) {
                views_.SelectNode(selectKey);
                views_.tvTreeView_NodeClick(selectKey);
            }
        }

        state_.FileChanged = false;
        state_.History.Start(SurveySnapshot::Take(state_.CurrentSurvey));
        state_.CurrentFilename = sFilename;
        views_.RefreshRespondeSummaryReportList();
        views_.RefreshRespondentList();
    } catch (const Failure& failure) {
        state_.dialogs.MsgBox("Unable to open " + sFilename + ". " + failure.Description() + ". " +
                                  QString::number(failure.Number()),
                              MsgIcon::Critical);
    }
}

void SurveyDocument::ReadQuestions(int SelectIndex, QString& selectKey) {
    clsSurvey& survey = state_.CurrentSurvey;
    int counter = 1;
    for (Recordset row = state_.SurveyConnection.Execute("SELECT * FROM question ORDER BY pos");
         !row.AtEnd(); row.MoveNext(), ++counter) {
        const auto q = std::make_shared<clsQ>();
        q->Question = row.NullToString("question");
        q->qType = Narrow32(row.Integer("qtype"));
        q->DatabaseID = Narrow16(row.Integer("id"));
        q->QuestionNo = row.NullToString("questionno");
        q->ResponseMatrixGroupID = 1;
        const QString key = survey.AddQ2(q);

        QString text = views_.PlainTextThroughEditor(q->Question);
        if (q->qType != kind::Text && !q->QuestionNo.isEmpty())
            text.prepend(q->QuestionNo + ". ");
        views_.AddQuestionNode(key, text);
        // The panels follow the loading; this leaves the editor in a consistent state.
        views_.SelectNode(key);
        views_.tvTreeView_NodeClick(key);
        if (counter == SelectIndex)
            selectKey = key;
    }
}

void SurveyDocument::ReadResponses() {
    clsSurvey& survey = state_.CurrentSurvey;
    QHash<std::int16_t, QString> keyOf; // many responses jump to few questions
    for (int i = 1; i <= survey.QCount; ++i) {
        const std::shared_ptr<clsQ> q = survey.GetQIndex(Narrow16(i));
        if (!HasResponses(q->qType))
            continue;
        bool first = true;
        for (Recordset row = state_.SurveyConnection.Execute(
                 "SELECT id, name, responseMatrixGroupID, LogicJumpToQuestionID FROM response "
                 "WHERE questionid = ? ORDER BY pos",
                 {q->DatabaseID});
             !row.AtEnd(); row.MoveNext()) {
            if (first)
                q->ResponseMatrixGroupID = Narrow16(row.Integer("responseMatrixGroupID"));
            first = false;
            std::int16_t jumpID = -1;
            QString jumpKey;
            if (!row.IsNull("LogicJumpToQuestionID")) {
                jumpID = Narrow16(row.Integer("LogicJumpToQuestionID"));
                auto known = keyOf.find(jumpID);
                if (known == keyOf.end())
                    known = keyOf.insert(jumpID, survey.GetKeyFromDatabaseID(jumpID));
                jumpKey = *known;
            }
            q->AddResponse(row.NullToString("name"), Narrow32(row.Integer("id")), jumpID, jumpKey);
        }
        survey.SetQ(q->Key, q);
    }
}

int SurveyDocument::SelectedPosition() const {
    // Nothing but the root may be selected after New, or nothing at all; both mean no position.
    const std::optional<QString> selected = views_.SelectedKey();
    return selected && *selected != RootKey ? state_.CurrentSurvey.GetQIndexFromKey(*selected) : -1;
}

void SurveyDocument::DoSave() {
    const int position = SelectedPosition();
    WriteModel();
    CarriedHistory carried(state_);
    Reopen(position);
    carried.Arrive();
}

void SurveyDocument::Reopen(int SelectIndex) {
    const QString filename = state_.CurrentFilename;
    DoClose();
    state_.CurrentFilename = filename;
    DoOpen(filename, false, SelectIndex);
}

void SurveyDocument::WriteModel() {
    std::vector<std::shared_ptr<clsQ>> inserted;
    try {
        WriteBatch batch(state_.SurveyConnection);
        state_.SurveyConnection.Run("UPDATE question SET deleteme = true");
        state_.SurveyConnection.Run("UPDATE response SET deleteme = true");
        // All questions get their ids before any response is written, so that a jump to a question
        // that is new in this save can be stored.
        WriteQuestions(inserted);
        WriteResponses();
        state_.SurveyConnection.Run("DELETE FROM response WHERE deleteme = true");
        state_.SurveyConnection.Run("DELETE FROM question WHERE deleteme = true");
        batch.Commit();
    } catch (...) {
        // What was written stays. But where the database has taken the rows back, the next save
        // would give their ids to others, and then take those for theirs.
        for (const std::shared_ptr<clsQ>& q : inserted)
            if (!HasRow(*q))
                q->DatabaseID = -1;
        throw;
    }
}

bool SurveyDocument::HasRow(const clsQ& q) const {
    try {
        return !state_.SurveyConnection
                    .Execute("SELECT id FROM question WHERE id = ?", {q.DatabaseID})
                    .AtEnd();
    } catch (const std::exception&) {
        return false;
    }
}

void SurveyDocument::WriteQuestions(std::vector<std::shared_ptr<clsQ>>& inserted) {
    clsSurvey& survey = state_.CurrentSurvey;
    Connection& file = state_.SurveyConnection;
    TableInsert insert(file, "question", {"question", "questionno", "qtype", "pos", "Deleteme"});
    for (int i = 1; i <= survey.QCount; ++i) {
        const std::shared_ptr<clsQ> question = survey.GetQIndex(Narrow16(i));
        clsQ& q = *question;
        if (file.Execute("SELECT id FROM question WHERE id = ?", {q.DatabaseID}).AtEnd()) {
            q.DatabaseID = Narrow16(insert.Add({q.Question, q.QuestionNo, q.qType, i, 0}));
            inserted.push_back(question);
        } else {
            file.Run("UPDATE question SET Deleteme = false, questionno = ?, question = ?, "
                     "qtype = ?, pos = ? WHERE id = ?",
                     {q.QuestionNo, q.Question, q.qType, i, q.DatabaseID});
        }
    }
}

void SurveyDocument::WriteResponses() {
    clsSurvey& survey = state_.CurrentSurvey;
    Connection& file = state_.SurveyConnection;
    TableInsert insert(
        file, "response",
        {"questionid", "name", "pos", "responseMatrixGroupID", "LogicJumpToQuestionID"});
    // Lives across responses and questions, and only an update sets it: a key that no longer
    // resolves inherits the jump that was worked out last. Required behaviour.
    std::int16_t jumpID = 0;
    for (int i = 1; i <= survey.QCount; ++i) {
        clsQ& q = *survey.GetQIndex(Narrow16(i));
        if (file.Execute("SELECT id FROM question WHERE id = ?", {q.DatabaseID}).AtEnd())
            continue;
        if (!HasResponses(q.qType))
            continue;
        for (int j = 1; j <= q.ResponsesCount; ++j) {
            const std::shared_ptr<clsResponse> r = q.GetResponse(Narrow16(j));
            const bool jumps = !r->LogicJumpToQuestionKey.isEmpty();
            const std::shared_ptr<clsQ> target =
                jumps ? survey.GetQ(r->LogicJumpToQuestionKey) : nullptr;
            if (!file.Execute("SELECT id FROM response WHERE id = ?", {r->DatabaseID}).AtEnd()) {
                if (!jumps)
                    jumpID = -1;
                else if (target)
                    jumpID = target->DatabaseID;
                file.Run("UPDATE response SET Deleteme = false, name = ?, "
                         "responseMatrixGroupID = ?, LogicJumpToQuestionID = ?, pos = ? "
                         "WHERE id = ?",
                         {r->Text, q.ResponseMatrixGroupID,
                          jumpID == -1 ? DbValue() : DbValue(jumpID), j, r->DatabaseID});
            } else {
                insert.Add({q.DatabaseID, r->Text, j, q.ResponseMatrixGroupID,
                            target ? DbValue(target->DatabaseID) : DbValue()});
            }
            q.UpdateResponse(Narrow16(j), r);
        }
    }
}

void SurveyDocument::DoClose() {
    views_.ClearTree();
    views_.ClearEditors();
    try {
        state_.SurveyConnection.Close();
    } catch (const Failure&) {
        // A connection that is not open is no failure here.
    }
    state_.CurrentFilename.clear();
    state_.History.Start({});
    views_.ShowPath({});
    views_.AddRootNode();
    views_.tvTreeView_NodeClick(RootKey);
}

void SurveyDocument::mnuFileSave_Click() {
    if (EndsInTmp(state_.CurrentFilename, Qt::CaseInsensitive))
        mnuFileSaveAs_Click();
    else
        DoSave();
}

void SurveyDocument::mnuFileSaveAs_Click() {
    const QString old = state_.CurrentFilename;
    bool leftOld = false;
    QString chosen = EndsInTmp(old, Qt::CaseSensitive) ? QString() : old;
    try {
        FileDialogRequest request;
        request.title = "Save As";
        request.fileName = chosen;
        request.filter = SurveyFilter;
        request.promptOverwrite = true;
        chosen = state_.dialogs.ShowSave(request).fileName;
        if (chosen.isEmpty())
            return;
        const int position = SelectedPosition();
        PendingCopy copy = CopyTo(chosen);
        state_.SurveyConnection.Close();
        leftOld = true;
        state_.CurrentFilename.clear();
        // The changes go into the copy before it takes the name: whatever happens, the file of that
        // name is either what it was or the whole survey.
        state_.SurveyConnection.Open(copy.Path());
        WriteModel();
        state_.SurveyConnection.Close();
        SettleJournal(chosen);
        copy.Finish();
        state_.CurrentFilename = chosen;
        CarriedHistory carried(state_);
        Reopen(position);
        DoClose();
        DoOpen(chosen, true, 1);
        carried.Arrive();
    } catch (const Failure& failure) {
        if (failure.Number() == failure::DialogCancelled)
            return;
        state_.dialogs.MsgBox("Unable to write to file " + chosen + " " + failure.Description() +
                                  " " + QString::number(failure.Number()) + " " + failure.Source(),
                              MsgIcon::Critical);
        // Model and tree stay as they are.
        state_.CurrentFilename = old;
        if (leftOld || !state_.SurveyConnection.IsOpen())
            ReopenAfterFailedSaveAs(old);
    }
}

// The survey stays open until the copy is there: a file that was deleted meanwhile can still be
// read, but never opened again.
PendingCopy SurveyDocument::CopyTo(const QString& path) {
    // Read in a transaction, so that no other program writes meanwhile.
    const Recordset reading = state_.SurveyConnection.Execute("SELECT name FROM sqlite_schema");
    return PendingCopy(state_.CurrentFilename, path);
}

void SurveyDocument::ReopenAfterFailedSaveAs(const QString& old) {
    const bool onTheCopy = state_.SurveyConnection.IsOpen();
    try {
        state_.SurveyConnection.Open(old);
    } catch (const Failure&) {
        // A connection that is open makes the opening fail, and that failure reaches the caller.
        // But the next save has to go where the name says.
        if (onTheCopy) {
            state_.SurveyConnection.Close();
            state_.SurveyConnection.Open(old);
        }
        throw;
    }
}

bool SurveyDocument::AskToSave(Qt::CaseSensitivity caseOfTmp) {
    if (!IsFileChanged())
        return true;
    switch (state_.dialogs.MsgBox(SaveQuestion, MsgIcon::Question, MsgButtons::YesNoCancel)) {
    case MsgAnswer::Yes:
        if (EndsInTmp(state_.CurrentFilename, caseOfTmp))
            mnuFileSaveAs_Click();
        else
            DoSave();
        return true;
    case MsgAnswer::No:
        return true;
    default:
        return false;
    }
}

} // namespace pollarix
