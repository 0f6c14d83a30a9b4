#include "server/net/Router.h"

namespace pollarix::server {

namespace {

std::vector<std::string> Split(std::string_view path) {
    std::vector<std::string> parts;
    std::size_t start = 1;
    for (;;) {
        const std::size_t end = path.find('/', start);
        parts.emplace_back(path.substr(start, end - start));
        if (end == std::string_view::npos)
            return parts;
        start = end + 1;
    }
}

const char* Words(int status) {
    switch (status) {
    case 400:
        return "This request can't be read.";
    case 404:
        return "There is nothing here.";
    case 405:
        return "This address can't be used in this way.";
    case 408:
        return "The request took too long.";
    case 413:
        return "The request is too large.";
    case 429:
        return "Too many requests. Please try again later.";
    case 431:
        return "The request's head is too large.";
    case 503:
        return "The server can't do this just now. Please try again later.";
    default:
        return "Something went wrong on the server.";
    }
}

} // namespace

void Router::Add(std::string method, std::string path, Work work, Handler handler) {
    routes_.push_back({std::move(method), Split(path), work, std::move(handler)});
}

void Router::SetErrorPage(std::function<Response(int, const Request&)> page) {
    errorPage_ = std::move(page);
}

void Router::SetFailureStatus(std::function<int(const std::exception&)> status) {
    failureStatus_ = std::move(status);
}

int Router::StatusFor(const std::exception& failure) const {
    return failureStatus_ ? failureStatus_(failure) : 500;
}

Router::Found Router::Find(std::string_view method, std::string_view path) const {
    Found found;
    found.status = 404;
    if (path.empty() || path.front() != '/')
        return found;
    const std::vector<std::string> asked = Split(path);
    const std::string_view wanted = method == "HEAD" ? "GET" : method;
    for (const Route& route : routes_) {
        if (route.parts.size() != asked.size())
            continue;
        PathParts parts;
        bool fits = true;
        for (std::size_t i = 0; fits && i < asked.size(); ++i) {
            if (route.parts[i] != "*")
                fits = route.parts[i] == asked[i];
            else if ((fits = !asked[i].empty()))
                parts.push_back(asked[i]);
        }
        if (fits && route.method == wanted)
            return {&route.handler, route.work, std::move(parts), 200};
        if (fits)
            found.status = 405;
    }
    return found;
}

Response Router::ErrorPage(int status, const Request& request) const {
    Response response =
        errorPage_ ? errorPage_(status, request) : Response::Text(status, Words(status));
    response.status = status;
    return response;
}

} // namespace pollarix::server
