#include "exchange/CodePage.h"

#include <algorithm>
#include <array>

#include "platform/base/CodePage1252.h"

namespace pollarix::exchange {

namespace {

constexpr std::size_t MostNamed = 20;
constexpr char32_t NoLetter = 0xFFFD;

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

void LostLetters::Note(char32_t letter) {
    ++count;
    if (some.size() < MostNamed && some.find(letter) == std::u32string::npos)
        some += letter;
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
    for (const char c : bytes)
        AppendLetter(text, codepage1252::LetterOf(Byte(c)));
    return text;
}

std::string Windows1252FromUtf8(std::string_view utf8, LostLetters& lost) {
    std::string bytes;
    bytes.reserve(utf8.size());
    while (!utf8.empty()) {
        const char32_t letter = TakeLetter(utf8);
        if (const int byte = codepage1252::ByteOf(letter); byte >= 0) {
            bytes += static_cast<char>(byte);
            continue;
        }
        bytes += '?';
        lost.Note(letter);
    }
    return bytes;
}

void NoteLost(std::string_view utf8, LostLetters& lost) {
    while (!utf8.empty()) {
        if (Byte(utf8.front()) < 0x80)
            utf8.remove_prefix(1);
        else if (const char32_t letter = TakeLetter(utf8); codepage1252::ByteOf(letter) < 0)
            lost.Note(letter);
    }
}

} // namespace pollarix::exchange
