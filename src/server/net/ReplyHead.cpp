#include "server/net/ReplyHead.h"

#include <array>
#include <ctime>

namespace pollarix::server {

namespace {

const char* Reason(int status) {
    switch (status) {
    case 200:
        return "OK";
    case 303:
        return "See Other";
    case 304:
        return "Not Modified";
    case 400:
        return "Bad Request";
    case 403:
        return "Forbidden";
    case 404:
        return "Not Found";
    case 405:
        return "Method Not Allowed";
    case 408:
        return "Request Timeout";
    case 409:
        return "Conflict";
    case 413:
        return "Payload Too Large";
    case 422:
        return "Unprocessable Entity";
    case 429:
        return "Too Many Requests";
    case 431:
        return "Request Header Fields Too Large";
    case 503:
        return "Service Unavailable";
    default:
        return status < 400 ? "Done" : status < 500 ? "Refused" : "Internal Server Error";
    }
}

// The time now as a header has it, made anew once a second in each thread.
const std::string& DateNow() {
    thread_local std::time_t made = 0;
    thread_local std::string date;
    if (const std::time_t now = std::time(nullptr); now != made) {
        made = now;
        std::tm parts{};
        gmtime_r(&now, &parts);
        std::array<char, 40> text{};
        std::strftime(text.data(), text.size(), "%a, %d %b %Y %H:%M:%S GMT", &parts);
        date = text.data();
    }
    return date;
}

// A header's value must not end its line.
std::string OneLine(std::string value) {
    std::erase_if(value, [](char c) { return static_cast<unsigned char>(c) < 0x20; });
    return value;
}

} // namespace

std::string ReplyHead(const Response& response, bool isChunked, bool keepAlive) {
    std::string head = "HTTP/1.1 " + std::to_string(response.status) + ' ' +
                       Reason(response.status) + "\r\nDate: " + DateNow() +
                       "\r\nX-Content-Type-Options: nosniff\r\n";
    if (!response.contentType.empty())
        head += "Content-Type: " + OneLine(response.contentType) + "\r\n";
    if (isChunked)
        head += "Transfer-Encoding: chunked\r\n";
    else if (!response.stream)
        head += "Content-Length: " + std::to_string(response.body.size()) + "\r\n";
    for (const auto& [name, value] : response.headers)
        head += name + ": " + OneLine(value) + "\r\n";
    head += keepAlive ? "Connection: keep-alive\r\n\r\n" : "Connection: close\r\n\r\n";
    return head;
}

} // namespace pollarix::server
