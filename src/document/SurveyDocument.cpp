#include "document/SurveyDocument.h"

#include <QFile>
#include <QFileInfo>
#include <QLocale>

#include <utility>

#include "document/SurveyReader.h"
#include "document/SurveyWriter.h"
#include "platform/base/Failure.h"
#include "platform/base/Formats.h"
#include "platform/richtext/RichText.h"

namespace pollarix {

namespace {

constexpr const char* SaveQuestion = "Do you want to save the changes you made?";
constexpr const char* SurveyFilter = "Pollarix (*.plxs)|*.plxs";

QString NodeText(const SurveySnapshot::Question& q) {
    const QString text = PlainTextOf(q.Text);
    return q.qType == kind::Text || q.QuestionNo.isEmpty() ? text : q.QuestionNo + ". " + text;
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
    : state_(state), views_(views),
      recovery_(state.directories.user, recoveryMs, [this] { return Unsaved(); }) {
    state_.onChange_ = [this] { recovery_.Start(); };
    state_.mayWrite_ = [this] { return CheckFile() != FileCheck::Stop; };
    state_.isOpenSurvey_ = [this](const QString& path) {
        const std::optional<FileState> file = StateOfFile(path);
        return (file && opened_ && file->IsSameFile(*opened_)) ||
               IsSameFile(state_.CurrentFilename(), path);
    };
}

SurveyDocument::~SurveyDocument() {
    state_.onChange_ = {};
    state_.mayWrite_ = {};
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
    {
        // One transaction over the whole reading: no other program can lock or change the file in
        // the middle and leave half of it here.
        const Recordset reading = file.Execute("SELECT name FROM sqlite_schema");
        views_.ShowTree({});
        state_.CurrentSurvey.ClearAll();
        closed_.clear();
        views_.LoadMatrixResponses();
        const DesignRead read = ReadDesign(file);
        // Where the reading ended early, what was read is shown before that is told.
        Show(read.design, read.failure ? -1 : SelectIndex);
        if (read.failure)
            throw *read.failure;
        state_.History.Start(state_.CurrentSurvey);
        isWhole_ = true;
        // Within the same transaction: what another program commits from now on is a change.
        try {
            watch_.Note(file);
        } catch (const Failure&) {
            // A table that is missing is told by whoever shows it.
        }
    }
}

void SurveyDocument::Show(const SurveySnapshot& design, int SelectIndex) {
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
        nodes.push_back({q.Key, NodeText(q)});
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

QString SurveyDocument::NewSurveyFile() const {
    const QString path = NewTempFileName(state_.directories.user, "HC");
    CopyFileOver(state_.directories.InProgram("blank.mdb"), path);
    return path;
}

void SurveyDocument::End() {
    SettleRecovery();
    // A file that could not be opened is none of this program's temporary surveys.
    if (IsFileChanged() || !EndsInTmp(state_.currentFilename_, Qt::CaseInsensitive) ||
        !state_.SurveyConnection.IsOpen())
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
    if (!state_.SurveyConnection.IsOpen() ||
        watch_.Look(state_.SurveyConnection) == SurveyFileWatch::Found::Same)
        return FileCheck::Same;
    const QString path = state_.currentFilename_;
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

bool SurveyDocument::DoSave() {
    if (RefusesPart())
        return false;
    if (const FileCheck check = CheckFile(); check != FileCheck::Same)
        return check == FileCheck::SavedAs;
    const int position = SelectedPosition();
    WriteDesign(state_.SurveyConnection, Design());
    state_.fileChanged_ = false;
    const QString path = state_.currentFilename_;
    CarriedHistory carried(state_);
    DoClose();
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
    try {
        FileDialogRequest request;
        request.title = "Save As";
        request.fileName = chosen;
        request.filter = SurveyFilter;
        request.promptOverwrite = true;
        chosen = WithSuffix(state_.dialogs.ShowSave(request).fileName);
        if (chosen.isEmpty())
            return false;
        WriteCopy(chosen);
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
    DoClose();
    DoOpen(chosen, true, 1);
    if (isWhole_) // else the questions that the steps are about are not on the screen
        carried.Arrive();
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

void SurveyDocument::WriteCopy(const QString& path) {
    const std::optional<FileState> target = StateOfFile(path);
    if (target && opened_ && state_.SurveyConnection.IsOpen() && target->IsSameFile(*opened_))
        throw Failure(failure::PathOrFileAccess, path + ": a file can't be copied onto itself");
    if (target && !state_.SurveyConnection.IsOpen() && IsSamePath(path, state_.currentFilename_))
        throw Failure(failure::PathOrFileAccess,
                      path + ": it could not be opened, and saving would delete what is in it");
    PendingFile file(path);
    try {
        Connection copy;
        copy.Open(file.Path());
        FillCopy(copy);
        WriteDesign(copy, Design());
        copy.Close();
        SettleJournal(path);
        file.Finish();
    } catch (...) {
        QFile::remove(file.Path() + "-journal");
        throw;
    }
}

void SurveyDocument::FillCopy(Connection& copy) {
    Connection& survey = state_.SurveyConnection;
    if (survey.IsOpen()) {
        if (watch_.Look(survey) != SurveyFileWatch::Found::Overwritten) {
            survey.CopyTo(copy);
            return;
        }
        // Where somebody wrote over the file, its answers are ours only if our respondents are
        // there. What our connection has read of it may be of either.
        if (watch_.HoldsOurRespondents(state_.currentFilename_)) {
            Connection now;
            now.Open(state_.currentFilename_);
            now.CopyTo(copy);
            return;
        }
    }
    Connection blank;
    blank.Open(state_.directories.InProgram("blank.mdb"), Connection::Mode::ReadOnly);
    blank.CopyTo(copy);
    if (!watch_.Scales().scales.empty())
        WriteScales(copy, watch_.Scales());
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

std::optional<UnsavedSurvey> SurveyDocument::Unsaved() {
    const bool open = state_.SurveyConnection.IsOpen();
    if (!state_.fileChanged_ || (open && !isWhole_))
        return std::nullopt;
    UnsavedSurvey unsaved;
    unsaved.design = Design();
    if (IsBlank(unsaved.design))
        return std::nullopt;
    if (open && !EndsInTmp(state_.currentFilename_, Qt::CaseInsensitive))
        unsaved.path = QFileInfo(state_.currentFilename_).absoluteFilePath();
    unsaved.digest = watch_.Digest();
    unsaved.when = QDateTime::currentDateTime();
    watch_.RefreshScales(state_.SurveyConnection);
    unsaved.scales = watch_.Scales();
    return unsaved;
}

// When a survey is left, nothing is unsaved any more: it was saved, or the user said No. Only where
// nobody asked, for the question's text is empty, what else there is is kept.
void SurveyDocument::SettleRecovery() {
    if (state_.fileChanged_ && !IsFileChanged() && Unsaved())
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
                .arg(survey.path.isEmpty() ? QString("A survey without a name") : survey.path)
                .arg(count)
                .arg(count == 1 ? "" : "s", TimeText(survey.when)),
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

void SurveyDocument::Restore(Recovery::Found found) {
    const UnsavedSurvey survey = found.survey;
    DoClose();
    bool fits = false;
    if (QFileInfo::exists(survey.path)) {
        DoOpen(survey.path, true, -1);
        fits = isWhole_ && watch_.Digest() == survey.digest;
        if (!fits) {
            DoClose();
            state_.dialogs.MsgBox(survey.path +
                                      " was changed since then. What was not saved is restored as "
                                      "a survey without a name.",
                                  MsgIcon::Information);
        }
    }
    if (!fits) {
        const QString path = NewSurveyFile();
        if (!survey.scales.scales.empty()) {
            Connection file;
            file.Open(path);
            WriteScales(file, survey.scales);
        }
        DoOpen(path, true, -1);
    }
    int selected = 1;
    for (std::size_t i = 0; i < survey.design.questions.size(); ++i)
        if (survey.design.questions[i].Key == survey.design.selectedKey)
            selected = static_cast<int>(i) + 1;
    Show(survey.design, selected);
    state_.MarkFileChanged();
    recovery_.Files().Adopt(std::move(found));
}

} // namespace pollarix
