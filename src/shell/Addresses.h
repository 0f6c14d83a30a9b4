// Where the program's users find its maker and its support. The domain is one of those that are
// reserved for examples: whoever runs a service of their own puts theirs here.
#pragma once

namespace pollarix {

inline constexpr const char* SupportAddress = "support@pollarix.example";
inline constexpr const char* SupportPage = "https://www.pollarix.example/support/";
inline constexpr const char* MakersPage = "https://www.pollarix.example/";

} // namespace pollarix
