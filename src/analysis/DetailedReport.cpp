#include "analysis/DetailedReport.h"

#include "analysis/AnswerVisitor.h"
#include "analysis/RespondentDates.h"
#include "analysis/SaveCommand.h"
#include "platform/richtext/RichText.h"

namespace pollarix {

namespace {

class Report : public AnswerVisitor {
  public:
    Report(RichTextFileWriter& out, const ReportSurvey& layout) : out_(out) {
        for (const QString& point : layout.points)
            points_.emplace_back(point + "\r\n");
    }

    void Begin(const Respondent& respondent) override {
        out_.SetSelBold(true);
        const double size = out_.SelFontSize();
        out_.SetSelFontSize(size + 1);
        out_.Append(
            TextOfUtf8(respondent.source.value_or(QByteArray())) + " on " +
            (respondent.submitteddate ? dates_.General(*respondent.submitteddate) : QString()) +
            "\r\n");
        out_.SetSelBold(false);
        out_.SetSelFontSize(size);
        out_.Append(u"\r\n");
    }

    void Ask(std::size_t place, const ReportQuestion& question) override {
        // Made for the first respondent: without one no question's text is read.
        if (questions_.size() == place)
            questions_.emplace_back(question);
        out_.SetSelBold(true);
        out_.Append(questions_[place].headLine);
        out_.SetSelBold(false);
    }

    void OpenEnded(const QuestionAnswers& answers) override {
        const QByteArray* const answer = answers.Text();
        if (!answer) {
            out_.Append(noAnswer_);
            return;
        }
        out_.Append('\t' + TextOfUtf8(*answer).replace("\r\n", "\r\n\t") + "\r\n");
    }

    void Choices(const QuestionAnswers& answers) override {
        for (const ReportAnswer& answer : answers.stored)
            out_.Append(
                questions_[answers.place].choices[static_cast<std::size_t>(answer.response)]);
    }

    void Matrix(const QuestionAnswers& answers) override {
        const std::vector<const ReportAnswer*>& byResponse = answers.ByResponse();
        for (std::size_t i = 0; i < byResponse.size(); ++i) {
            out_.Append(questions_[answers.place].subQuestions[i]);
            // Without an answer no line end follows: the next sub question goes on in the same
            // line, and behind the last one the next question does.
            if (byResponse[i] && byResponse[i]->point >= 0)
                out_.Append(points_[static_cast<std::size_t>(byResponse[i]->point)]);
        }
    }

    void End() override { out_.Append(u"\r\n"); }

  private:
    struct Question {
        explicit Question(const ReportQuestion& question) : headLine(question.HeadLine() + "\r\n") {
            for (const QString& response : question.responses) {
                choices.emplace_back('\t' + response + "\r\n");
                subQuestions.emplace_back('\t' + response + '\t');
            }
        }
        RepeatedText headLine;
        std::vector<RepeatedText> choices;
        std::vector<RepeatedText> subQuestions;
    };

    RichTextFileWriter& out_;
    RespondentDates dates_;
    std::vector<Question> questions_;
    std::vector<RepeatedText> points_;
    const RepeatedText noAnswer_{"\tData not found\r\n"};
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
