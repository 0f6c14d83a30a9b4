#include "document/SurveyFileWatch.h"

#include "document/SurveyReader.h"
#include "platform/base/Failure.h"

namespace pollarix {

namespace {

QStringList FirstAndLastRespondent(Connection& survey) {
    QStringList found;
    // The time is to the millisecond, so that no two surveys share one by chance.
    for (const char* sql :
         {"SELECT id, submitteddate, source FROM respondent ORDER BY id LIMIT 1",
          "SELECT id, submitteddate, source FROM respondent ORDER BY id DESC LIMIT 1"}) {
        const Recordset row = survey.Execute(sql);
        if (!row.AtEnd())
            found << row.Text(0) + '|' + row.NullToString(1) + '|' + row.NullToString(2);
    }
    return found;
}

} // namespace

void SurveyFileWatch::Note(Connection& survey) {
    noted_.reset();
    const std::optional<FileState> file = StateOfFile(survey.Path());
    if (!file)
        return;
    Noted noted{*file, survey.DataVersion(), survey.OwnChanges(), DigestOfDesign(survey), {}, {}};
    noted_ = std::move(noted);
    NoteContent(survey);
}

void SurveyFileWatch::NoteContent(Connection& survey) {
    noted_->scales = ReadScales(survey);
    noted_->respondents = FirstAndLastRespondent(survey);
}

SurveyFileWatch::Found SurveyFileWatch::Look(Connection& survey) {
    if (!noted_)
        return Found::Same;
    const std::optional<FileState> file = StateOfFile(survey.Path());
    if (!file)
        return Found::Same;
    if (!file->IsSameFile(noted_->file))
        return Found::Replaced;
    try {
        const std::int64_t version = survey.DataVersion();
        const std::int64_t changes = survey.OwnChanges();
        const bool wrote = changes != noted_->changes;
        if (version == noted_->version && (wrote || *file == noted_->file)) {
            noted_->file = *file;
            noted_->changes = changes;
            if (wrote)
                NoteContent(survey);
            return Found::Same;
        }
        // A new connection: who writes past the database leaves what ours has read in its place.
        Connection now;
        now.Open(survey.Path());
        if (DigestOfDesign(now) != noted_->digest)
            return Found::Overwritten;
        survey.Swap(now);
        noted_->file = *file;
        noted_->version = survey.DataVersion();
        noted_->changes = survey.OwnChanges();
        NoteContent(survey);
        return Found::Same;
    } catch (const Failure& failure) {
        if (IsBusy(failure))
            throw;
        return Found::Overwritten;
    }
}

bool SurveyFileWatch::HoldsOurRespondents(const QString& path) const {
    if (!noted_)
        return false;
    try {
        Connection survey;
        survey.Open(path);
        for (const QString& respondent : noted_->respondents) {
            const Recordset row =
                survey.Execute("SELECT id, submitteddate, source FROM respondent WHERE id = ?",
                               {respondent.section('|', 0, 0)});
            if (!row.AtEnd() &&
                respondent == row.Text(0) + '|' + row.NullToString(1) + '|' + row.NullToString(2))
                return true;
        }
    } catch (const Failure&) {
        // What is no survey holds nothing.
    }
    return false;
}

const QByteArray& SurveyFileWatch::Digest() const {
    static const QByteArray none;
    return noted_ ? noted_->digest : none;
}

const SurveyScales& SurveyFileWatch::Scales() const {
    static const SurveyScales none;
    return noted_ ? noted_->scales : none;
}

void SurveyFileWatch::RefreshScales(Connection& survey) {
    if (!noted_ || !survey.IsOpen() || survey.OwnChanges() == noted_->changes)
        return;
    try {
        noted_->scales = ReadScales(survey);
    } catch (const Failure&) {
        // The file is away or held just now.
    }
}

} // namespace pollarix
