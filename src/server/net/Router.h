// Which handler answers which address. The rooms that answer add their routes at the start; then
// the table only serves. A handler is called by many threads at once.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "server/net/Http.h"

namespace pollarix::server {

// What stands for the "*" of a route's path, in order.
using PathParts = std::vector<std::string>;
// Gives the answer. What it throws becomes an error page, 500 unless SetFailureStatus knows better;
// the thrower's words go into the log, never to the client.
using Handler = std::function<Response(const Request&, const PathParts&)>;

// Answers from memory alone, on the threads that serve the sockets: it never waits. Nothing when it
// can't; then the route's handler is asked.
using QuickHandler = std::function<std::optional<Response>(const Request&, const PathParts&)>;

class Router {
  public:
    // path: literal parts, and "*" for any one part that isn't empty ("/s/*"). GET answers HEAD
    // too. The first route that fits is taken. Handlers run on threads of their own, and may wait
    // for a commit, a password or a long read.
    void Add(std::string method, std::string path, Handler handler, QuickHandler quick = {});
    // What needs nothing but memory.
    void AddQuick(std::string method, std::string path, Handler handler);
    // The page for an address that nobody answers (404), a method that it hasn't (405), and what
    // went wrong elsewhere (400, 408, 413, 429, 431, 500, 503); plain words without one. Gets the
    // status.
    void SetErrorPage(std::function<Response(int status, const Request&)> page);

    // Which status a failure stands for; 500 without it.
    void SetFailureStatus(std::function<int(const std::exception&)> status);

    struct Route {
        std::string method;
        std::vector<std::string> parts;
        Handler handler;
        QuickHandler quick; // may be none
    };
    struct Found {
        const Route* route = nullptr; // null when nothing fits
        PathParts parts;
        int status = 200; // 404 or 405 without a route
    };
    Found Find(std::string_view method, std::string_view path) const;
    // With the status that was asked for.
    Response ErrorPage(int status, const Request& request) const;
    int StatusFor(const std::exception& failure) const;

  private:
    std::vector<Route> routes_;
    std::function<Response(int, const Request&)> errorPage_;
    std::function<int(const std::exception&)> failureStatus_;
};

} // namespace pollarix::server
