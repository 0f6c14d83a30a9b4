// Names and passwords as they arrive after the program has sent them. It writes each part between
// two
// "&" in Windows-1252, if that has all of its letters, and else in UTF-8; bytes that can't stand in
// a request become %XX, and a "%" stays as it is. So not every text comes out as it went in.
#pragma once

#include <string>
#include <string_view>

namespace pollarix::exchange {

// What was sent, as UTF-8.
std::string TextOfSent(std::string_view bytes);
// What TextOfSent gives after the program has sent the text. A password that was typed elsewhere is
// brought into this form, so that it fits when it comes from the program. Doing it twice changes
// nothing any more.
std::string AsSent(std::string_view utf8);

// What keeps a text from being a survey's name, in words for its author; "" for nothing. A name has
// to come through the program's calls as it is, there and back.
std::string_view FaultOfSurveyName(std::string_view utf8);

} // namespace pollarix::exchange
