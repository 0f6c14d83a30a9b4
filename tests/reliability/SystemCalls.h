// What this process does to files, seen and disturbed on its way to the system: killed before a
// chosen change, or told that the disk is full. Calls by the program, the database and the toolkit
// alike come here first; nothing is simulated above them.
#pragma once

#include <cstdint>
#include <optional>

namespace pollarix::test {

struct SystemCalls {
    // Kills the process with SIGKILL before the n-th change from now on; 0 never does.
    static inline long killAt = 0;
    // By how many bytes files may still grow, all together, before the disk is full.
    static inline std::optional<std::int64_t> room;
    // Waiting for another program's lock takes no time.
    static inline bool hurry = false;
};

} // namespace pollarix::test
