// What both web wizards work with, made by the main window. Holds no logic.
#pragma once

#include "document/ApplicationState.h"
#include "document/SurveyViews.h"
#include "web/modWebServer.h"
#include "web/wininet.h"

namespace pollarix {

struct WebServices {
    ApplicationState& state;
    const SurveyViews& views;
    wininet& transfer;
    modWebServer& server;
};

} // namespace pollarix
