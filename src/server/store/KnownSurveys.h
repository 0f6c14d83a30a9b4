// The surveys whose pages are asked for, in memory, so that a page costs no look into the database.
// Only the server itself changes surveys; it forgets them all whenever it has changed one.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

#include "server/store/Records.h"

namespace pollarix::server {

class KnownSurveys {
  public:
    // By address; null for one that isn't known.
    std::shared_ptr<const Survey> Find(const std::string& address) const;
    // To be asked before the database is read, and given along with what was read from it.
    std::uint64_t Age() const;
    // Unless some survey was changed since that age.
    void Keep(std::uint64_t age, const Survey& survey);
    // To be called behind the commit that changed one.
    void Forget();

  private:
    static constexpr std::size_t Most = 1000;
    mutable std::mutex mutex_;
    std::uint64_t age_ = 0;
    std::unordered_map<std::string, std::shared_ptr<const Survey>> known_;
};

} // namespace pollarix::server
