#include "server/accounts/Tickets.h"

#include <algorithm>

#include <sodium.h>

namespace pollarix::server {

namespace {

constexpr Time GoodSeconds = 30 * 60;
constexpr int MostGuesses = 20;
// A few thousand leave a guess a small chance, and a new number is found at once.
constexpr std::size_t MostGiven = 4096;
constexpr int MostOfOneAddress = 64;

} // namespace

Tickets::Tickets() : guesses_(MostGuesses, GoodSeconds) {}

std::optional<Tickets::Ticket> Tickets::Give(Id account, const std::string& address, Time now) {
    const std::lock_guard lock(mutex_);
    DropOld(now);
    const auto ofAddress = std::count_if(given_.begin(), given_.end(), [&](const auto& entry) {
        return entry.second.address == address;
    });
    if (given_.size() >= MostGiven)
        return std::nullopt;
    if (ofAddress >= MostOfOneAddress) {
        // Its oldest one goes: a program that logs in over and over keeps nobody else out.
        auto oldest = given_.end();
        for (auto entry = given_.begin(); entry != given_.end(); ++entry)
            if (entry->second.address == address &&
                (oldest == given_.end() || entry->second.used < oldest->second.used))
                oldest = entry;
        given_.erase(oldest);
    }
    for (;;) {
        const Ticket ticket = 1 + randombytes_uniform(static_cast<std::uint32_t>(LargestId));
        if (given_.try_emplace(ticket, Given{account, address, now, {}}).second)
            return ticket;
    }
}

Id Tickets::AccountOf(Ticket ticket, const std::string& address, Time now) {
    const std::lock_guard lock(mutex_);
    const std::string who = BoundName(address);
    if (guesses_.IsReached(who, now))
        return None;
    DropOld(now);
    const auto found = given_.find(ticket);
    if (found == given_.end() || found->second.address != address) {
        guesses_.Count(who, now);
        return None;
    }
    found->second.used = now;
    return found->second.account;
}

bool Tickets::IsHere(Id account, const std::string& address, Time now) {
    const std::lock_guard lock(mutex_);
    DropOld(now);
    return std::any_of(given_.begin(), given_.end(), [&](const auto& entry) {
        return entry.second.account == account && entry.second.address == address;
    });
}

void Tickets::NoteFetch(Ticket ticket, Id survey, Id last) {
    const std::lock_guard lock(mutex_);
    if (const auto found = given_.find(ticket); found != given_.end())
        found->second.fetched[survey] = last;
}

Id Tickets::TakeFetch(Ticket ticket, Id survey) {
    const std::lock_guard lock(mutex_);
    const auto found = given_.find(ticket);
    if (found == given_.end())
        return None;
    const auto fetched = found->second.fetched.extract(survey);
    return fetched.empty() ? None : fetched.mapped();
}

void Tickets::DropOld(Time now) {
    std::erase_if(given_,
                  [&](const auto& entry) { return now - entry.second.used >= GoodSeconds; });
}

} // namespace pollarix::server
