#include "server/accounts/Bounds.h"

#include <sodium.h>

namespace pollarix::server {

namespace {

constexpr std::size_t MostCounted = 50000;

} // namespace

Bound::Bound(int most, Time seconds) : most_(most), seconds_(seconds) {}

Bound::Counted& Bound::Of(std::string_view who, Time now) {
    constexpr Time daySeconds = 86400;
    if (now / daySeconds != day_) {
        day_ = now / daySeconds;
        randombytes_buf(key_.data(), key_.size());
        counts_.clear();
    }
    if (counts_.size() >= MostCounted)
        std::erase_if(counts_,
                      [&](const auto& entry) { return now - entry.second.since >= seconds_; });
    // So many at once are an attack from everywhere; then what is counted begins anew, since memory
    // is the scarcer good.
    if (counts_.size() >= MostCounted)
        counts_.clear();
    std::uint64_t hash = 0;
    crypto_shorthash(reinterpret_cast<unsigned char*>(&hash),
                     reinterpret_cast<const unsigned char*>(who.data()), who.size(), key_.data());
    Counted& counted = counts_[hash];
    if (now - counted.since >= seconds_)
        counted = {now, 0};
    return counted;
}

bool Bound::Take(std::string_view who, Time now) {
    const std::lock_guard lock(mutex_);
    Counted& counted = Of(who, now);
    if (counted.count >= most_)
        return false;
    ++counted.count;
    return true;
}

bool Bound::IsReached(std::string_view who, Time now) {
    const std::lock_guard lock(mutex_);
    return Of(who, now).count >= most_;
}

void Bound::Count(std::string_view who, Time now) {
    const std::lock_guard lock(mutex_);
    ++Of(who, now).count;
}

} // namespace pollarix::server
