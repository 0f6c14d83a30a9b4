#include "server/accounts/Secrets.h"

#include <array>
#include <new>
#include <stdexcept>

#include <sodium.h>

namespace pollarix::server {

namespace {

void Start() {
    static const int started = sodium_init();
    if (started < 0)
        throw std::runtime_error("The machine has no source of random numbers.");
}

} // namespace

std::string NewToken(std::size_t characters) {
    constexpr std::string_view letters =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
    static_assert(letters.size() == 64); // six bits of a byte choose evenly
    Start();
    std::string token(characters, ' ');
    randombytes_buf(token.data(), token.size()); // at once: each asking costs a call of the system
    for (char& letter : token)
        letter = letters[static_cast<unsigned char>(letter) % letters.size()];
    return token;
}

std::string TokenHash(std::string_view token) {
    Start();
    std::string hash(crypto_generichash_BYTES, '\0');
    crypto_generichash(reinterpret_cast<unsigned char*>(hash.data()), hash.size(),
                       reinterpret_cast<const unsigned char*>(token.data()), token.size(), nullptr,
                       0);
    return hash;
}

bool SameSecret(std::string_view a, std::string_view b) {
    return a.size() == b.size() && sodium_memcmp(a.data(), b.data(), a.size()) == 0;
}

std::string HashPassword(std::string_view password) {
    Start();
    std::array<char, crypto_pwhash_STRBYTES> hash{};
    if (crypto_pwhash_str(hash.data(), password.data(), password.size(),
                          crypto_pwhash_OPSLIMIT_INTERACTIVE,
                          crypto_pwhash_MEMLIMIT_INTERACTIVE) != 0)
        throw std::bad_alloc();
    return hash.data();
}

bool PasswordFits(const std::string& hash, std::string_view password) {
    Start();
    // A name that isn't there costs as much time as a wrong password.
    static const std::string nobodys = HashPassword(NewToken());
    const std::string& compared = hash.empty() ? nobodys : hash;
    const bool fits =
        crypto_pwhash_str_verify(compared.c_str(), password.data(), password.size()) == 0;
    return fits && !hash.empty();
}

} // namespace pollarix::server
