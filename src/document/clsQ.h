// One question with its ordered list of responses. Knows no database, tree or window.
#pragma once

#include <QString>

#include <cstdint>
#include <memory>
#include <vector>

#include "document/Kinds.h"
#include "document/clsResponse.h"

namespace pollarix {

class clsQ {
  public:
    std::int16_t DatabaseID = 0; // question.id; -1 while there is no row
    QString Key; // 32 hexadecimal digits, new at every load; clsSurvey alone writes it
    std::int32_t qType = 0;
    QString Question;   // rich text, as the editor gives it
    QString QuestionNo; // decimal, "" for none
    // Lines for the answer of an open ended question. Kept in memory only: a question read from a
    // file has 0 here.
    std::int16_t OpenEnded_NoOfRows = 0;
    std::int16_t ResponseMatrixGroupID = 0; // responsematrixgroup.id of a matrix's scale

    std::int16_t ResponsesCount() const {
        return static_cast<std::int16_t>(responses_.empty() ? 0 : responses_.size() - 1);
    }

    // Takes out the response at the position (1-based); later ones close up. A position out of
    // range drops the last response: the list always shrinks. Throws Subscript on an empty list.
    void RemoveResponse(std::int16_t i);

    // Appends a response. Throws Overflow for ids beyond 16 bits or a 32768th response.
    void AddResponse(const QString& s, std::int32_t ResponseDatabaseID,
                     std::int64_t LogicJumpToQuestionID, const QString& LogicJumpToQuestionKey);

    // The response itself, at position 1 to ResponsesCount; no object at position 0 of a list that
    // has or had entries. Throws Subscript for any other position.
    std::shared_ptr<clsResponse> GetResponse(std::int16_t i) const;

    // Puts a response into position i; throws Subscript as GetResponse does.
    void UpdateResponse(std::int16_t i, std::shared_ptr<clsResponse> r);

    void ClearAllResponses();

  private:
    // Empty while the list has no bounds; else element 0 is never used.
    std::vector<std::shared_ptr<clsResponse>> responses_;
};

} // namespace pollarix
