#include "platform/base/Windows1252.h"

#include <algorithm>
#include <array>
#include <optional>

namespace pollarix {

namespace {

// Bytes 0x80 to 0x9F; all others are the code points of the same number.
constexpr std::array<char16_t, 32> HighControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

std::optional<char> ByteOf(char16_t unit) {
    if (unit < 0x80 || (unit >= 0xA0 && unit <= 0xFF))
        return static_cast<char>(unit);
    const auto* found = std::find(HighControls.begin(), HighControls.end(), unit);
    if (found == HighControls.end())
        return std::nullopt;
    return static_cast<char>(0x80 + (found - HighControls.begin()));
}

} // namespace

QString FromWindows1252(QByteArrayView bytes) {
    QString text = QString::fromLatin1(bytes);
    for (QChar& character : text) {
        const char16_t unit = character.unicode();
        if (unit >= 0x80 && unit <= 0x9F)
            character = QChar(HighControls[unit - 0x80]);
    }
    return text;
}

QByteArray ToWindows1252(QStringView text) {
    QByteArray bytes;
    bytes.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool pair =
            text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
        bytes += ByteOf(text[i].unicode()).value_or('?');
        if (pair)
            ++i;
    }
    return bytes;
}

bool FitsWindows1252(QStringView text) {
    return std::all_of(text.begin(), text.end(),
                       [](QChar character) { return ByteOf(character.unicode()).has_value(); });
}

} // namespace pollarix
