// Runs the server until it is told to stop.
#pragma once

#include "server/app/Settings.h"

namespace pollarix::server {

// Comes back after SIGTERM or SIGINT, when what was under way is finished. Throws what keeps it
// from starting, in words.
void Serve(const Settings& settings);

} // namespace pollarix::server
