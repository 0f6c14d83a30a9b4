// What the server's keeper does beside it, most of it while it runs.
#pragma once

#include <span>
#include <string>

#include "server/app/Settings.h"

namespace pollarix::server {

// Words that the command can't be, with how it is used.
struct BadUsage : std::runtime_error {
    using std::runtime_error::runtime_error;
};

extern const char* const Usage;

// Does what the words say ("user", "add", "anna"); all but "serve". Gives the exit code. Throws
// BadUsage and StoreFailure.
int RunCommand(const Settings& settings, std::span<const std::string> words);

} // namespace pollarix::server
