#include "analysis/SummaryReport.h"

#include <cmath>

#include "document/Kinds.h"
#include "platform/base/Failure.h"
#include "platform/base/Formats.h"
#include "platform/richtext/RichText.h"

namespace pollarix {

namespace {

constexpr int DivisionByZero = 11;
// A scale stands again below each sub question: without a bound, a small file could fill the
// memory.
constexpr std::size_t MostRows = 1'000'000;

// The order is that of the text: "10" comes before "2".
constexpr const char* Questions = "SELECT question.id, question, qtype, questionno FROM question "
                                  "WHERE qtype<>4 ORDER BY questionno, id";

class Builder {
  public:
    Builder(Connection& file, AnswerCounts& counts, SummaryReport& report, std::int64_t responseID)
        : file_(file), counts_(counts), report_(report), responseID_(responseID) {}

    void AddQuestion(const Recordset& question) {
        const std::int64_t id = question.Integer(0);
        const std::int64_t qtype = question.Integer(2);
        const QString text =
            question.NullToString(3) + ". " + PlainTextOf(question.NullToString(1));
        // After a matrix this row is the matrix's last one, which is overwritten. Required.
        Write({qtype == kind::OpenEnded ? "n/a" : "", text, -1});
        report_.AddEntry(-1, -1);
        if (qtype == kind::Matrix)
            AddMatrix(id);
        else
            AddChoices(id);
    }

  private:
    void Write(SummaryRow row) {
        if (R_ > MostRows)
            throw Failure(failure::Overflow, "The summary has too many rows");
        if (R_ >= report_.rows.size())
            report_.rows.resize(R_ + 1);
        report_.rows[R_] = std::move(row);
    }

    void SelectIfAsked(std::int64_t response) {
        if (response == responseID_)
            report_.row = static_cast<std::int64_t>(R_);
    }

    void AddChoices(std::int64_t question) {
        ++R_;
        for (const Choice& choice : ChoicesOf(file_, question)) {
            const std::int64_t count = counts_.OfChoice(choice.id, question);
            report_.AddEntry(Narrow32(count), -1);
            Write({PercentageText(count, report_.totals.all), "     " + choice.name, choice.id});
            SelectIfAsked(choice.id);
            ++R_;
        }
    }

    void AddMatrix(std::int64_t question) {
        for (const Choice& sub : ChoicesOf(file_, question)) {
            report_.AddEntry(0, sub.id);
            ++R_;
            Write({"", "     " + sub.name, sub.id});
            SelectIfAsked(sub.id);
            report_.AddEntry(0, sub.id);
            ++R_;
            AddPoints(sub);
        }
        // R stays on the last row written, not on the next free one. Required: the graph counts on
        // the entries being one ahead from here.
    }

    void AddPoints(const Choice& sub) {
        const std::vector<Point> points = PointsOf(file_, sub.group);
        for (std::size_t i = 0; i < points.size(); ++i) {
            if (i > 0) {
                ++R_;
                report_.AddEntry(0, sub.id);
            }
            const std::int64_t count = counts_.OfPoint(sub.id, points[i].id);
            Write(
                {PercentageText(count, report_.totals.all), "          " + points[i].name, sub.id});
        }
    }

    Connection& file_;
    AnswerCounts& counts_;
    SummaryReport& report_;
    std::int64_t responseID_;
    std::size_t R_ = 1;
};

} // namespace

void SummaryReport::AddEntry(std::int32_t count, std::int64_t key) {
    SummaryKeys.push_back(Narrow16(key));
    SummaryCounts.push_back(count);
}

QString PercentageText(std::int64_t count, std::int64_t total) {
    if (count == 0)
        return "0.0%";
    if (total == 0)
        throw Failure(DivisionByZero, "Division by zero");
    const double share = static_cast<double>(count) / static_cast<double>(total) * 100;
    return GeneralNumber(std::nearbyint(share * 10) / 10) + '%';
}

void CheckSummary(Connection& file) {
    file.Execute(Questions);
    CheckCounts(file);
    const bool nobody = file.Execute("SELECT source FROM respondent LIMIT 1").AtEnd();
    if (nobody && !file.Execute("SELECT id FROM respondent_responses LIMIT 1").AtEnd()) {
        SummaryReport report;
        AnswerCounts counts;
        counts.LookAt(file);
        ReadSummary(file, counts, 1, 0, report); // divides by nobody for each answer that counts
    }
}

void ReadSummary(Connection& file, AnswerCounts& counts, std::int64_t Row, std::int64_t ResponseID,
                 SummaryReport& report) {
    report.row = Row;
    Builder builder(file, counts, report, ResponseID);
    for (Recordset question = file.Execute(Questions); !question.AtEnd(); question.MoveNext())
        builder.AddQuestion(question);
    if (report.row >= static_cast<std::int64_t>(report.rows.size()))
        report.row = static_cast<std::int64_t>(report.rows.size()) - 1;
}

} // namespace pollarix
