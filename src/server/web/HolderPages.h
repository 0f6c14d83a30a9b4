// The pages of those who hold surveys here: logging in, their surveys, their account. In English,
// as the program is. Pure functions.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "server/store/Records.h"
#include "server/web/Page.h"

namespace pollarix::server {

// Who is looking, and what their forms have to bring back.
struct Holder {
    std::string name;
    std::string formSecret;
};

// message: what came of the last attempt, "" for none.
Page LoginPage(std::string_view name, std::string_view message);
Page NewAccountPage(std::string_view name, std::string_view invitation, std::string_view message);
// Where accounts are made by invitation only, and there is none or an old one.
Page NoNewAccountPage();

struct SurveyWithCounts {
    Survey survey;
    SurveyCounts counts;
};
Page SurveysPage(const Holder& holder, const std::vector<SurveyWithCounts>& surveys, Time now);

struct SurveyDetails {
    Survey survey;
    SurveyCounts counts;
    LostCount lost; // of the answers that wait, on their way into the program
    std::string link;
    Time keptUntil = 0; // of a deleted survey
};
// done: what was just done, isFault: that it wasn't.
Page SurveyPage(const Holder& holder, const SurveyDetails& details, Time now, std::string_view done,
                bool isFault);

Page AccountPage(const Holder& holder, std::string_view done, bool isFault);
// Of somebody logged in, for what isn't theirs, isn't there, or came from elsewhere.
Page HolderFaultPage(int status, std::string_view words);

// "2026-07-23T14:05", the value of a field for a date with a time; "" for 0. And back: 0 for "",
// -1 for what is none.
std::string MomentField(Time time);
Time ReadMomentField(std::string_view value);

} // namespace pollarix::server
