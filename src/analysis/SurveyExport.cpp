#include "analysis/SurveyExport.h"

#include <QByteArray>

#include "analysis/AnswerReader.h"
#include "analysis/BlockWriter.h"
#include "analysis/SaveCommand.h"
#include "analysis/TableExport.h"
#include "document/clsQ.h"
#include "platform/base/Failure.h"
#include "platform/base/Formats.h"
#include "platform/base/Windows1252.h"

namespace pollarix {

namespace {

// What stands for a name wherever it is a field of a line.
std::vector<QByteArray> FieldsOf(const std::vector<QString>& names) {
    std::vector<QByteArray> fields;
    for (const QString& name : names)
        fields.push_back(", " + ToWindows1252(SurveyExport::QuoteMe(name)));
    return fields;
}

QByteArray FieldOf(const std::optional<QString>& value) {
    if (!value)
        throw Failure(failure::InvalidNull);
    return ToWindows1252(SurveyExport::QuoteMe(*value));
}

void AddMatrix(QByteArray& line, const std::vector<QByteArray>& subQuestions,
               const std::vector<QByteArray>& points,
               const std::vector<const ReportAnswer*>& answers) {
    for (std::size_t i = 0; i < subQuestions.size(); ++i) {
        line += subQuestions[i];
        if (answers[i] && answers[i]->point >= 0)
            line += points[answers[i]->point];
    }
}

} // namespace

void SurveyExport::mnuFileExport_Click() {
    FileDialogRequest request;
    request.title = "Save As";
    request.fileName = "SurveyExport.csv";
    request.filter = "Comma Seperated Values (*.csv)|*.csv|UTF-8 table (*.csv)|*.csv";
    request.promptOverwrite = true;
    RunSaveCommand(state_.dialogs, work_, request, [this](const FileDialogResult& chosen) {
        work_.Do("Export: respondent", [&](const ProgressStep& step) {
            const auto write = chosen.filterIndex == 1 ? &TableExport::Write : &Write;
            write(state_.SurveyConnection, chosen.fileName, step);
        });
    });
}

QString SurveyExport::QuoteMe(const QString& s) {
    QString quoted;
    quoted.reserve(s.size() + 2);
    quoted += '"';
    for (const QChar character : s) {
        if (character != '"' && character != ',')
            quoted += character;
    }
    quoted += '"';
    return quoted;
}

void SurveyExport::Write(Connection& survey, const QString& path, const ProgressStep& step) {
    BlockWriter out(path);
    const std::int64_t count = survey.Count("SELECT count(*) FROM respondent");
    const ReportSurvey layout(survey);
    const std::vector<QByteArray> points = FieldsOf(layout.points);
    std::vector<std::vector<QByteArray>> responses;
    for (const ReportQuestion& question : layout.questions)
        responses.push_back(FieldsOf(question.responses));

    AnswerReader reader(survey, layout);
    for (std::int64_t done = 0; reader.Next(); ++done) {
        QByteArray& line = out.Text();
        line += FieldOf(reader.Current().source);
        line += ", ";
        if (!reader.Current().submitteddate)
            throw Failure(failure::InvalidNull);
        line += FieldOf(GeneralDate(StoredDate(*reader.Current().submitteddate)));
        for (std::size_t i = 0; i < layout.questions.size(); ++i) {
            step(done, count);
            const ReportQuestion& question = layout.questions[i];
            const std::span<const ReportAnswer> answers = reader.AnswersTo(i);
            if (question.qtype == kind::OpenEnded) {
                line += ", ";
                line += answers.empty() ? QByteArray("\"Data not found\"")
                                        : FieldOf(answers.front().simpleresponse);
            } else if (question.qtype == kind::Matrix) {
                AddMatrix(line, responses[i], points, reader.AnswersToMatrix(i));
            } else {
                for (const ReportAnswer& answer : answers) {
                    if (answer.response >= 0)
                        line += responses[i][answer.response];
                }
            }
        }
        line += "\r\n";
        out.WriteIfFull();
    }
    out.Save();
}

} // namespace pollarix
