// One call of the program, as it stands in the query of its request. Nothing in there is encoded,
// so it is parted only at the marks that belong to the function.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pollarix::server {

struct RawCall {
    std::string function;
    std::vector<std::string> values; // as many as the function has, UTF-8
};

// Nothing when the function is none of the eight, or a value is missing.
std::optional<RawCall> ReadCall(std::string_view query);

// A whole decimal number from 1 to 32767; nothing for anything else.
std::optional<std::int64_t> NumberOf(std::string_view text);

} // namespace pollarix::server
