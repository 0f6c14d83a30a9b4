#include "analysis/ReportSurvey.h"

#include "platform/base/Failure.h"
#include "platform/richtext/RichText.h"

namespace pollarix {

QString ReportQuestion::PlainText() const {
    if (!question)
        throw Failure(failure::InvalidNull);
    return PlainTextOf(*question);
}

ReportSurvey::ReportSurvey(Connection& survey) {
    for (Recordset rows = survey.Execute("SELECT id, question, qtype, questionno FROM question "
                                         "WHERE qtype <> 4 ORDER BY pos, id");
         !rows.AtEnd(); rows.MoveNext()) {
        ReportQuestion question;
        question.id = rows.Integer("id");
        question.qtype = Narrow32(rows.Integer("qtype"));
        question.questionno = rows.NullToString("questionno");
        if (!rows.IsNull("question"))
            question.question = rows.Text("question");
        questionPlaces.Insert(question.id, {static_cast<int>(questions.size())});
        questions.push_back(std::move(question));
    }
    for (Recordset rows = survey.Execute(
             "SELECT id, questionid, name FROM response ORDER BY questionid, pos, id");
         !rows.AtEnd(); rows.MoveNext()) {
        const int owner = questionPlaces.Of(rows.Integer("questionid")).at;
        if (owner < 0)
            continue;
        std::vector<QString>& responses = questions[static_cast<std::size_t>(owner)].responses;
        responsePlaces.Insert(rows.Integer("id"), {owner, static_cast<int>(responses.size())});
        responses.push_back(rows.NullToString("name"));
    }
    for (Recordset rows = survey.Execute("SELECT id, name FROM responsematrix"); !rows.AtEnd();
         rows.MoveNext()) {
        pointPlaces.Insert(rows.Integer("id"), {static_cast<int>(points.size())});
        points.push_back(rows.NullToString("name"));
    }
}

} // namespace pollarix
