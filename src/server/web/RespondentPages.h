// The pages that respondents see beside the form: the surveys there are, the end of the form, and
// what went wrong. Pure functions.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "server/store/Records.h"
#include "server/web/Page.h"

namespace pollarix::server {

Page StartPage(const Words& words, std::span<const Survey> surveys);
// twice: there were other answers under the same form before.
Page ThanksPage(const Words& words, std::string_view survey, bool twice);
Page ClosedPage(const Words& words, std::string_view survey);
// link: the whole address under which the answers can be gone on with, until that time.
Page LaterPage(const Words& words, std::string_view survey, std::string_view link, Time until);
// For a status from 400 on.
Page FaultPage(const Words& words, int status);

} // namespace pollarix::server
