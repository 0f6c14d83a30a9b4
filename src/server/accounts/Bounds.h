// Counts what comes from whom, so that nobody can have too much of it. Kept in memory alone, under
// hashes whose key is thrown away once a day: no address of anybody can be read out of it.
#pragma once

#include <array>
#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>

#include "server/store/Records.h"

namespace pollarix::server {

class Bound {
  public:
    // So many in so many seconds.
    Bound(int most, Time seconds);

    // Counts one, unless there are as many as may be already; then false.
    bool Take(std::string_view who, Time now);
    // Whether there are as many as may be, without counting.
    bool IsReached(std::string_view who, Time now);
    void Count(std::string_view who, Time now);

  private:
    struct Counted {
        Time since = 0;
        int count = 0;
    };
    // For the time being; the mutex is held.
    Counted& Of(std::string_view who, Time now);

    const int most_;
    const Time seconds_;
    std::mutex mutex_;
    std::array<unsigned char, 16> key_{};
    Time day_ = -1;
    std::unordered_map<std::uint64_t, Counted> counts_;
};

} // namespace pollarix::server
