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

// "127.0.0.1:8421", "[::1]:8421"; for all addresses of the machine its name.
std::string Shown(const std::string& address, std::uint16_t port);
// With which one person can make an account. root has its closing "/".
std::string InvitationLink(const std::string& root, const std::string& token);

// Does what the words say ("user", "add", "anna"); all but "serve". Gives the exit code. Throws
// BadUsage and StoreFailure.
int RunCommand(const Settings& settings, std::span<const std::string> words);

} // namespace pollarix::server
