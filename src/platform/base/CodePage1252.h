// The table of Windows-1252, one byte to one letter and back, as plain numbers. The one header of
// the platform without anything of the toolkit, so that the survey server can stand on it as well.
#pragma once

#include <algorithm>
#include <array>

namespace pollarix {

namespace codepage1252 {

// Bytes 0x80 to 0x9F; all others are the code points of the same number.
inline constexpr std::array<char16_t, 32> HighControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

// Every byte is a letter: the five that the code page leaves undefined are the control characters
// of the same number.
constexpr char16_t LetterOf(unsigned char byte) {
    return byte >= 0x80 && byte <= 0x9F ? HighControls[byte - 0x80U] : byte;
}

// -1 for a letter that has no byte.
constexpr int ByteOf(char32_t letter) {
    if (letter < 0x80 || (letter >= 0xA0 && letter <= 0xFF))
        return static_cast<int>(letter);
    const auto* found = std::find(HighControls.begin(), HighControls.end(), letter);
    return found == HighControls.end() ? -1 : 0x80 + static_cast<int>(found - HighControls.begin());
}

} // namespace codepage1252

} // namespace pollarix
