// The server's log: one line for an event, on the error output, which whoever starts the server
// keeps as he likes. Holds no names, addresses or answers.
#pragma once

#include <string>

namespace pollarix::server {

// May be called by many threads at once.
void Log(const std::string& line);

} // namespace pollarix::server
