#include "exchange/CodePage.h"

#include <algorithm>
#include <array>

namespace pollarix::exchange {

namespace {

constexpr std::size_t MostNamed = 20;
constexpr char32_t NoLetter = 0xFFFD;

// Bytes 0x80 to 0x9F; all others are the code points of the same number.
constexpr std::array<char16_t, 32> HighControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

unsigned char Byte(char c) {
    return static_cast<unsigned char>(c);
}

// How many bytes the letter at the beginning has, and which it is; 0 for none.
std::size_t Decode(std::string_view text, char32_t& letter) {
    const unsigned char first = Byte(text[0]);
    if (first < 0x80) {
        letter = first;
        return 1;
    }
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : first >= 0xC0 ? 2 : 0;
    if (length == 0 || first > 0xF4 || text.size() < length)
        return 0;
    letter = first & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((Byte(text[i]) & 0xC0U) != 0x80)
            return 0;
        letter = letter << 6U | (Byte(text[i]) & 0x3FU);
    }
    constexpr std::array<char32_t, 5> smallest = {0, 0, 0x80, 0x800, 0x10000};
    if (letter < smallest[length] || letter > 0x10FFFF || (letter >= 0xD800 && letter <= 0xDFFF))
        return 0;
    return length;
}

} // namespace

std::string LostLetters::Names() const {
    std::string names;
    for (const char32_t letter : some) {
        if (!names.empty())
            names += ' ';
        AppendLetter(names, letter);
    }
    return names;
}

void AppendLetter(std::string& utf8, char32_t letter) {
    const auto tail = [&](unsigned shift) {
        utf8 += static_cast<char>(0x80U | (letter >> shift & 0x3FU));
    };
    if (letter < 0x80) {
        utf8 += static_cast<char>(letter);
    } else if (letter < 0x800) {
        utf8 += static_cast<char>(0xC0U | letter >> 6U);
        tail(0);
    } else if (letter < 0x10000) {
        utf8 += static_cast<char>(0xE0U | letter >> 12U);
        tail(6);
        tail(0);
    } else {
        utf8 += static_cast<char>(0xF0U | letter >> 18U);
        tail(12);
        tail(6);
        tail(0);
    }
}

char32_t TakeLetter(std::string_view& utf8) {
    char32_t letter = NoLetter;
    const std::size_t length = Decode(utf8, letter);
    utf8.remove_prefix(std::max<std::size_t>(length, 1));
    return length == 0 ? NoLetter : letter;
}

bool IsUtf8(std::string_view bytes) {
    char32_t letter = 0;
    while (!bytes.empty()) {
        const std::size_t length = Decode(bytes, letter);
        if (length == 0)
            return false;
        bytes.remove_prefix(length);
    }
    return true;
}

std::string Utf8FromWindows1252(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size());
    for (const char c : bytes) {
        const unsigned char byte = Byte(c);
        AppendLetter(text, byte >= 0x80 && byte <= 0x9F ? HighControls[byte - 0x80U] : byte);
    }
    return text;
}

std::string Windows1252FromUtf8(std::string_view utf8, LostLetters& lost) {
    std::string bytes;
    bytes.reserve(utf8.size());
    while (!utf8.empty()) {
        const char32_t letter = TakeLetter(utf8);
        if (letter < 0x80 || (letter >= 0xA0 && letter <= 0xFF)) {
            bytes += static_cast<char>(letter);
            continue;
        }
        const auto* found = std::find(HighControls.begin(), HighControls.end(), letter);
        if (found != HighControls.end()) {
            bytes += static_cast<char>(0x80 + (found - HighControls.begin()));
            continue;
        }
        bytes += '?';
        ++lost.count;
        if (lost.some.size() < MostNamed && lost.some.find(letter) == std::u32string::npos)
            lost.some += letter;
    }
    return bytes;
}

} // namespace pollarix::exchange
