#include "analysis/TableExport.h"

#include <algorithm>
#include <string_view>

#include "analysis/AnswerVisitor.h"
#include "analysis/BlockWriter.h"
#include "analysis/RespondentDates.h"
#include "platform/richtext/RichText.h"
#include "tables/ColumnTitles.h"
#include "tables/FormulaGuard.h"

namespace pollarix {

namespace {

constexpr const char* Utf8Mark = "\xEF\xBB\xBF";

// Without the text being converted where its first letter tells.
bool IsGuarded(QByteArrayView text) {
    return !text.isEmpty() && QByteArrayView("=+-@\t\r'").contains(text[0]) &&
           tables::NeedsGuard(QString::fromUtf8(text));
}

// Adds a cell. Quoted only where it must be: readers that know no quotes can then read most files,
// and the byte order mark never stands in front of a quote.
void AddCell(BlockWriter& out, QByteArrayView text) {
    constexpr std::string_view special = ",\"\r\n";
    const bool guarded = IsGuarded(text);
    if (std::find_first_of(text.begin(), text.end(), special.begin(), special.end()) ==
        text.end()) {
        if (guarded)
            out.Add('\'');
        out.Add(text);
        return;
    }
    out.Add(guarded ? "\"'" : "\"");
    for (const char byte : text) {
        out.Add(byte);
        if (byte == '"')
            out.Add(byte);
    }
    out.Add('"');
}

// The same for a text as it is stored, whose bytes may be no letters of any kind.
void AddStored(BlockWriter& out, QByteArrayView text) {
    if (text.isValidUtf8())
        AddCell(out, text);
    else
        AddCell(out, TextOfUtf8(text).toUtf8());
}

std::vector<QByteArray> Utf8Of(const std::vector<QString>& names) {
    std::vector<QByteArray> utf8;
    for (const QString& name : names)
        utf8.push_back(name.toUtf8());
    return utf8;
}

bool HasColumnForEachResponse(const ReportQuestion& question) {
    return question.AnswerShape() != Shape::Text && question.AnswerShape() != Shape::One;
}

class HeadLine {
  public:
    explicit HeadLine(BlockWriter& out) : out_(out) {}

    void Add(const QString& title) {
        if (!isFirst_)
            out_.Add(',');
        isFirst_ = false;
        AddCell(out_, titles_.Add(title).toUtf8());
    }

    void AddQuestion(const ReportQuestion& question) {
        const QString text = tables::QuestionTitle(
            question.questionno, question.question ? question.PlainText() : QString());
        if (!HasColumnForEachResponse(question))
            Add(text);
        else
            for (const QString& response : question.responses)
                Add(text + ": " + response);
    }

  private:
    BlockWriter& out_;
    tables::ColumnTitles titles_;
    bool isFirst_ = true;
};

class Rows : public AnswerVisitor {
  public:
    Rows(BlockWriter& out, const ReportSurvey& layout) : out_(out) {
        points_ = Utf8Of(layout.points);
        for (const ReportQuestion& question : layout.questions)
            responses_.push_back(Utf8Of(question.responses));
    }

    void Begin(const Respondent& respondent) override {
        out_.Add(QByteArray::number(static_cast<qlonglong>(respondent.id)));
        out_.Add(',');
        if (respondent.submitteddate)
            out_.Add(dates_.Iso(*respondent.submitteddate));
        out_.Add(',');
        AddStored(out_, respondent.source.value_or(QByteArray()));
    }

    // A stored answer without text is an empty cell here.
    void OpenEnded(const QuestionAnswers& answers) override {
        out_.Add(',');
        if (!answers.stored.empty())
            AddStored(out_, answers.stored.front().simpleresponse.value_or(QByteArray()));
    }

    void Choices(const QuestionAnswers& answers) override {
        if (HasColumnForEachResponse(answers.question)) {
            // The mean of such a column is the share that the summary shows for the choice.
            for (const ReportAnswer* answer : answers.ByResponse())
                out_.Add(answer ? ",1" : ",0");
            return;
        }
        // One cell for the answer to a radio question; should a file hold several, none is lost.
        cell_.resize(0);
        for (const ReportAnswer& answer : answers.stored) {
            if (&answer != &answers.stored.front())
                cell_ += "; ";
            cell_ += responses_[answers.place][static_cast<std::size_t>(answer.response)];
        }
        out_.Add(',');
        AddCell(out_, cell_);
    }

    void Matrix(const QuestionAnswers& answers) override {
        for (const ReportAnswer* answer : answers.ByResponse()) {
            out_.Add(',');
            if (answer && answer->point >= 0)
                AddCell(out_, points_[static_cast<std::size_t>(answer->point)]);
        }
    }

    void End() override { out_.Add("\r\n"); }

  private:
    BlockWriter& out_;
    RespondentDates dates_;
    std::vector<QByteArray> points_;
    std::vector<std::vector<QByteArray>> responses_; // by question
    QByteArray cell_;
};

} // namespace

void TableExport::Write(Connection& survey, const QString& path, const ProgressStep& step) {
    BlockWriter out(path);
    const ReportSurvey layout(survey);

    out.Add(Utf8Mark);
    HeadLine head(out);
    for (const char* title : {tables::IdTitle, tables::DateTitle, tables::SourceTitle})
        head.Add(title);
    for (const ReportQuestion& question : layout.questions)
        head.AddQuestion(question);
    out.Add("\r\n");

    Rows rows(out, layout);
    VisitAnswers(survey, layout, rows, step);
    out.Save();
}

} // namespace pollarix
