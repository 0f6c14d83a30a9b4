#include "statistics/Variables.h"

#include <algorithm>

#include "document/clsQ.h"
#include "platform/richtext/RichText.h"

namespace pollarix::statistics {

namespace {

struct ResponseRow {
    std::int64_t id = 0;
    QString name;
    std::int64_t scale = 0;
    std::optional<std::int64_t> jump;
};

struct PointRow {
    std::int64_t id = 0;
    QString name;
};

using ResponsesByQuestion = QHash<std::int64_t, std::vector<ResponseRow>>;
using PointsByScale = QHash<std::int64_t, std::vector<PointRow>>;

ResponsesByQuestion ReadResponses(Connection& survey) {
    ResponsesByQuestion responses;
    for (Recordset rows = survey.Execute(
             "SELECT id, questionid, name, responseMatrixGroupID, LogicJumpToQuestionID "
             "FROM response ORDER BY questionid, pos, id");
         !rows.AtEnd(); rows.MoveNext()) {
        ResponseRow row;
        row.id = rows.Integer(0);
        row.name = rows.NullToString(2).simplified();
        row.scale = rows.IsNull(3) ? 0 : rows.Integer(3);
        if (!rows.IsNull(4) && rows.Integer(4) != -1)
            row.jump = rows.Integer(4);
        responses[rows.Integer(1)].push_back(std::move(row));
    }
    return responses;
}

PointsByScale ReadPoints(Connection& survey) {
    PointsByScale points;
    for (Recordset rows = survey.Execute("SELECT id, ResponseMatrixGroupID, name "
                                         "FROM responsematrix ORDER BY pos, id");
         !rows.AtEnd(); rows.MoveNext())
        points[rows.Integer(1)].push_back({rows.Integer(0), rows.NullToString(2).simplified()});
    return points;
}

std::vector<double> CountedFrom(double first, std::size_t count) {
    std::vector<double> values(count);
    for (std::size_t i = 0; i < count; ++i)
        values[i] = first + static_cast<double>(i);
    return values;
}

Variable MakeVariable(const QString& name, const QString& label, VariableKind kind, Level level,
                      int question = -1) {
    Variable variable;
    variable.name = name;
    variable.label = label;
    variable.kind = kind;
    variable.level = level;
    variable.question = question;
    return variable;
}

class Reader {
  public:
    Reader(Connection& survey, SurveyVariables& target)
        : target_(target), responses_(ReadResponses(survey)), points_(ReadPoints(survey)) {}

    void Add(SurveyQuestion question) {
        place_ = static_cast<int>(target_.questions.size());
        if (question.qtype != kind::Text)
            name_ = QString("q%1").arg(++number_);
        question.firstVariable = target_.variables.size();
        if (question.qtype == kind::OpenEnded)
            target_.variables.push_back(
                MakeVariable(name_, question.text, VariableKind::Open, Level::Nominal, place_));
        else if (question.qtype == kind::Radio)
            AddSingle(question);
        else if (question.qtype == kind::Check)
            AddTicks(question);
        else if (question.qtype == kind::Matrix)
            AddMatrix(question);
        question.variableCount = target_.variables.size() - question.firstVariable;
        target_.questions.push_back(std::move(question));
    }

    // After all questions: a jump may lead to any of them.
    void AddJumps() {
        QHash<std::int64_t, int> places;
        for (std::size_t i = 0; i < target_.questions.size(); ++i)
            places.insert(target_.questions[i].id, static_cast<int>(i));
        for (SurveyQuestion& question : target_.questions) {
            if (question.qtype != kind::Radio)
                continue; // only radio answers have jumps; what others hold is never followed
            for (const ResponseRow& row : responses_[question.id]) {
                question.jumps.push_back(row.jump
                                             ? places.value(*row.jump, SurveyQuestion::LostJump)
                                             : SurveyQuestion::NoJump);
                target_.hasJumps |= question.jumps.back() >= 0;
            }
        }
    }

  private:
    void AddSingle(SurveyQuestion& question) {
        Variable variable =
            MakeVariable(name_, question.text, VariableKind::Single, Level::Nominal, place_);
        for (const ResponseRow& row : responses_[question.id]) {
            question.responses.insert(row.id,
                                      static_cast<std::uint32_t>(variable.categories.size()));
            variable.categories.push_back(row.name);
        }
        variable.values = CountedFrom(1, variable.categories.size());
        target_.variables.push_back(std::move(variable));
    }

    Variable Item(SurveyQuestion& question, const ResponseRow& row, VariableKind kind,
                  Level level) {
        const auto place = static_cast<std::uint32_t>(question.responses.size());
        question.responses.insert(row.id, place);
        Variable variable = MakeVariable(name_ + QString("_%1").arg(place + 1),
                                         question.text + ": " + row.name, kind, level, place_);
        variable.item = row.name;
        return variable;
    }

    void AddTicks(SurveyQuestion& question) {
        for (const ResponseRow& row : responses_[question.id]) {
            Variable variable = Item(question, row, VariableKind::Tick, Level::Nominal);
            variable.categories = {"No", "Yes"};
            variable.values = CountedFrom(0, 2);
            target_.variables.push_back(std::move(variable));
        }
    }

    // The first row's scale is that of the whole question, as answers are entered. Should another
    // row name one of its own, its points come behind, so that no answer is lost.
    void AddMatrix(SurveyQuestion& question) {
        const std::vector<ResponseRow>& rows = responses_[question.id];
        for (const ResponseRow& row : rows) {
            Variable variable = Item(question, row, VariableKind::Point, Level::Ordinal);
            std::vector<PointRow> points = points_[rows.front().scale];
            if (row.scale != rows.front().scale)
                points.insert(points.end(), points_[row.scale].begin(), points_[row.scale].end());
            QHash<std::int64_t, std::uint32_t> codes;
            for (const PointRow& point : points) {
                codes.insert(point.id, static_cast<std::uint32_t>(variable.categories.size()));
                variable.categories.push_back(point.name);
            }
            variable.values = CountedFrom(1, variable.categories.size());
            question.points.push_back(std::move(codes));
            target_.variables.push_back(std::move(variable));
        }
    }

    SurveyVariables& target_;
    ResponsesByQuestion responses_;
    PointsByScale points_;
    int place_ = 0;
    int number_ = 0;
    QString name_;
};

} // namespace

void Variable::Reverse() {
    std::reverse(values.begin(), values.end());
}

SurveyVariables::SurveyVariables(Connection& survey) {
    variables.push_back(MakeVariable("date", "Submitted", VariableKind::Date, Level::Scale));
    variables.push_back(MakeVariable("source", "Source", VariableKind::Source, Level::Nominal));
    Reader reader(survey, *this);
    for (Recordset rows = survey.Execute(
             "SELECT id, question, qtype, questionno FROM question ORDER BY pos, id");
         !rows.AtEnd(); rows.MoveNext()) {
        SurveyQuestion question;
        question.id = rows.Integer(0);
        question.qtype = rows.Integer(2);
        question.number = rows.NullToString(3);
        question.text = PlainTextOf(rows.NullToString(1)).simplified();
        reader.Add(std::move(question));
    }
    reader.AddJumps();
}

std::optional<std::size_t> SurveyVariables::Find(const QString& name) const {
    const auto found = std::find_if(variables.begin(), variables.end(),
                                    [&](const Variable& v) { return v.name == name; });
    if (found == variables.end())
        return std::nullopt;
    return static_cast<std::size_t>(found - variables.begin());
}

} // namespace pollarix::statistics
