#include "analysis/PaperSurvey.h"

#include <algorithm>

#include "analysis/AnswerCounts.h"
#include "analysis/SaveCommand.h"
#include "document/Kinds.h"
#include "platform/base/Failure.h"
#include "platform/richtext/RichText.h"

namespace pollarix {

namespace {

// A hollow box, alone or with a tab before or behind it: "o" in this font.
void AppendBox(RichTextFileWriter& out, QStringView box) {
    const QString kept = out.SelFontName();
    out.SetSelFontName("Wingdings");
    out.Append(box);
    out.SetSelFontName(kept);
}

// Without a scale there is nothing to tick, and the form would be one that can't be filled in.
std::vector<Point> PointsFor(Connection& survey, const Choice& sub) {
    if (!sub.group)
        throw Failure(failure::InvalidNull, "\"" + sub.name + "\" has no response scale");
    return PointsOf(survey, sub.group);
}

// Each sub question prints the points of its own scale; the head is that of the first, which must
// therefore be there.
void AppendMatrix(RichTextFileWriter& out, Connection& survey, std::int64_t questionId) {
    const std::vector<Choice> subs = ChoicesOf(survey, questionId);
    if (subs.empty())
        throw Failure(failure::NoCurrentRecord);
    out.Append(u"\t\t");
    for (const Point& point : PointsFor(survey, subs.front()))
        out.Append(point.name + '\t');
    out.Append(u"\r\n");
    for (const Choice& sub : subs) {
        out.Append(sub.name + '\t');
        for ([[maybe_unused]] const Point& point : PointsFor(survey, sub))
            AppendBox(out, u"o\t");
        out.Append(u"\r\n");
    }
}

// The answers stand in the order in which they were made, not in that of the screen.
void AppendChoices(RichTextFileWriter& out, Connection& survey, std::int64_t questionId) {
    std::vector<Choice> choices = ChoicesOf(survey, questionId);
    std::ranges::sort(choices, {}, &Choice::id);
    for (const Choice& choice : choices) {
        out.Append('\t' + choice.name);
        AppendBox(out, u"\to");
        out.Append(u"\r\n");
    }
}

} // namespace

void PaperSurvey::mnuDataCollectionPaperSurvey_Click() {
    RunReportCommand(state_, work_,
                     {.fileName = "PaperSurvey.rtf",
                      .progress = "Paper based survey: question",
                      .offer = "View paper based survey now?",
                      .write = &PaperSurvey::Write});
}

void PaperSurvey::Write(Connection& survey, const QString& path, const ProgressStep& step) {
    RichTextFileWriter out(path);
    out.Append(u"\r\n");
    out.Append(u"\r\n");
    const std::int64_t count = survey.Count("SELECT count(*) FROM question");
    std::int64_t done = 0;
    for (Recordset questions = survey.Execute("SELECT id, question, qtype, questionno "
                                              "FROM question ORDER BY pos, id");
         !questions.AtEnd(); questions.MoveNext()) {
        step(++done, count);
        const std::int64_t id = questions.Integer("id");
        out.SetSelBold(true);
        const double size = out.SelFontSize();
        out.SetSelFontSize(size + 1);
        out.Append(questions.NullToString("questionno") + ". " +
                   PlainTextOf(questions.Text("question")) + "\r\n");
        out.SetSelBold(false);
        out.SetSelFontSize(size);
        out.Append(u"\r\n");

        switch (questions.Integer("qtype")) {
        case kind::OpenEnded:
        case kind::Text: // an instruction text gets the same lines
            out.Append(u"\r\n\r\n\r\n");
            break;
        case kind::Matrix:
            AppendMatrix(out, survey, id);
            break;
        case kind::Radio:
            out.Append(u"Please select just one of the following.\r\n\r\n");
            AppendChoices(out, survey, id);
            break;
        default:
            out.Append(u"Please select any of the following.\r\n\r\n");
            AppendChoices(out, survey, id);
        }
        out.Append(u"\r\n");
    }
    out.Save();
}

} // namespace pollarix
