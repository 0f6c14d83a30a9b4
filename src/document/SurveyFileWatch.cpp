#include "document/SurveyFileWatch.h"

#include <utility>

#include "document/SurveyReader.h"
#include "platform/base/Failure.h"

namespace pollarix {

namespace {

// The time is to the millisecond, so that no two surveys share one by chance.
QString RespondentIn(const Recordset& row) {
    return row.Text(0) + '|' + row.NullToString(1) + '|' + row.NullToString(2);
}

QStringList FirstAndLastRespondent(Connection& survey) {
    QStringList found;
    for (const char* sql :
         {"SELECT id, submitteddate, source FROM respondent ORDER BY id LIMIT 1",
          "SELECT id, submitteddate, source FROM respondent ORDER BY id DESC LIMIT 1"}) {
        const Recordset row = survey.Execute(sql);
        if (!row.AtEnd())
            found << RespondentIn(row);
    }
    return found;
}

} // namespace

// What fails stays as it was before: a table that is missing is told by whoever shows it.
SurveyFileWatch::Content SurveyFileWatch::Read(Connection& survey, Content before) {
    Content content = std::move(before);
    try {
        content.scales = ReadScales(survey);
        content.respondents = FirstAndLastRespondent(survey);
    } catch (const Failure&) {
    }
    return content;
}

void SurveyFileWatch::Note(Connection& survey) {
    noted_.reset();
    const std::optional<FileState> file = StateOfFile(survey.Path());
    if (!file)
        throw Failure(failure::FileNotFound, "File not found: " + survey.Path());
    Noted noted{*file, survey.DataVersion(), DigestOfDesign(survey), Read(survey, {})};
    noted_ = std::move(noted);
}

bool SurveyFileWatch::IsUntouched(Connection& survey) const {
    if (!noted_)
        return false;
    const std::optional<FileState> file = StateOfFile(survey.Path());
    return !file || (*file == noted_->file && survey.DataVersion() == noted_->version);
}

SurveyFileWatch::Found SurveyFileWatch::Look(Connection& survey) {
    if (!noted_)
        return Found::Unknown;
    const std::optional<FileState> file = StateOfFile(survey.Path());
    if (file && !file->IsSameFile(noted_->file))
        return Found::Replaced;
    try {
        if (IsUntouched(survey))
            return Found::Same;
        // A new connection: who writes past the database leaves what ours has read in its place.
        Connection now;
        now.Open(survey.Path());
        // One transaction: what is noted is what was compared.
        const Recordset reading = now.Execute("SELECT name FROM sqlite_schema");
        if (DigestOfDesign(now) != noted_->digest)
            return Found::Overwritten;
        const FileState compared = StateOfFile(survey.Path()).value_or(noted_->file);
        if (!compared.IsSameFile(noted_->file))
            return Found::Replaced;
        noted_->file = compared;
        noted_->version = now.DataVersion();
        noted_->content = Read(now, noted_->content);
        survey.Swap(now);
    } catch (const Failure& failure) {
        if (IsBusy(failure))
            throw;
        return Found::Overwritten;
    }
    return Found::Same;
}

void SurveyFileWatch::Commit(Connection& survey, WriteBatch& batch) {
    if (!noted_) {
        batch.Commit();
        return;
    }
    // Read before the end, while it can't be anybody else's.
    Content content = Read(survey, noted_->content);
    batch.Commit();
    noted_->content = std::move(content);
    // Another file may have taken the name while the batch was open; the next look tells of it.
    if (const std::optional<FileState> file = StateOfFile(survey.Path());
        file && file->IsSameFile(noted_->file))
        noted_->file = *file;
}

SurveyFileWatch::Answers SurveyFileWatch::AnswersIn(const QString& path) const {
    if (!noted_)
        return Answers::Unknown;
    try {
        Connection survey;
        survey.Open(path);
        for (const QString& respondent : noted_->content.respondents) {
            const Recordset row =
                survey.Execute("SELECT id, submitteddate, source FROM respondent WHERE id = ?",
                               {respondent.section('|', 0, 0)});
            if (!row.AtEnd() && respondent == RespondentIn(row))
                return Answers::Ours;
        }
        if (noted_->content.respondents.isEmpty() &&
            survey.Execute("SELECT id FROM respondent LIMIT 1").AtEnd())
            return Answers::None;
    } catch (const Failure&) {
        // What is no survey holds nothing that is known.
    }
    return Answers::Unknown;
}

} // namespace pollarix
