#include "analysis/SurveyExport.h"

#include <QByteArray>

#include "analysis/AnswerVisitor.h"
#include "analysis/BlockWriter.h"
#include "analysis/HtmlQuestionnaire.h"
#include "analysis/PdfQuestionnaire.h"
#include "analysis/SaveCommand.h"
#include "analysis/TableExport.h"
#include "labelled/LabelledFile.h"
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

class Lines : public AnswerVisitor {
  public:
    Lines(BlockWriter& out, const ReportSurvey& layout)
        : out_(out), line_(out.Text()), points_(FieldsOf(layout.points)) {
        for (const ReportQuestion& question : layout.questions)
            responses_.push_back(FieldsOf(question.responses));
    }

    void Begin(const Respondent& respondent) override {
        line_ += FieldOf(respondent.source);
        line_ += ", ";
        if (!respondent.submitteddate)
            throw Failure(failure::InvalidNull);
        line_ += FieldOf(GeneralDate(StoredDate(*respondent.submitteddate)));
    }
    void OpenEnded(const QuestionAnswers& answers) override {
        const QString* const answer = answers.Text();
        line_ += ", ";
        line_ += answer ? FieldOf(*answer) : QByteArray("\"Data not found\"");
    }
    void Choices(const QuestionAnswers& answers) override {
        for (const ReportAnswer& answer : answers.stored)
            line_ += responses_[answers.place][answer.response];
    }
    void Matrix(const QuestionAnswers& answers) override {
        const std::vector<const ReportAnswer*>& byResponse = answers.ByResponse();
        for (std::size_t i = 0; i < byResponse.size(); ++i) {
            line_ += responses_[answers.place][i];
            if (byResponse[i] && byResponse[i]->point >= 0)
                line_ += points_[byResponse[i]->point];
        }
    }
    void End() override {
        line_ += "\r\n";
        out_.WriteIfFull();
    }

  private:
    BlockWriter& out_;
    QByteArray& line_;
    std::vector<QByteArray> points_;
    std::vector<std::vector<QByteArray>> responses_; // by question
};

// Each entry of the dialog's list of file types, and what writes it.
struct ExportFormat {
    const char* name;
    const char* pattern;
    void (*write)(Connection& survey, const QString& path, const ProgressStep& step);
};

template <auto Writer>
void WriteLabelled(Connection& survey, const QString& path, const ProgressStep& step) {
    Writer(survey, path, {}, step);
}

constexpr ExportFormat Formats[] = {
    {"Comma Seperated Values (*.csv)", "*.csv", &SurveyExport::Write},
    {"UTF-8 table (*.csv)", "*.csv", &TableExport::Write},
    {"SPSS (*.sav)", "*.sav", &WriteLabelled<labelled::WriteSav>},
    {"Stata (*.dta)", "*.dta", &WriteLabelled<labelled::WriteDta>},
    {"Excel workbook (*.xlsx)", "*.xlsx", &WriteLabelled<labelled::WriteXlsx>},
    {"R script with its data (*.R)", "*.R", &WriteLabelled<labelled::WriteR>},
    {"Codebook (*.html)", "*.html", &WriteLabelled<labelled::WriteCodebook>},
    {"Blank questionnaire as a page (*.html)", "*.html", &HtmlQuestionnaire::Write},
    {"Blank questionnaire on paper (*.pdf)", "*.pdf", &PdfQuestionnaire::Write},
};

QString FilterOfFormats() {
    QStringList parts;
    for (const ExportFormat& format : Formats)
        parts << format.name << format.pattern;
    return parts.join('|');
}

} // namespace

void SurveyExport::mnuFileExport_Click() {
    FileDialogRequest request;
    request.title = "Save As";
    request.fileName = "SurveyExport.csv";
    request.filter = FilterOfFormats();
    request.promptOverwrite = true;
    RunSaveCommand(state_, work_, request, [this](const FileDialogResult& chosen) {
        work_.Do("Export: respondent", [&](const ProgressStep& step) {
            Formats[chosen.filterIndex].write(state_.SurveyConnection, chosen.fileName, step);
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
    const ReportSurvey layout(survey);
    Lines lines(out, layout);
    VisitAnswers(survey, layout, lines, step);
    out.Save();
}

} // namespace pollarix
