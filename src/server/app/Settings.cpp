#include "server/app/Settings.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <functional>
#include <limits>
#include <map>
#include <sstream>

#include "server/net/Address.h"

namespace pollarix::server {

namespace {

// Thrown by what reads a value; the line is told by who knows it.
struct BadValue {
    std::string wanted;
};

std::string Trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t\r");
    if (first == std::string_view::npos)
        return {};
    return std::string(text.substr(first, text.find_last_not_of(" \t\r") - first + 1));
}

template <typename Number> Number ReadNumber(const std::string& text, Number least, Number most) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || number < least || number > most)
        throw BadValue{"a number from " + std::to_string(least) + " to " + std::to_string(most)};
    return number;
}

// "address:port", "[address]:port" or "off".
Endpoint ReadEndpoint(const std::string& text) {
    if (text == "off")
        return {"", 0, true};
    const std::size_t colon = text.rfind(':');
    if (colon == std::string::npos)
        throw BadValue{"an address and a port, such as 127.0.0.1:8421"};
    std::string address = text.substr(0, colon);
    if (address.size() > 2 && address.front() == '[' && address.back() == ']')
        address = address.substr(1, address.size() - 2);
    return {address, ReadNumber<std::uint16_t>(text.substr(colon + 1), 0, 65535), false};
}

std::vector<std::string> ReadAddresses(const std::string& text) {
    std::vector<std::string> list;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        list.push_back(PlainAddress(word));
        if (list.back().empty())
            throw BadValue{"addresses, such as 127.0.0.1 ::1"};
    }
    return list;
}

std::string ReadUrl(const std::string& text) {
    if (!text.starts_with("http://") && !text.starts_with("https://"))
        throw BadValue{"an address that begins with http:// or https://"};
    return text.back() == '/' ? text : text + '/';
}

using Setter = std::function<void(const std::string&)>;

template <typename Number> Setter Set(Number& number, Number least, Number most) {
    return [&number, least, most](const std::string& text) {
        number = ReadNumber<Number>(text, least, most);
    };
}

Setter SetDays(Time& seconds) {
    return
        [&seconds](const std::string& text) { seconds = ReadNumber<Time>(text, 1, 3650) * 86400; };
}

std::map<std::string, Setter> Setters(Settings& s) {
    constexpr std::size_t mega = 1024 * 1024;
    return {
        {"data", [&](const std::string& text) { s.data = text; }},
        {"http", [&](const std::string& text) { s.http = ReadEndpoint(text); }},
        {"ftp", [&](const std::string& text) { s.ftp = ReadEndpoint(text); }},
        {"url", [&](const std::string& text) { s.url = ReadUrl(text); }},
        {"proxies",
         [&](const std::string& text) { s.httpBounds.trustedProxies = ReadAddresses(text); }},
        {"accounts",
         [&](const std::string& text) {
             if (text != "invitation" && text != "open")
                 throw BadValue{"invitation or open"};
             s.accounts.isOpen = text == "open";
         }},
        {"ftp-address", [&](const std::string& text) { s.ftpBounds.publicAddress = text; }},
        {"ftp-data-ports",
         [&](const std::string& text) {
             const std::size_t dash = text.find('-');
             if (dash == std::string::npos)
                 throw BadValue{"two ports, such as 8430-8449"};
             s.ftpBounds.firstDataPort = ReadNumber<std::uint16_t>(text.substr(0, dash), 1, 65535);
             s.ftpBounds.lastDataPort =
                 ReadNumber<std::uint16_t>(text.substr(dash + 1), s.ftpBounds.firstDataPort, 65535);
         }},
        {"head-bytes", Set<std::size_t>(s.httpBounds.headBytes, 1024, mega)},
        {"body-bytes", Set<std::size_t>(s.httpBounds.bodyBytes, 1024, 64 * mega)},
        {"document-bytes", Set<std::size_t>(s.ftpBounds.documentBytes, 1024, 64 * mega)},
        {"connections", Set<std::size_t>(s.httpBounds.connections, 1, 100000)},
        {"connections-per-address",
         Set<std::size_t>(s.httpBounds.connectionsPerAddress, 1, 100000)},
        {"request-seconds", Set<int>(s.httpBounds.secondsForRequest, 1, 600)},
        {"requests-at-once", Set<int>(s.httpBounds.requestsAtOnce, 1, 1024)},
        {"uploads-at-once", Set<int>(s.ftpBounds.sessions, 1, 1024)},
        {"wrong-logins", Set<int>(s.accounts.wrongLogins, 1, 1000000)},
        {"new-accounts-per-day", Set<int>(s.accounts.newAccounts, 1, 1000000)},
        {"submissions-per-minute", Set<int>(s.submissionsPerMinute, 1, 100000000)},
        {"versions-per-survey", Set<int>(s.publish.versions, 2, 100000)},
        {"documents-per-account",
         Set<std::int64_t>(s.publish.documentBytes, 1024, 1024LL * 1024 * mega)},
        {"bodies-bytes-per-address",
         Set<std::size_t>(s.httpBounds.bodiesBytesPerAddress, 1024, 1024 * mega)},
        {"surveys-per-account", Set<int>(s.surveysPerAccount, 1, 5000)},
        {"keep-drafts-days", SetDays(s.retention.drafts)},
        {"keep-results-days", SetDays(s.retention.droppedResults)},
        {"keep-surveys-days", SetDays(s.retention.deletedSurveys)},
    };
}

} // namespace

Settings ParseSettings(const std::string& text, const std::string& file) {
    Settings settings;
    const std::map<std::string, Setter> setters = Setters(settings);
    std::istringstream lines(text);
    int number = 0;
    for (std::string line; std::getline(lines, line);) {
        const std::string where = file + ", line " + std::to_string(++number) + ": ";
        const std::string content = Trimmed(line);
        if (content.empty() || content.front() == '#')
            continue;
        const std::size_t equals = content.find('=');
        if (equals == std::string::npos)
            throw BadSettings(where + "this is not \"name = value\"");
        const std::string name = Trimmed(std::string_view(content).substr(0, equals));
        const std::string value = Trimmed(std::string_view(content).substr(equals + 1));
        const auto setter = setters.find(name);
        if (setter == setters.end())
            throw BadSettings(where + "there is no setting \"" + name + '"');
        if (value.empty())
            throw BadSettings(where + name + " has no value");
        try {
            setter->second(value);
        } catch (const BadValue& bad) {
            throw BadSettings(where + name + " has to be " + bad.wanted);
        }
    }
    return settings;
}

Settings ReadSettings(const std::string& file) {
    std::ifstream stream(file);
    std::ostringstream text;
    if (!stream || !(text << stream.rdbuf() || stream.peek() == std::ifstream::traits_type::eof()))
        throw BadSettings("The settings can't be read: " + file);
    return ParseSettings(text.str(), file);
}

} // namespace pollarix::server
