// What the respondent list and manual entry share while answers are typed in.
#pragma once

#include <cstdint>

namespace pollarix {

struct ManualEntryState {
    std::int32_t CurrentRespondentID = 0; // respondent.id; set before the window opens
    std::int64_t Respondents = 0;         // in the survey, this one included; 0 where none count
    std::int32_t FirstPosition = 1;       // question.pos of the page to begin with
    std::int32_t CurrentPosition = 1;     // question.pos of the page shown
    std::int32_t CurrentQType = 0;        // question.qtype of the page shown
};

} // namespace pollarix
