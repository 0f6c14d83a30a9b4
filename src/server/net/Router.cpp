#include "server/net/Router.h"

#include <algorithm>

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

bool Fits(const std::vector<std::string>& parts, std::string_view path) {
    path.remove_prefix(1);
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const std::size_t end = std::min(path.find('/'), path.size());
        const std::string_view asked = path.substr(0, end);
        if (parts[i] == "*" ? asked.empty() : parts[i] != asked)
            return false;
        if ((end == path.size()) != (i + 1 == parts.size()))
            return false;
        path.remove_prefix(std::min(end + 1, path.size()));
    }
    return true;
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

void Router::Add(std::string method, std::string path, Handler handler, QuickHandler quick) {
    routes_.push_back({std::move(method), Split(path), std::move(handler), std::move(quick)});
}

void Router::AddQuick(std::string method, std::string path, Handler handler) {
    Add(std::move(method), std::move(path), handler, handler);
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
    const std::string_view wanted = method == "HEAD" ? "GET" : method;
    for (const Route& route : routes_) {
        if (!Fits(route.parts, path))
            continue;
        found.status = 405;
        if (route.method != wanted)
            continue;
        found.status = 200;
        found.route = &route;
        std::vector<std::string> asked = Split(path);
        for (std::size_t i = 0; i < asked.size(); ++i)
            if (route.parts[i] == "*")
                found.parts.push_back(std::move(asked[i]));
        return found;
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
