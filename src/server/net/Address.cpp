#include "server/net/Address.h"

#include <array>

#include <arpa/inet.h>

namespace pollarix::server {

namespace {

std::string Shown(int family, const void* bytes) {
    std::array<char, INET6_ADDRSTRLEN> text{};
    return inet_ntop(family, bytes, text.data(), text.size()) ? text.data() : "";
}

} // namespace

std::string PlainAddress(std::string_view given) {
    const std::string text(given);
    in_addr v4{};
    if (inet_pton(AF_INET, text.c_str(), &v4) == 1)
        return Shown(AF_INET, &v4);
    in6_addr v6{};
    if (inet_pton(AF_INET6, text.c_str(), &v6) != 1)
        return "";
    return IN6_IS_ADDR_V4MAPPED(&v6) ? Shown(AF_INET, &v6.s6_addr[12]) : Shown(AF_INET6, &v6);
}

std::string BoundName(const std::string& address) {
    std::array<char, 16> bytes{};
    // Most addresses are of IPv4, and those need no look.
    if (address.find(':') == std::string::npos ||
        inet_pton(AF_INET6, address.c_str(), bytes.data()) != 1)
        return address;
    return {bytes.data(), bytes.size() / 2};
}

} // namespace pollarix::server
