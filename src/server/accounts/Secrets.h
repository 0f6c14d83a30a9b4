// Tokens and passwords: made, hashed and compared. The only code that touches them; nothing is
// stored here.
#pragma once

#include <string>
#include <string_view>

namespace pollarix::server {

// A new token that nobody can guess, for addresses, links and cookies: letters, digits, "-", "_".
// 22 characters hold 128 bits.
std::string NewToken(std::size_t characters = 22);
// What is stored in place of a token. The same token always gives the same bytes.
std::string TokenHash(std::string_view token);
// Compares without telling by its time where they differ.
bool SameSecret(std::string_view a, std::string_view b);

// argon2id with a new salt; takes some tens of milliseconds and 64 MB. Throws std::bad_alloc.
std::string HashPassword(std::string_view password);
// An empty hash fits no password, and takes as long as any other.
bool PasswordFits(const std::string& hash, std::string_view password);

} // namespace pollarix::server
