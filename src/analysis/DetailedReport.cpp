#include "analysis/DetailedReport.h"

#include "analysis/AnswerReader.h"
#include "analysis/SaveCommand.h"
#include "document/clsQ.h"
#include "platform/base/Failure.h"
#include "platform/base/Formats.h"
#include "platform/richtext/RichText.h"

namespace pollarix {

namespace {

QString DateOf(const Respondent& respondent) {
    return respondent.submitteddate ? GeneralDate(StoredDate(*respondent.submitteddate))
                                    : QString();
}

void AddOpenEnded(QString& text, std::span<const ReportAnswer> answers) {
    text += '\t';
    if (answers.empty()) {
        text += "Data not found";
    } else if (!answers.front().simpleresponse) {
        throw Failure(failure::InvalidNull);
    } else {
        QString answer = *answers.front().simpleresponse;
        text += answer.replace("\r\n", "\r\n\t");
    }
    text += "\r\n";
}

void AddMatrix(QString& text, const ReportQuestion& question, const ReportSurvey& layout,
               const std::vector<const ReportAnswer*>& answers) {
    for (std::size_t i = 0; i < question.responses.size(); ++i) {
        text += '\t' + question.responses[i] + '\t';
        // Without an answer no line end follows: the next sub question goes on in the same line,
        // and behind the last one the next question does.
        if (answers[i] && answers[i]->point >= 0)
            text += layout.points[answers[i]->point] + "\r\n";
    }
}

void AddChoices(QString& text, const ReportQuestion& question,
                std::span<const ReportAnswer> answers) {
    for (const ReportAnswer& answer : answers) {
        if (answer.response >= 0)
            text += '\t' + question.responses[answer.response] + "\r\n";
    }
}

} // namespace

void DetailedReport::mnuAnalyseDetail_Click() {
    FileDialogRequest request;
    request.title = "Save As";
    request.fileName = "DetailReport.rtf";
    request.filter = "Rich Text Format (*.rtf)|*.rtf";
    request.promptOverwrite = true;
    RunSaveCommand(state_.dialogs, work_, request, [this](const FileDialogResult& chosen) {
        work_.Do("Detailed report: respondent", [&](const ProgressStep& step) {
            Write(state_.SurveyConnection, chosen.fileName, step);
        });
        if (state_.dialogs.MsgBox("View detailed report now?", MsgIcon::Question,
                                  MsgButtons::YesNo) == MsgAnswer::Yes)
            state_.dialogs.OpenFile(chosen.fileName);
    });
}

void DetailedReport::Write(Connection& survey, const QString& path, const ProgressStep& step) {
    RichTextFileWriter out(path);
    const std::int64_t count = survey.Count("SELECT count(*) FROM respondent");
    out.Append(QString::number(count) + " respondents have completed this survey.\r\n");
    out.Append(u"\r\n");

    const ReportSurvey layout(survey);
    std::vector<QString> headLines; // made for the first respondent: without one nothing is read
    AnswerReader reader(survey, layout);
    QString text;
    for (std::int64_t done = 0; reader.Next(); ++done) {
        out.SetSelBold(true);
        const double size = out.SelFontSize();
        out.SetSelFontSize(size + 1);
        out.Append(reader.Current().source.value_or(QString()) + " on " + DateOf(reader.Current()) +
                   "\r\n");
        out.SetSelBold(false);
        out.SetSelFontSize(size);
        out.Append(u"\r\n");

        for (std::size_t i = 0; i < layout.questions.size(); ++i) {
            const ReportQuestion& question = layout.questions[i];
            step(done, count);
            if (headLines.size() == i)
                headLines.push_back(question.HeadLine() + "\r\n");
            out.SetSelBold(true);
            out.Append(headLines[i]);
            out.SetSelBold(false);

            text.resize(0); // keeps its memory
            if (question.qtype == kind::OpenEnded)
                AddOpenEnded(text, reader.AnswersTo(i));
            else if (question.qtype == kind::Matrix)
                AddMatrix(text, question, layout, reader.AnswersToMatrix(i));
            else
                AddChoices(text, question, reader.AnswersTo(i));
            out.Append(text);
        }
        out.Append(u"\r\n");
    }
    out.Save();
}

} // namespace pollarix
