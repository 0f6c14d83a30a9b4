#include "document/SurveyDocument.h"

#include <QFile>
#include <QFileInfo>
#include <QLocale>

#include <utility>

#include "document/QuestionLabels.h"
#include "document/SurveyReader.h"
#include "document/SurveyWriter.h"
#include "platform/base/Failure.h"
#include "platform/base/Formats.h"
#include "platform/richtext/RichText.h"

namespace pollarix {

namespace {

constexpr const char* SaveQuestion = "Do you want to save the changes you made?";
constexpr const char* SurveyFilter = "Pollarix (*.plxs)|*.plxs";

QString NodeText(const SurveySnapshot::Question& q, const QString& noText) {
    const QString text = PlainTextOf(q.Text);
    return PrefixOf(q.qType, q.QuestionNo) + (text.isEmpty() ? noText : text);
}

// Nothing that anybody could miss: what every new survey begins with.
bool IsBlank(const SurveySnapshot& design) {
    return design.questions.empty() ||
           (design.questions.size() == 1 && design.questions.front().responses.empty() &&
            PlainTextOf(design.questions.front().Text).isEmpty());
}

bool IsSamePath(const QString& one, const QString& other) {
    return !one.isEmpty() && !other.isEmpty() &&
           (one == other || (QFileInfo::exists(one) && QFileInfo(one).canonicalFilePath() ==
                                                           QFileInfo(other).canonicalFilePath()));
}

QString TimeText(const QDateTime& when) {
    return when.date() == QDate::currentDate()
               ? QLocale().toString(when.time(), QLocale::ShortFormat)
               : QLocale().toString(when, QLocale::ShortFormat);
}

bool IsNamed(const QString& path) {
    return !path.isEmpty() && !EndsInTmp(path, Qt::CaseInsensitive);
}

// Carries the steps that can be undone over the reading back of what was just written.
class CarriedHistory {
  public:
    explicit CarriedHistory(ApplicationState& state)
        : state_(state), history_(std::move(state.History)),
          written_(SurveySnapshot::Take(state.CurrentSurvey)) {}
    void Arrive() {
        history_.FollowSave(written_, state_.CurrentSurvey);
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

SurveyDocument::SurveyDocument(ApplicationState& state, SurveyViews& views, int recoveryMs)
    : state_(state), views_(views), unnamed_(state.directories),
      recovery_(state.directories.user, recoveryMs, [this] { return Unsaved(); }) {
    state_.onChange_ = [this] { recovery_.Start(); };
    state_.beginBatch_ = [this](std::optional<WriteBatch>& batch) {
        if (Begin(batch) == FileCheck::SavedAs)
            Begin(batch);
    };
    state_.commitBatch_ = [this](WriteBatch& batch) {
        watch_.Commit(state_.SurveyConnection, batch);
        if (IsUnnamed())
            recovery_.Start(); // answers in it are nowhere else
    };
    state_.isOpenSurvey_ = [this](const QString& path) {
        const std::optional<FileState> file = StateOfFile(path);
        return (file && opened_ && file->IsSameFile(*opened_)) ||
               IsSameFile(state_.CurrentFilename(), path);
    };
}

SurveyDocument::~SurveyDocument() {
    state_.onChange_ = {};
    state_.beginBatch_ = {};
    state_.commitBatch_ = {};
    state_.isOpenSurvey_ = {};
}

bool SurveyDocument::IsFileChanged() const {
    if (state_.CurrentSurvey.QCount() == 1 && views_.EditorText().isEmpty())
        return false;
    return state_.fileChanged_;
}

// ---- opening and closing

void SurveyDocument::DoOpen(const QString& sFilename, bool bIsNew, int SelectIndex) {
    try {
        ++state_.openings_;
        isWhole_ = false;
        opened_.reset();
        watch_.Forget();
        state_.isNewFile_ = bIsNew;
        state_.currentFilename_ = sFilename;
        ShowPath(EndsInTmp(sFilename, Qt::CaseInsensitive) ? QString() : sFilename);
        state_.SurveyConnection.Open(sFilename);
        opened_ = StateOfFile(sFilename);
        unnamed_.HoldOnly(sFilename);

        {
            const Recordset version = state_.SurveyConnection.Execute("SELECT * FROM version");
            // A warning only: a file of another version is loaded as far as its tables allow.
            if (!version.AtEnd() && !version.IsNull(0) && version.Real(0) != FormatVersion)
                state_.dialogs.MsgBox(
                    "Unable to open survey file - expecting version 1.7, but found version " +
                        GeneralNumber(version.Real(0)),
                    MsgIcon::Critical);
        }
        ReadAndShow(SelectIndex);
        state_.fileChanged_ = false;
        Opened();
    } catch (const Failure& failure) {
        state_.dialogs.MsgBox("Unable to open " + sFilename + ". " + failure.Description() + ". " +
                                  QString::number(failure.Number()),
                              MsgIcon::Critical);
    }
}

void SurveyDocument::ReadAndShow(int SelectIndex) {
    Connection& file = state_.SurveyConnection;
    // One transaction over the whole reading: no other program can lock or change the file in the
    // middle and leave half of it here.
    const Recordset reading = file.Execute("SELECT name FROM sqlite_schema");
    views_.ShowTree({});
    state_.CurrentSurvey.ClearAll();
    closed_.clear();
    views_.LoadMatrixResponses();
    const DesignRead read = ReadDesign(file);
    // Where the reading ended early, what was read is shown before that is told.
    Show(read.design, read.failure ? -1 : SelectIndex);
    // Within the same transaction: what another program commits from now on is a change.
    try {
        watch_.Note(file);
    } catch (const Failure&) {
        if (!read.failure)
            throw; // what can't be told from another survey is never written over
    }
    if (read.failure)
        throw *read.failure;
    state_.History.Start(state_.CurrentSurvey);
    isWhole_ = true;
}

void SurveyDocument::Show(const SurveySnapshot& design, int SelectIndex, const QString& noText) {
    const int count = static_cast<int>(design.questions.size());
    const bool selects = SelectIndex >= 1 && SelectIndex <= count;
    SurveySnapshot shown = design;
    // Without a question to select, the last one is shown as it was when it had been read and its
    // responses had not: with an empty list. Required behaviour.
    if (!selects && count > 0) {
        shown.questions.back().responses.clear();
        shown.questions.back().ResponseMatrixGroupID = 1;
    }
    shown.PutInto(state_.CurrentSurvey);

    std::vector<SurveyViews::Node> nodes;
    nodes.reserve(design.questions.size());
    for (const SurveySnapshot::Question& q : design.questions)
        nodes.push_back({q.Key, NodeText(q, noText)});
    views_.ShowTree(nodes);
    if (count == 0)
        return;
    const QString& key = nodes[static_cast<std::size_t>(selects ? SelectIndex - 1 : count - 1)].key;
    views_.SelectNode(key);
    views_.tvTreeView_NodeClick(key);
    if (!selects)
        design.PutInto(state_.CurrentSurvey);
}

void SurveyDocument::DoClose() {
    SettleRecovery();
    Detach();
}

void SurveyDocument::Detach() {
    recovery_.Stop();
    const SurveySnapshot left = SurveySnapshot::Take(state_.CurrentSurvey);
    for (const SurveySnapshot::Question& q : left.questions)
        closed_.insert(q.Key);
    views_.ShowTree({});
    views_.ClearEditors();
    try {
        state_.SurveyConnection.Close();
    } catch (const Failure&) {
        // A connection that is not open is no failure here.
    }
    watch_.Forget();
    opened_.reset();
    state_.currentFilename_.clear();
    state_.History.Start({});
    ShowPath({});
    views_.tvTreeView_NodeClick(RootKey);
}

SurveySnapshot SurveyDocument::Design() const {
    SurveySnapshot design =
        SurveySnapshot::Take(state_.CurrentSurvey, views_.SelectedKey().value_or(QString()));
    std::erase_if(design.questions,
                  [this](const SurveySnapshot::Question& q) { return closed_.contains(q.Key); });
    return design;
}

int SurveyDocument::SelectedPosition() const {
    // Nothing but the root may be selected after New, or nothing at all; both mean no position.
    const std::optional<QString> selected = views_.SelectedKey();
    return selected && *selected != RootKey ? state_.CurrentSurvey.GetQIndexFromKey(*selected) : -1;
}

void SurveyDocument::End() {
    SettleRecovery();
    // A file that could not be opened is none of this program's temporary surveys.
    if (IsFileChanged() || !IsUnnamed() || HoldsUnnamedAnswers())
        return;
    const QString path = state_.currentFilename_;
    state_.SurveyConnection.Close();
    QFile::remove(path);
}

// ---- saving

bool SurveyDocument::RefusesPart() {
    if (!state_.SurveyConnection.IsOpen() || isWhole_)
        return false;
    state_.dialogs.MsgBox(state_.currentFilename_ +
                              " was not read whole. Saving would delete the rest of it, so nothing "
                              "was saved or changed.",
                          MsgIcon::Critical);
    return true;
}

SurveyDocument::FileCheck SurveyDocument::CheckFile() {
    using Found = SurveyFileWatch::Found;
    const Found found = state_.SurveyConnection.IsOpen() ? watch_.Look(state_.SurveyConnection)
                                                         : Found::Same; // the write says so itself
    if (found == Found::Same)
        return FileCheck::Same;
    const QString path = state_.currentFilename_;
    if (found == Found::Unknown) {
        state_.dialogs.MsgBox(path + " was not read whole. Nothing was written to it.",
                              MsgIcon::Critical);
        return FileCheck::Stop;
    }
    switch (state_.dialogs.MsgBox(
        path + " was changed by another program after it was opened here. Nothing was written to "
               "it.\n\nDo you want to save your survey as a file of its own? With No, what is in "
               "the file now is opened, and what you did not save is lost.",
        MsgIcon::Question, MsgButtons::YesNoCancel)) {
    case MsgAnswer::Yes:
        return mnuFileSaveAs_Click() ? FileCheck::SavedAs : FileCheck::Stop;
    case MsgAnswer::No:
        DoClose();
        DoOpen(path, true, 1);
        return FileCheck::Stop;
    default:
        return FileCheck::Stop;
    }
}

SurveyDocument::FileCheck SurveyDocument::Begin(std::optional<WriteBatch>& batch) {
    for (int attempt = 0; attempt < 20; ++attempt) {
        if (const FileCheck check = CheckFile(); check != FileCheck::Same)
            return check;
        batch.emplace(state_.SurveyConnection, WriteBatch::OnFailure::TakeBack);
        // Somebody may have come between the look and the lock.
        if (watch_.IsUntouched(state_.SurveyConnection))
            return FileCheck::Same;
        batch.reset();
    }
    throw Failure(failure::PathOrFileAccess,
                  state_.currentFilename_ +
                      " is written by another program again and again. Nothing was written to it");
}

bool SurveyDocument::DoSave() {
    if (RefusesPart())
        return false;
    std::optional<WriteBatch> batch;
    if (const FileCheck check = Begin(batch); check != FileCheck::Same)
        return check == FileCheck::SavedAs;
    const int position = SelectedPosition();
    WriteDesign(state_.SurveyConnection, Design());
    batch->Commit();
    state_.fileChanged_ = false;
    const QString path = state_.currentFilename_;
    CarriedHistory carried(state_);
    Detach();
    DoOpen(path, false, position);
    if (isWhole_) // else the questions that the steps are about are not on the screen
        carried.Arrive();
    return true;
}

bool SurveyDocument::mnuFileSave_Click() {
    if (!state_.SurveyConnection.IsOpen() ||
        EndsInTmp(state_.currentFilename_, Qt::CaseInsensitive))
        return mnuFileSaveAs_Click();
    return DoSave();
}

bool SurveyDocument::mnuFileSaveAs_Click() {
    if (RefusesPart())
        return false;
    const QString old = state_.currentFilename_;
    QString chosen = EndsInTmp(old, Qt::CaseSensitive) ? QString() : old;
    bool hasAnswers = true;
    try {
        FileDialogRequest request;
        request.title = "Save As";
        request.fileName = chosen;
        request.filter = SurveyFilter;
        request.promptOverwrite = true;
        chosen = WithSuffix(state_.dialogs.ShowSave(request).fileName);
        if (chosen.isEmpty())
            return false;
        hasAnswers = WriteCopy(chosen);
    } catch (const Failure& failure) {
        if (failure.Number() != failure::DialogCancelled)
            state_.dialogs.MsgBox("Unable to write to file " + chosen + " " +
                                      failure.Description() + " " +
                                      QString::number(failure.Number()) + " " + failure.Source(),
                                  MsgIcon::Critical);
        return false;
    }
    state_.fileChanged_ = false;
    CarriedHistory carried(state_);
    Detach();
    DoOpen(chosen, true, 1);
    if (isWhole_) // else the questions that the steps are about are not on the screen
        carried.Arrive();
    if (!hasAnswers)
        state_.dialogs.MsgBox(chosen + " was saved without answers: those that are in " + old +
                                  " now can't be told from another survey's.",
                              MsgIcon::Information);
    return true;
}

// A survey whose name ends in ".tmp" would be taken for one without a name. The dialog asked about
// overwriting the name that it knew.
QString SurveyDocument::WithSuffix(const QString& path) {
    if (!EndsInTmp(path, Qt::CaseInsensitive))
        return path;
    const QString named = path + ".plxs";
    if (QFileInfo::exists(named) &&
        state_.dialogs.MsgBox(named + " already exists. Do you want to replace it?",
                              MsgIcon::Question, MsgButtons::YesNo) != MsgAnswer::Yes)
        return {};
    return named;
}

bool SurveyDocument::WriteCopy(const QString& path) {
    const std::optional<FileState> target = StateOfFile(path);
    if (target && opened_ && state_.SurveyConnection.IsOpen() && target->IsSameFile(*opened_))
        throw Failure(failure::PathOrFileAccess, path + ": a file can't be copied onto itself");
    if (target && !state_.SurveyConnection.IsOpen() && IsSameFile(path, state_.currentFilename_))
        throw Failure(failure::PathOrFileAccess,
                      path + ": it could not be opened, and saving would delete what is in it");
    PendingFile file(path);
    try {
        Connection copy;
        copy.Open(file.Path());
        const bool hasAnswers = FillCopy(copy);
        WriteBatch batch(copy, WriteBatch::OnFailure::TakeBack);
        WriteDesign(copy, Design());
        batch.Commit();
        copy.Close();
        SettleJournal(path);
        file.Finish();
        return hasAnswers;
    } catch (...) {
        QFile::remove(file.Path() + "-journal");
        throw;
    }
}

bool SurveyDocument::FillCopy(Connection& copy) {
    using Answers = SurveyFileWatch::Answers;
    Connection& survey = state_.SurveyConnection;
    auto answers = Answers::None;
    if (survey.IsOpen()) {
        if (watch_.Look(survey) != SurveyFileWatch::Found::Overwritten) {
            survey.CopyTo(copy);
            if (watch_.Look(survey) != SurveyFileWatch::Found::Overwritten)
                return true; // nor did anybody come between
        }
        // Where somebody wrote over the file, its answers are ours only if our respondents are
        // there. What our connection has read of it may be of either.
        answers = watch_.AnswersIn(state_.currentFilename_);
        if (answers == Answers::Ours) {
            Connection now;
            now.Open(state_.currentFilename_);
            now.CopyTo(copy);
            return true;
        }
    }
    Connection blank;
    blank.Open(state_.directories.InProgram("blank.mdb"), Connection::Mode::ReadOnly);
    blank.CopyTo(copy);
    if (const SurveyScales scales = watch_.Scales(); !scales.scales.empty())
        WriteScales(copy, scales);
    return answers == Answers::None;
}

bool SurveyDocument::AskToSave(Qt::CaseSensitivity caseOfTmp) {
    if (!IsFileChanged())
        return true;
    switch (state_.dialogs.MsgBox(SaveQuestion, MsgIcon::Question, MsgButtons::YesNoCancel)) {
    case MsgAnswer::Yes:
        return !state_.SurveyConnection.IsOpen() || EndsInTmp(state_.currentFilename_, caseOfTmp)
                   ? mnuFileSaveAs_Click()
                   : DoSave();
    case MsgAnswer::No:
        return true;
    default:
        return false;
    }
}

// ---- recovery

bool SurveyDocument::IsUnnamed() const {
    return state_.SurveyConnection.IsOpen() &&
           EndsInTmp(state_.currentFilename_, Qt::CaseInsensitive);
}

// Answers are written at once, also into a survey that has no name yet and that nobody is asked
// about.
bool SurveyDocument::HoldsUnnamedAnswers() {
    try {
        return IsUnnamed() &&
               !state_.SurveyConnection.Execute("SELECT id FROM respondent LIMIT 1").AtEnd();
    } catch (const Failure&) {
        return true; // held by another program just now, say
    }
}

std::optional<UnsavedSurvey> SurveyDocument::Unsaved() {
    const bool open = state_.SurveyConnection.IsOpen();
    if (open && !isWhole_)
        return std::nullopt;
    UnsavedSurvey unsaved;
    if (state_.fileChanged_)
        unsaved.design = Design();
    if (IsBlank(unsaved.design) && !HoldsUnnamedAnswers())
        return std::nullopt;
    if (open)
        unsaved.path = QFileInfo(state_.currentFilename_).absoluteFilePath();
    unsaved.design = Design();
    unsaved.digest = watch_.Digest();
    unsaved.when = QDateTime::currentDateTime();
    unsaved.scales = watch_.Scales();
    return unsaved;
}

// When a survey is left, nothing is unsaved any more: it was saved, or the user said No. Only where
// nobody asked, for the question's text is empty, what else there is is kept.
void SurveyDocument::SettleRecovery() {
    if (!IsFileChanged() && Unsaved())
        recovery_.LeaveBehind();
    else
        recovery_.Stop();
}

bool SurveyDocument::OfferRecovery(const QString& path) {
    for (Recovery::Found& found : recovery_.Files().Search()) {
        const UnsavedSurvey& survey = found.survey;
        if (!path.isEmpty() && !IsSamePath(survey.path, path))
            continue;
        const std::size_t count = survey.design.questions.size();
        const MsgAnswer answer = state_.dialogs.MsgBox(
            QString("%1 was not saved. Restore it? %2 question%3, %4")
                .arg(IsNamed(survey.path) ? survey.path : QString("A survey without a name"),
                     QString::number(count), count == 1 ? "" : "s", TimeText(survey.when)),
            MsgIcon::Question, MsgButtons::YesNoCancel);
        if (answer == MsgAnswer::Yes) {
            Restore(std::move(found));
            return true;
        }
        if (answer != MsgAnswer::No)
            return false;
        Recovery::Remove(std::move(found));
    }
    return false;
}

QString SurveyDocument::OpenFor(const UnsavedSurvey& survey) {
    QString why = " is no longer there.";
    if (QFileInfo::exists(survey.path)) {
        DoOpen(survey.path, true, -1);
        if (isWhole_ && !survey.digest.isEmpty() && watch_.Digest() == survey.digest)
            return {};
        why = isWhole_ ? " was changed since then." : " could not be read whole.";
        DoClose();
    }
    const QString path = NewSurveyFile();
    if (!survey.scales.scales.empty()) {
        Connection file;
        file.Open(path);
        WriteScales(file, survey.scales);
    }
    DoOpen(path, true, -1);
    return IsNamed(survey.path) ? survey.path + why : QString();
}

void SurveyDocument::Restore(Recovery::Found found) {
    const UnsavedSurvey survey = found.survey;
    DoClose();
    const QString why = OpenFor(survey);
    if (!isWhole_)
        throw Failure(failure::PathOrFileAccess,
                      "What was not saved could not be restored. It is kept, and offered again at "
                      "the next start");
    int selected = 1;
    for (std::size_t i = 0; i < survey.design.questions.size(); ++i)
        if (survey.design.questions[i].Key == survey.design.selectedKey)
            selected = static_cast<int>(i) + 1;
    Show(survey.design, selected, NoTextYet);
    state_.MarkFileChanged();
    recovery_.Files().Adopt(std::move(found));
    if (!why.isEmpty())
        state_.dialogs.MsgBox(
            why +
                " What was not saved is restored as a survey without a name, and without answers.",
            MsgIcon::Information);
}

void SurveyDocument::RemoveLeftSurveys() const {
    unnamed_.RemoveLeft(recovery_.Files().Paths());
}

} // namespace pollarix
