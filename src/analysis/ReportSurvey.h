// The questions as the reports read them from the survey file, each with its answers or sub
// questions. Only what the file holds: the model with its unsaved changes is another matter.
#pragma once

#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

#include "analysis/IdPlaces.h"
#include "document/Kinds.h"
#include "platform/database/Database.h"

namespace pollarix {

struct ReportQuestion {
    std::int64_t id = 0;
    std::int32_t qtype = 0;
    QString questionno;              // "" for Null
    std::optional<QString> question; // rich text; none for Null
    std::vector<QString> responses;  // names of the answers or sub questions, by pos

    Shape AnswerShape() const { return KindOf(qtype).shape; }
    // The text without formats. Throws InvalidNull when there is none.
    QString PlainText() const;
    // The line that heads the question in a report: number, ". " and text. The ". " stands also
    // without a number.
    QString HeadLine() const { return questionno + ". " + PlainText(); }
};

struct ReportSurvey {
    // A place in a list; -1 for what is not in it.
    struct Place {
        int at = -1;
    };
    struct ResponsePlace {
        int question = -1; // in questions
        int response = -1; // in that question's responses
    };

    // Reads all questions but the instruction texts, by pos.
    explicit ReportSurvey(Connection& survey);

    std::vector<ReportQuestion> questions;
    std::vector<QString> points; // names of the points of all scales

    IdPlaces<Place> questionPlaces;         // by question.id
    IdPlaces<ResponsePlace> responsePlaces; // by response.id
    IdPlaces<Place> pointPlaces;            // by responsematrix.id, in points
};

} // namespace pollarix
