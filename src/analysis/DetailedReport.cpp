#include "analysis/DetailedReport.h"

#include "analysis/AnswerVisitor.h"
#include "analysis/SaveCommand.h"
#include "platform/base/Formats.h"
#include "platform/richtext/RichText.h"

namespace pollarix {

namespace {

QString DateOf(const Respondent& respondent) {
    return respondent.submitteddate ? GeneralDate(StoredDate(*respondent.submitteddate))
                                    : QString();
}

class Report : public AnswerVisitor {
  public:
    Report(RichTextFileWriter& out, const ReportSurvey& layout) : out_(out), layout_(layout) {}

    void Begin(const Respondent& respondent) override {
        out_.SetSelBold(true);
        const double size = out_.SelFontSize();
        out_.SetSelFontSize(size + 1);
        out_.Append(respondent.source.value_or(QString()) + " on " + DateOf(respondent) + "\r\n");
        out_.SetSelBold(false);
        out_.SetSelFontSize(size);
        out_.Append(u"\r\n");
    }

    void Ask(std::size_t place, const ReportQuestion& question) override {
        // Made for the first respondent: without one no question's text is read.
        if (headLines_.size() == place)
            headLines_.push_back(question.HeadLine() + "\r\n");
        out_.SetSelBold(true);
        out_.Append(headLines_[place]);
        out_.SetSelBold(false);
        text_.resize(0); // keeps its memory
    }

    void OpenEnded(const QuestionAnswers& answers) override {
        const QString* const answer = answers.Text();
        text_ += '\t';
        text_ += answer ? QString(*answer).replace("\r\n", "\r\n\t") : "Data not found";
        text_ += "\r\n";
        out_.Append(text_);
    }

    void Choices(const QuestionAnswers& answers) override {
        for (const ReportAnswer& answer : answers.stored)
            text_ += '\t' + answers.question.responses[answer.response] + "\r\n";
        out_.Append(text_);
    }

    void Matrix(const QuestionAnswers& answers) override {
        const std::vector<const ReportAnswer*>& byResponse = answers.ByResponse();
        for (std::size_t i = 0; i < byResponse.size(); ++i) {
            text_ += '\t' + answers.question.responses[i] + '\t';
            // Without an answer no line end follows: the next sub question goes on in the same
            // line, and behind the last one the next question does.
            if (byResponse[i] && byResponse[i]->point >= 0)
                text_ += layout_.points[byResponse[i]->point] + "\r\n";
        }
        out_.Append(text_);
    }

    void End() override { out_.Append(u"\r\n"); }

  private:
    RichTextFileWriter& out_;
    const ReportSurvey& layout_;
    std::vector<QString> headLines_;
    QString text_; // of the question being answered
};

} // namespace

void DetailedReport::mnuAnalyseDetail_Click() {
    RunReportCommand(state_, work_,
                     {.fileName = "DetailReport.rtf",
                      .progress = "Detailed report: respondent",
                      .offer = "View detailed report now?",
                      .write = &DetailedReport::Write});
}

void DetailedReport::Write(Connection& survey, const QString& path, const ProgressStep& step) {
    RichTextFileWriter out(path);
    const std::int64_t count = survey.Count("SELECT count(*) FROM respondent");
    out.Append(QString::number(count) + " respondents have completed this survey.\r\n");
    out.Append(u"\r\n");

    const ReportSurvey layout(survey);
    Report report(out, layout);
    VisitAnswers(survey, layout, report, step);
    out.Save();
}

} // namespace pollarix
