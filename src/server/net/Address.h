// Addresses of clients as text: brought into one form, and grouped for bounds.
#pragma once

#include <string>
#include <string_view>

namespace pollarix::server {

// The one way to write an address: "192.0.2.1" also for "::ffff:192.0.2.1", and IPv6 as short as it
// goes. "" for what is no address.
std::string PlainAddress(std::string_view text);

// What an address is counted under, whatever is bounded: of IPv6 the first half, since the other
// one is its owner's to choose.
std::string BoundName(const std::string& address);

} // namespace pollarix::server
