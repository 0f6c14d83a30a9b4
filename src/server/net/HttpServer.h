// HTTP/1.1 on sockets: reads requests within bounds, has the router's handlers answer them, and
// sends what they give. What an answer says is the handlers' business. Not encrypted: a proxy
// before it does that.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "server/net/Router.h"

namespace pollarix::server {

struct HttpBounds {
    std::size_t headBytes = 16 * 1024;
    std::size_t bodyBytes = 1024 * 1024;
    // Of all requests and answers at once, as far as they have come; beyond that comes 503.
    std::size_t allBodiesBytes = 32 * 1024 * 1024;
    std::size_t bodiesBytesPerAddress = 8 * 1024 * 1024; // and of those with one address
    std::size_t connections = 4096;
    std::size_t connectionsPerAddress = 256; // a trusted proxy has no such bound
    int secondsForRequest = 15; // from its first byte to its last; idle connections end as soon
    int secondsForWrite = 15;   // for each 16 KB of an answer to be taken by the client
    int requestsAtOnce = 64;    // that wait for commits and the like, each a thread
    std::size_t requestsWaiting = 2000; // for one of these threads; beyond that comes 503
    std::vector<std::string>
        trustedProxies; // addresses whose X-Forwarded-For and -Proto are believed
};

// One line about something that happened, for the log. Holds no names, addresses or answers.
using LogLine = std::function<void(const std::string&)>;

class HttpServer {
  public:
    // The router must stay, and not be changed any more.
    HttpServer(const Router& router, const HttpBounds& bounds, LogLine log);
    ~HttpServer(); // as Stop
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    // Listens; port 0 for any. Gives the port. Throws std::runtime_error that names the port.
    std::uint16_t Listen(const std::string& address, std::uint16_t port);
    // Takes no more connections, answers the requests that are under way for up to ten seconds, and
    // ends all connections.
    void Stop();

  private:
    struct Core;
    std::shared_ptr<Core> core_;
};

} // namespace pollarix::server
