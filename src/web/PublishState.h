// What the pages of the publish wizard hand on to each other. Holds no logic.
#pragma once

#include <QString>

#include <cstdint>

namespace pollarix {

// Kept from one run of the wizard to the next while the program runs.
struct PublishState {
    bool PublishShowWelcome = true;
    std::int16_t PublishServerIndex = 0;
    QString PublishUsername;
    QString PublishPassword;
    QString PublishSurveyName;
    bool PublishIsPublic = false;
    QString PublishedURL; // "" for none
};

} // namespace pollarix
