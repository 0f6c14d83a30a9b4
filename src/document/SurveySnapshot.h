// The design of a survey as a value: what a save writes and what a recovery file keeps; undo shares
// its questions (SharedQuestions). Knows no file, tree or window.
#pragma once

#include <QString>

#include <cstdint>
#include <memory>
#include <vector>

namespace pollarix {

class clsQ;
class clsSurvey;

struct SurveySnapshot {
    // The fields are clsResponse's and clsQ's, with their meanings.
    struct Response {
        std::int16_t DatabaseID = 0;
        QString Text;
        std::int16_t LogicJumpToQuestionID = 0;
        QString LogicJumpToQuestionKey;
        bool operator==(const Response&) const = default;
    };
    struct Question {
        std::int16_t DatabaseID = 0;
        QString Key;
        std::int32_t qType = 0;
        QString Text; // clsQ::Question, rich text
        QString QuestionNo;
        std::int16_t OpenEnded_NoOfRows = 0;
        std::int16_t ResponseMatrixGroupID = 0;
        std::vector<Response> responses;

        std::shared_ptr<clsQ> ToObject() const; // a new one
        bool operator==(const Question&) const = default;
    };

    std::vector<Question> questions; // in the survey's order
    QString selectedKey;             // of the question that is selected; "" for none or the root

    // The survey as it is. The model knows no selection, so the caller gives it.
    static SurveySnapshot Take(const clsSurvey& survey, const QString& selectedKey = {});
    static Question Take(const clsQ& q);

    // Makes the survey what it was: the same questions under the same keys and ids, as new objects.
    void PutInto(clsSurvey& survey) const;

    bool operator==(const SurveySnapshot&) const = default;
};

} // namespace pollarix
