#include "analysis/ResponseGraph.h"

#include "document/clsQ.h"
#include "platform/base/Failure.h"

namespace pollarix {

namespace {

std::vector<ChartRow> Choices(Connection& file, std::int64_t question) {
    std::vector<ChartRow> table;
    for (Recordset row = file.Execute(
             "SELECT id, name FROM response WHERE questionid = ? ORDER BY pos", {question});
         !row.AtEnd(); row.MoveNext())
        table.push_back(
            {' ' + row.NullToString(1),
             static_cast<double>(file.Count("SELECT COUNT(*) FROM respondent_responses WHERE "
                                            "responseid = ? AND questionid = ?",
                                            {row.Integer(0), question}))});
    return table;
}

std::optional<std::vector<ChartRow>> Points(Connection& file, std::int64_t question,
                                            std::int16_t key) {
    DbValue group;
    {
        const Recordset first = file.Execute("SELECT id, ResponseMatrixGroupID FROM response WHERE "
                                             "questionid = ? ORDER BY id",
                                             {question});
        if (first.AtEnd())
            return std::nullopt;
        if (!first.IsNull(1))
            group = first.Integer(1);
    }
    const std::int64_t n = file.Count(
        "SELECT COUNT(*) FROM responsematrix WHERE responsematrix.responsematrixgroupid = ?",
        {group});
    std::vector<ChartRow> table(static_cast<std::size_t>(n));
    const Recordset sub = file.Execute("SELECT id, name, responseMatrixGroupID FROM response WHERE "
                                       "id = ? AND questionid = ? ORDER BY pos",
                                       {key, question});
    if (sub.AtEnd())
        return table; // the key belongs to another question: the rows stay empty
    std::size_t i = 0;
    for (Recordset point =
             file.Execute("SELECT id, name FROM ResponseMatrix WHERE responseMatrixGroupID = ? "
                          "ORDER BY pos",
                          {sub.IsNull(2) ? DbValue() : DbValue(sub.Integer(2))});
         !point.AtEnd(); point.MoveNext(), ++i) {
        const std::int64_t count =
            file.Count("SELECT COUNT(*) FROM respondent_responses WHERE responseid = ? AND "
                       "responseMatrixID = ?",
                       {sub.Integer(0), point.Integer(0)});
        if (i >= table.size())
            throw Failure(failure::Subscript);
        table[i] = {' ' + point.NullToString(1), static_cast<double>(count)};
    }
    return table;
}

} // namespace

ChartType ChartTypeOfStyle(int ListIndex) {
    if (ListIndex == 10)
        return ChartType::Pie2D;
    if (ListIndex == 11)
        return ChartType::XY2D;
    return static_cast<ChartType>(ListIndex);
}

GraphQuestion QuestionOfGraph(Connection& file, std::int64_t RowData) {
    GraphQuestion question;
    const Recordset response =
        file.Execute("SELECT questionid FROM response WHERE id = ?", {RowData});
    if (response.AtEnd()) {
        question.shows = false;
        return question;
    }
    question.id = response.Integer(0);
    const Recordset row = file.Execute("SELECT qtype FROM question WHERE id = ?", {*question.id});
    if (!row.AtEnd()) {
        question.qtype = row.Integer(0);
        question.shows = question.qtype != kind::OpenEnded && question.qtype != kind::Text;
    }
    return question;
}

std::optional<std::vector<ChartRow>> ReadGraph(Connection& file, std::int64_t question,
                                               std::int64_t qtype, std::int16_t Key) {
    if (qtype == kind::Matrix)
        return Points(file, question, Key);
    return Choices(file, question);
}

} // namespace pollarix
