// The user ids that the program gets for a login and sends with every later call, in place of a
// password: numbers of 15 bits, since it keeps them in 16 with a sign. So few can be guessed; a
// ticket is therefore good only from the address that logged in, for half an hour after its last
// use, and an address that guesses is locked out.
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

    Tickets();

    // Nothing when too many are in use.
    std::optional<Ticket> Give(Id account, const std::string& address, Time now);
    // The account; None for a ticket that isn't good, which counts as a guess.
    Id AccountOf(Ticket ticket, const std::string& address, Time now);
    // Whether somebody at the address has a ticket of the account.
    bool IsHere(Id account, const std::string& address, Time now);
    // The ticket's last fetch of the survey's results went up to this one.
    void NoteFetch(Ticket ticket, Id survey, Id last);
    // The same, once: it is forgotten then. None without a fetch.
    Id TakeFetch(Ticket ticket, Id survey);

  private:
    struct Given {
        Id account = None;
        std::string address;
        Time used = 0;
        std::unordered_map<Id, Id> fetched;
    };
    void DropOld(Time now);

    std::mutex mutex_;
    std::unordered_map<Ticket, Given> given_;
    Bound guesses_;
};

} // namespace pollarix::server
