// What the pages of the collection wizard hand on to each other. Holds no logic.
#pragma once

#include <QString>

#include <cstdint>

namespace pollarix {

// Kept from one run of the wizard to the next while the program runs.
struct CollectState {
    bool CollectShowWelcome = true;
    std::int16_t CollectServerIndex = 0;
    QString CollectUsername;
    QString CollectPassword;
    QString CollectUserID; // the number in decimal
    std::int16_t CollectSurveyID = 0;
};

} // namespace pollarix
