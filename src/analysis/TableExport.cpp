#include "analysis/TableExport.h"

#include <algorithm>

#include "analysis/AnswerVisitor.h"
#include "analysis/BlockWriter.h"
#include "platform/base/Formats.h"
#include "platform/richtext/RichText.h"
#include "tables/ColumnTitles.h"
#include "tables/FormulaGuard.h"

namespace pollarix {

namespace {

constexpr const char* Utf8Mark = "\xEF\xBB\xBF";

// Quoted only where it must be: readers that know no quotes can then read most files, and the byte
// order mark never stands in front of a quote.
QByteArray Cell(const QString& text) {
    QByteArray cell = text.toUtf8();
    if (tables::NeedsGuard(text))
        cell.prepend('\'');
    const bool quote = std::any_of(cell.cbegin(), cell.cend(), [](char byte) {
        return byte == '"' || byte == ',' || byte == '\r' || byte == '\n';
    });
    return quote ? '"' + cell.replace("\"", "\"\"") + '"' : cell;
}

// To the second. With a blank and not a "T" between date and time, spreadsheets know it for a date.
QByteArray IsoDate(const QDateTime& when) {
    return (when.date().toString(Qt::ISODate) + ' ' + when.time().toString(Qt::ISODate)).toLatin1();
}

std::vector<QByteArray> CellsOf(const std::vector<QString>& names) {
    std::vector<QByteArray> cells;
    for (const QString& name : names)
        cells.push_back(Cell(name));
    return cells;
}

bool HasColumnForEachResponse(const ReportQuestion& question) {
    return question.AnswerShape() != Shape::Text && question.AnswerShape() != Shape::One;
}

class HeadLine {
  public:
    explicit HeadLine(QByteArray& line) : line_(line) {}

    void Add(const QString& title) {
        if (!isFirst_)
            line_ += ',';
        isFirst_ = false;
        line_ += Cell(titles_.Add(title));
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
    QByteArray& line_;
    tables::ColumnTitles titles_;
    bool isFirst_ = true;
};

class Rows : public AnswerVisitor {
  public:
    Rows(BlockWriter& out, const ReportSurvey& layout)
        : out_(out), line_(out.Text()), points_(CellsOf(layout.points)) {}

    void Begin(const Respondent& respondent) override {
        line_ += QByteArray::number(static_cast<qlonglong>(respondent.id)) + ',';
        if (respondent.submitteddate)
            line_ += IsoDate(StoredDate(*respondent.submitteddate));
        line_ += ',' + Cell(respondent.source.value_or(QString()));
    }

    // A stored answer without text is an empty cell here.
    void OpenEnded(const QuestionAnswers& answers) override {
        line_ += ',';
        if (!answers.stored.empty())
            line_ += Cell(answers.stored.front().simpleresponse.value_or(QString()));
    }

    void Choices(const QuestionAnswers& answers) override {
        if (HasColumnForEachResponse(answers.question)) {
            // The mean of such a column is the share that the summary shows for the choice.
            for (const ReportAnswer* answer : answers.ByResponse())
                line_ += answer ? ",1" : ",0";
            return;
        }
        // One cell for the answer to a radio question; should a file hold several, none is lost.
        QStringList names;
        for (const ReportAnswer& answer : answers.stored)
            names << answers.question.responses[answer.response];
        line_ += ',' + Cell(names.join("; "));
    }

    void Matrix(const QuestionAnswers& answers) override {
        for (const ReportAnswer* answer : answers.ByResponse()) {
            line_ += ',';
            if (answer && answer->point >= 0)
                line_ += points_[answer->point];
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
};

} // namespace

void TableExport::Write(Connection& survey, const QString& path, const ProgressStep& step) {
    BlockWriter out(path);
    const ReportSurvey layout(survey);

    QByteArray& line = out.Text();
    line += Utf8Mark;
    HeadLine head(line);
    for (const char* title : {tables::IdTitle, tables::DateTitle, tables::SourceTitle})
        head.Add(title);
    for (const ReportQuestion& question : layout.questions)
        head.AddQuestion(question);
    line += "\r\n";

    Rows rows(out, layout);
    VisitAnswers(survey, layout, rows, step);
    out.Save();
}

} // namespace pollarix
