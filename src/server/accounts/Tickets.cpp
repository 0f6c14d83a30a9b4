#include "server/accounts/Tickets.h"

#include <algorithm>

#include <sodium.h>

#include "server/net/Address.h"

namespace pollarix::server {

namespace {

constexpr Time IdleSeconds = 30 * 60;
constexpr Time LastSeconds = 4 * 3600;
constexpr int MostGuesses = 20;
// A few thousand leave a guess a small chance, and a new number is found at once.
constexpr std::size_t MostGiven = 4096;
constexpr int MostOfOneAddress = 64;

} // namespace

bool Tickets::Given::IsGood(Time now) const {
    return now - used < IdleSeconds && now - made < LastSeconds;
}

Tickets::Tickets() : guesses_(MostGuesses, IdleSeconds) {}

std::optional<Tickets::Ticket> Tickets::Give(const Login& login, const std::string& address,
                                             Time now) {
    const std::string where = BoundName(address);
    const std::lock_guard lock(mutex_);
    DropOld(now);
    if (given_.size() >= MostGiven)
        return std::nullopt;
    const auto ofAddress = std::count_if(given_.begin(), given_.end(), [&](const auto& entry) {
        return entry.second.where == where;
    });
    if (ofAddress >= MostOfOneAddress) {
        // Its oldest one goes: a program that logs in over and over keeps nobody else out.
        auto oldest = given_.end();
        for (auto entry = given_.begin(); entry != given_.end(); ++entry)
            if (entry->second.where == where &&
                (oldest == given_.end() || entry->second.used < oldest->second.used))
                oldest = entry;
        given_.erase(oldest);
    }
    for (;;) {
        const Ticket ticket = 1 + randombytes_uniform(static_cast<std::uint32_t>(LargestId));
        if (given_.try_emplace(ticket, Given{login, where, now, now, {}}).second)
            return ticket;
    }
}

std::optional<Tickets::Login> Tickets::Find(Ticket ticket, const std::string& address, Time now) {
    const std::string where = BoundName(address);
    const std::lock_guard lock(mutex_);
    if (guesses_.IsReached(where, now))
        return std::nullopt;
    const auto found = given_.find(ticket);
    if (found == given_.end() || found->second.where != where || !found->second.IsGood(now)) {
        guesses_.Count(where, now);
        return std::nullopt;
    }
    found->second.used = now;
    return found->second.login;
}

bool Tickets::IsHere(const Login& login, const std::string& address, Time now) {
    const std::string where = BoundName(address);
    const std::lock_guard lock(mutex_);
    return std::any_of(given_.begin(), given_.end(), [&](const auto& entry) {
        return entry.second.login == login && entry.second.where == where &&
               entry.second.IsGood(now);
    });
}

void Tickets::End(Ticket ticket) {
    const std::lock_guard lock(mutex_);
    given_.erase(ticket);
}

void Tickets::NoteFetch(Ticket ticket, Id survey, const HandedOut& handedOut) {
    const std::lock_guard lock(mutex_);
    if (const auto found = given_.find(ticket); found != given_.end())
        found->second.fetched[survey] = handedOut;
}

std::optional<HandedOut> Tickets::TakeFetch(Ticket ticket, Id survey) {
    const std::lock_guard lock(mutex_);
    const auto found = given_.find(ticket);
    if (found == given_.end())
        return std::nullopt;
    const auto fetched = found->second.fetched.extract(survey);
    return fetched.empty() ? std::nullopt : std::optional(fetched.mapped());
}

void Tickets::DropOld(Time now) {
    std::erase_if(given_, [&](const auto& entry) { return !entry.second.IsGood(now); });
}

} // namespace pollarix::server
