// One answer choice of a question; for a matrix, one of its sub questions. Plain data.
#pragma once

#include <QString>

#include <cstdint>

namespace pollarix {

class clsResponse {
  public:
    std::int16_t DatabaseID = 0; // response.id; -1 while there is no row
    QString Text;                // plain
    // question.id of the jump's target as read from the file, -1 for no jump. Saving does not read
    // it: the key below is what counts, since a target may have no row yet.
    std::int16_t LogicJumpToQuestionID = 0;
    QString LogicJumpToQuestionKey; // key of the question to jump to; "" for no jump
};

} // namespace pollarix
