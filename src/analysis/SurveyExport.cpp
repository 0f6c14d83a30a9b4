#include "analysis/SurveyExport.h"

#include <QByteArray>

#include <algorithm>

#include "analysis/AnswerVisitor.h"
#include "analysis/BlockWriter.h"
#include "analysis/HtmlQuestionnaire.h"
#include "analysis/PdfQuestionnaire.h"
#include "analysis/RespondentDates.h"
#include "analysis/SaveCommand.h"
#include "analysis/TableExport.h"
#include "labelled/LabelledFile.h"
#include "platform/base/Failure.h"
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

bool IsAscii(QByteArrayView text) {
    return std::all_of(text.begin(), text.end(),
                       [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

class Lines : public AnswerVisitor {
  public:
    Lines(BlockWriter& out, const ReportSurvey& layout)
        : out_(out), points_(FieldsOf(layout.points)) {
        for (const ReportQuestion& question : layout.questions)
            responses_.push_back(FieldsOf(question.responses));
    }

    void Begin(const Respondent& respondent) override {
        if (!respondent.source || !respondent.submitteddate)
            throw Failure(failure::InvalidNull);
        AddField(*respondent.source);
        out_.Add(", ");
        out_.Add(ToWindows1252(SurveyExport::QuoteMe(dates_.General(*respondent.submitteddate))));
    }
    void OpenEnded(const QuestionAnswers& answers) override {
        const QByteArray* const answer = answers.Text();
        out_.Add(", ");
        if (answer)
            AddField(*answer);
        else
            out_.Add("\"Data not found\"");
    }
    void Choices(const QuestionAnswers& answers) override {
        const std::vector<QByteArray>& responses = responses_[answers.place];
        for (const ReportAnswer& answer : answers.stored)
            out_.Add(responses[static_cast<std::size_t>(answer.response)]);
    }
    void Matrix(const QuestionAnswers& answers) override {
        const std::vector<const ReportAnswer*>& byResponse = answers.ByResponse();
        const std::vector<QByteArray>& responses = responses_[answers.place];
        for (std::size_t i = 0; i < byResponse.size(); ++i) {
            out_.Add(responses[i]);
            if (byResponse[i] && byResponse[i]->point >= 0)
                out_.Add(points_[static_cast<std::size_t>(byResponse[i]->point)]);
        }
    }
    void End() override { out_.Add("\r\n"); }

  private:
    // What QuoteMe makes of the text, without its letters being converted where all are ASCII.
    void AddField(QByteArrayView utf8) {
        if (!IsAscii(utf8)) {
            out_.Add(ToWindows1252(SurveyExport::QuoteMe(TextOfUtf8(utf8))));
            return;
        }
        out_.Add('"');
        for (auto from = utf8.begin(); from != utf8.end();) {
            const auto to = std::find_if(from, utf8.end(),
                                         [](char byte) { return byte == '"' || byte == ','; });
            out_.Add({from, to});
            from = to == utf8.end() ? to : to + 1;
        }
        out_.Add('"');
    }

    BlockWriter& out_;
    RespondentDates dates_;
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
    QString quoted(s.size() + 2, '"');
    QChar* const end =
        std::remove_copy_if(s.begin(), s.end(), quoted.begin() + 1,
                            [](QChar character) { return character == '"' || character == ','; });
    *end = '"';
    quoted.truncate(end + 1 - quoted.constData());
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
