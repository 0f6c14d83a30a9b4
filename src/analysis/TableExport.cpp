#include "analysis/TableExport.h"

#include <QHash>
#include <QSet>

#include <algorithm>

#include "analysis/AnswerReader.h"
#include "analysis/BlockWriter.h"
#include "document/clsQ.h"
#include "platform/base/Failure.h"
#include "platform/base/Formats.h"
#include "platform/richtext/RichText.h"

namespace pollarix {

namespace {

constexpr const char* Utf8Mark = "\xEF\xBB\xBF";

// Quoted only where it must be: readers that know no quotes can then read most files, and the byte
// order mark never stands in front of a quote.
QByteArray Cell(const QString& text) {
    QByteArray cell = text.toUtf8();
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
    return question.qtype != kind::OpenEnded && question.qtype != kind::Radio;
}

// Titles of the columns, each in one line and no two alike: programs take them for names.
class HeadLine {
  public:
    explicit HeadLine(QByteArray& line) : line_(line) {}

    void Add(const QString& title) {
        const QString simple = title.simplified();
        QString unique = simple;
        for (int& number = numbers_[simple]; titles_.contains(unique); ++number)
            unique = simple + QString(" (%1)").arg(number + 2);
        if (!titles_.isEmpty())
            line_ += ',';
        titles_.insert(unique);
        line_ += Cell(unique);
    }

    void AddQuestion(const ReportQuestion& question) {
        const QString text =
            (question.questionno.isEmpty() ? QString() : question.questionno + ". ") +
            (question.question ? question.PlainText() : QString());
        if (!HasColumnForEachResponse(question))
            Add(text);
        else
            for (const QString& response : question.responses)
                Add(text + ": " + response);
    }

  private:
    QByteArray& line_;
    QSet<QString> titles_;
    QHash<QString, int> numbers_; // how many are taken of those set behind a title, from 2
};

// One cell for the answer to a radio question; should a file hold several, none is lost.
void AddChosen(QByteArray& line, const ReportQuestion& question,
               std::span<const ReportAnswer> answers) {
    QStringList names;
    for (const ReportAnswer& answer : answers) {
        if (answer.response >= 0)
            names << question.responses[answer.response];
    }
    line += ',' + Cell(names.join("; "));
}

// The mean of such a column is the share that the summary shows for the choice.
void AddTicks(QByteArray& line, const std::vector<const ReportAnswer*>& answers) {
    for (const ReportAnswer* answer : answers)
        line += answer ? ",1" : ",0";
}

void AddPoints(QByteArray& line, const std::vector<QByteArray>& points,
               const std::vector<const ReportAnswer*>& answers) {
    for (const ReportAnswer* answer : answers) {
        line += ',';
        if (answer && answer->point >= 0)
            line += points[answer->point];
    }
}

} // namespace

void TableExport::Write(Connection& survey, const QString& path, const ProgressStep& step) {
    BlockWriter out(path);
    const std::int64_t count = survey.Count("SELECT count(*) FROM respondent");
    const ReportSurvey layout(survey);
    const std::vector<QByteArray> points = CellsOf(layout.points);

    QByteArray& line = out.Text();
    line += Utf8Mark;
    HeadLine head(line);
    for (const char* title : {"Respondent id", "Submitted", "Source"})
        head.Add(title);
    for (const ReportQuestion& question : layout.questions)
        head.AddQuestion(question);
    line += "\r\n";

    AnswerReader reader(survey, layout);
    for (std::int64_t done = 0; reader.Next(); ++done) {
        const Respondent& respondent = reader.Current();
        line += QByteArray::number(static_cast<qlonglong>(respondent.id)) + ',';
        if (respondent.submitteddate)
            line += IsoDate(StoredDate(*respondent.submitteddate));
        line += ',' + Cell(respondent.source.value_or(QString()));
        for (std::size_t i = 0; i < layout.questions.size(); ++i) {
            step(done, count);
            const ReportQuestion& question = layout.questions[i];
            const std::span<const ReportAnswer> answers = reader.AnswersTo(i);
            if (question.qtype == kind::OpenEnded)
                line += ',' + (answers.empty()
                                   ? QByteArray()
                                   : Cell(answers.front().simpleresponse.value_or(QString())));
            else if (question.qtype == kind::Radio)
                AddChosen(line, question, answers);
            else if (question.qtype == kind::Matrix)
                AddPoints(line, points, reader.AnswersToMatrix(i));
            else
                AddTicks(line, reader.AnswersToMatrix(i));
        }
        line += "\r\n";
        out.WriteIfFull();
    }
    out.Save();
}

} // namespace pollarix
