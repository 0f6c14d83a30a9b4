#include "server/app/Log.h"

#include <algorithm>
#include <array>
#include <ctime>

#include <unistd.h>

namespace pollarix::server {

void Log(const std::string& line) {
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    gmtime_r(&now, &parts);
    std::array<char, 32> when{};
    std::strftime(when.data(), when.size(), "%Y-%m-%dT%H:%M:%SZ ", &parts);
    std::string whole = when.data() + line;
    std::replace_if(
        whole.begin(), whole.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; },
        ' ');
    whole += '\n';
    // In one piece, so that lines of two threads don't mix. A log that can't be written stops
    // nobody.
    if (write(STDERR_FILENO, whole.data(), whole.size()) < 0)
        return;
}

} // namespace pollarix::server
