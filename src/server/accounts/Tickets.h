// The user ids that the program gets for a login and sends with every later call, in place of a
// password: numbers of 15 bits, since it keeps them in 16 with a sign. So few can be guessed; a
// ticket is therefore good only where the login came from, for half an hour after its last use and
// four hours in all, and an address that guesses is locked out.
#pragma once

#include <chrono>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>

#include "server/accounts/Bounds.h"
#include "server/store/Records.h"

namespace pollarix::server {

class Tickets {
  public:
    using Ticket = std::int64_t; // 1 to LargestId
    // Who logged in: the account, and the stamp that it had. An account with another one by now has
    // another password, or was shut out.
    struct Login {
        Id account = None;
        std::int64_t stamp = 0;
        bool operator==(const Login&) const = default;
    };

    Tickets();

    // Nothing when too many are in use.
    std::optional<Ticket> Give(const Login& login, const std::string& address, Time now);
    // Nothing for a ticket that isn't good, which counts as a guess.
    std::optional<Login> Find(Ticket ticket, const std::string& address, Time now);
    // Whether somebody at the address has a ticket of that login.
    bool IsHere(const Login& login, const std::string& address, Time now);
    // The ticket is good no more.
    void End(Ticket ticket);
    // The ticket's last fetch of the survey's results.
    void NoteFetch(Ticket ticket, Id survey, const HandedOut& handedOut);
    // The same, once: it is forgotten then. Nothing without a fetch.
    std::optional<HandedOut> TakeFetch(Ticket ticket, Id survey);

  private:
    struct Given {
        Login login;
        std::string where; // as bounds name it: an address of IPv6 may change between two calls
        Time made = 0;
        Time used = 0;
        std::unordered_map<Id, HandedOut> fetched;
        bool IsGood(Time now) const;
    };
    void DropOld(Time now);

    std::mutex mutex_;
    std::unordered_map<Ticket, Given> given_;
    Bound guesses_;
};

} // namespace pollarix::server
