// What the server keeps, in plain values. Times are seconds since 1970, in UTC; ids count from 1
// and are never used again.
#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>

namespace pollarix::server {

using Id = std::int64_t;
using Time = std::int64_t;
constexpr Id None = 0;

// The program keeps ids in 16 bits: a survey beyond this could not be told to it.
constexpr Id LargestId = 32767;

// Something could not be stored or read. What was acknowledged before is safe, and what was asked
// for has not happened.
struct StoreFailure : std::runtime_error {
    using std::runtime_error::runtime_error;
};
// The same, because there is no room left.
struct StoreFull : StoreFailure {
    using StoreFailure::StoreFailure;
};

// A bound of the server keeps a survey from being made or changed, in words for its author.
struct Bounded : StoreFailure {
    using StoreFailure::StoreFailure;
};

struct Account {
    Id id = None;
    std::string name;         // UTF-8, as it was typed; found without regard to the case of A to Z
    std::string passwordHash; // argon2id, with its parameters; "" when no password fits
    bool isDisabled = false;
    Time created = 0;
    std::int64_t stamp = 0; // another one ends all logins that were made until then
};

// A holder's login in a browser. The token itself is never stored, only its hash.
struct Session {
    Id account = None;
    std::string formSecret; // what the session's own forms have to bring back (CSRF)
    Time expires = 0;
};

struct Survey {
    Id id = None;
    Id account = None;
    std::string name;
    std::string address; // what stands behind "/s/" in the survey's URL; nobody can guess it
    bool isPublic = false;
    bool isOpen = true; // the holder's switch
    bool onOnePage = false;
    Time opens = 0;  // 0 for at once
    Time closes = 0; // 0 for never; answers from then on are refused
    int version = 0; // the one that is live, 0 as long as there is none
    Time created = 0;
    Time deleted = 0; // 0 unless its holder has thrown it away; then it can't be found by address

    bool TakesAnswers(Time now) const {
        return version > 0 && isOpen && deleted == 0 && now >= opens &&
               (closes == 0 || now < closes);
    }
};

struct SurveyCounts {
    std::int64_t waiting = 0;   // not yet fetched and dropped
    std::int64_t dropped = 0;   // fetched and dropped, and still there to be restored
    std::int64_t conflicts = 0; // of both: sent under a token that had been used with other answers
    Time last = 0;              // when the last one came, 0 for none
};

// How much an account may have of what it publishes.
struct PublishBounds {
    int versions = 200;                               // of a survey
    std::int64_t documentBytes = 256LL * 1024 * 1024; // of all its surveys' versions and uploads
};

// Letters that the program can't show.
struct LostCount {
    std::int64_t count = 0;
    std::string some; // a few of them, UTF-8
};

// What a fetch of a survey's results hands out: those that wait up to this one, without what is
// restored after it has begun.
struct HandedOut {
    Id last = None;
    std::int64_t restores = 0;
};

// Answers on their way, so that a respondent can go on later.
struct Draft {
    Id survey = None;
    int version = 0;
    std::string answers;
    Time updated = 0;
};

// The answers of one respondent.
struct Submission {
    Id id = None;
    int version = 0; // of the survey, the one that was answered
    std::string answers;
    Time received = 0;
    bool isConflict = false;
};

enum class Submitted {
    Stored,
    AlreadyStored,    // the same answers under the same token: there is one row
    StoredAsConflict, // other answers under a token that was used: there are both rows
    Closed            // the survey doesn't take answers; nothing was stored
};

} // namespace pollarix::server
