// The questions as the reports read them from the survey file, each with its answers or sub
// questions. Only what the file holds: the model with its unsaved changes is another matter.
#pragma once

#include <QHash>
#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

#include "document/Kinds.h"
#include "platform/database/Database.h"

namespace pollarix {

struct ReportQuestion {
    std::int64_t id = 0;
    std::int32_t qtype = 0;
    QString questionno;                     // "" for Null
    std::optional<QString> question;        // rich text; none for Null
    std::vector<QString> responses;         // names of the answers or sub questions, by pos
    QHash<std::int64_t, int> responseIndex; // response.id to its place in responses

    Shape AnswerShape() const { return KindOf(qtype).shape; }
    // The text without formats. Throws InvalidNull when there is none.
    QString PlainText() const;
    // The line that heads the question in a report: number, ". " and text. The ". " stands also
    // without a number.
    QString HeadLine() const { return questionno + ". " + PlainText(); }
};

struct ReportSurvey {
    // Reads all questions but the instruction texts, by pos.
    explicit ReportSurvey(Connection& survey);

    std::vector<ReportQuestion> questions;
    QHash<std::int64_t, int> questionIndex; // question.id to its place in questions
    std::vector<QString> points;            // names of the points of all scales
    QHash<std::int64_t, int> pointIndex;    // responsematrix.id to its place in points
};

} // namespace pollarix
