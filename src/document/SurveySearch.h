// Looks for a text in questions, responses and stored answers. Gives places as values, as many as
// are asked for; leading there is the windows'.
#pragma once

#include <QString>

#include <cstdint>
#include <vector>

#include "document/SurveySnapshot.h"
#include "platform/database/Database.h"

namespace pollarix {

struct FoundText {
    enum class Kind { Question, Response, Answer };
    Kind kind = Kind::Question;
    QString key;                   // of the question
    int response = 0;              // its place in the question, from 1; of a Response only
    std::int64_t responseId = -1;  // response.id; -1 while there is no row
    std::int64_t questionId = -1;  // question.id, likewise
    std::int64_t respondentId = 0; // of an Answer only
    QString question;              // number and text, on one line
    QString text;                  // what was found, with a little of what stands around it
};

struct FoundTexts {
    std::vector<FoundText> places; // in the order of the survey; answers in that of their storing
    bool more = false;             // there are more places than were asked for
};

// Capitals or not is the same. An empty text is nowhere.
FoundTexts FindInDesign(const SurveySnapshot& survey, const QString& sought, std::size_t most);

// In typed answers to the survey's questions. One pass over the answers, which the database does by
// itself. Throws what the database throws.
FoundTexts FindInAnswers(Connection& file, const SurveySnapshot& survey, const QString& sought,
                         std::size_t most);

} // namespace pollarix
