#include "server/accounts/SentText.h"

#include <algorithm>
#include <charconv>

#include "exchange/CodePage.h"

namespace pollarix::server {

namespace {

// The byte that "%XX" at the text's start stands for, if the program writes that byte so; else -1.
int EscapedByte(std::string_view text) {
    if (text.size() < 3)
        return -1;
    unsigned byte = 0;
    const auto [end, error] = std::from_chars(text.data() + 1, text.data() + 3, byte, 16);
    const bool isByte = error == std::errc() && end == text.data() + 3;
    return isByte && (byte <= 0x20 || byte >= 0x7F) ? static_cast<int>(byte) : -1;
}

std::string Unescaped(std::string_view part) {
    std::string bytes;
    for (std::size_t i = 0; i < part.size(); ++i) {
        const int byte = part[i] == '%' ? EscapedByte(part.substr(i)) : -1;
        bytes += byte < 0 ? part[i] : static_cast<char>(byte);
        if (byte >= 0)
            i += 2;
    }
    return bytes;
}

template <typename Change> std::string EachPart(std::string_view text, Change change) {
    std::string changed;
    for (;;) {
        const std::size_t end = std::min(text.find('&'), text.size());
        changed += change(text.substr(0, end));
        if (end == text.size())
            return changed;
        changed += '&';
        text.remove_prefix(end + 1);
    }
}

std::string TextOfPart(std::string_view part) {
    std::string bytes = Unescaped(part);
    return exchange::IsUtf8(bytes) ? bytes : exchange::Utf8FromWindows1252(bytes);
}

} // namespace

std::string TextOfSent(std::string_view bytes) {
    return EachPart(bytes, TextOfPart);
}

std::string AsSent(std::string_view utf8) {
    return EachPart(utf8, [](std::string_view part) {
        exchange::LostLetters lost;
        const std::string narrow = exchange::Windows1252FromUtf8(part, lost);
        return TextOfPart(lost.count == 0 ? std::string_view(narrow) : part);
    });
}

} // namespace pollarix::server
