// The numbers a transfer's failures go by, and how long a transfer waits. What every user of the
// network needs to know, without what it is made of.
#pragma once

#include <cstdint>

namespace pollarix {

// Numbers of the failures a transfer can end in; texts for them are the transfer layer's.
namespace internet {
constexpr std::int32_t LocalFileNotFound = 2;
constexpr std::int32_t LocalFileAccess = 5;
constexpr std::int32_t OutOfHandles = 12001;
constexpr std::int32_t TimedOut = 12002;
constexpr std::int32_t ServersOwnWords = 12003; // Internet::LastResponse has them
constexpr std::int32_t InternalError = 12004;
constexpr std::int32_t InvalidUrl = 12005;
constexpr std::int32_t UnknownScheme = 12006;
constexpr std::int32_t NameNotResolved = 12007;
constexpr std::int32_t WrongPassword = 12014;
constexpr std::int32_t LoginFailed = 12015;
constexpr std::int32_t CannotConnect = 12029;
constexpr std::int32_t ConnectionEnded = 12030;
} // namespace internet

// How long a network that says nothing, or next to nothing, is waited for. A transfer that goes on
// may take as long as it needs.
struct TransferPatience {
    long connectSeconds = 10; // name and connection
    long stallSeconds = 30;   // in which less than leastBytes came or went
    long leastBytes = 1024;
};

} // namespace pollarix
