#include "exchange/SentText.h"

#include <algorithm>
#include <charconv>

#include "exchange/CodePage.h"

namespace pollarix::exchange {

namespace {

constexpr std::size_t LongestSurveyName = 200; // bytes

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
    return IsUtf8(bytes) ? bytes : exchange::Utf8FromWindows1252(bytes);
}

} // namespace

std::string TextOfSent(std::string_view bytes) {
    return EachPart(bytes, TextOfPart);
}

std::string AsSent(std::string_view utf8) {
    return EachPart(utf8, [](std::string_view part) {
        LostLetters lost;
        const std::string narrow = Windows1252FromUtf8(part, lost);
        return TextOfPart(lost.count == 0 ? std::string_view(narrow) : part);
    });
}

std::string_view FaultOfSurveyName(std::string_view utf8) {
    if (utf8.empty() || utf8.size() > LongestSurveyName)
        return "The survey's name is empty or too long.";
    for (std::string_view rest = utf8; !rest.empty();) {
        // The program takes that mark for the end of the name.
        if (rest.size() >= 4 && rest[0] == '<' && (rest[1] | 0x20) == 'b' &&
            (rest[2] | 0x20) == 'r' && rest[3] == '>')
            return "The survey's name can't have <br> in it.";
        const char32_t letter = TakeLetter(rest);
        if (letter < 0x20 || (letter >= 0x7F && letter <= 0x9F))
            return "The survey's name has characters that can't be in a name.";
    }
    if (AsSent(utf8) != utf8)
        return "The program can't send such a name: behind a % it has two characters that stand "
               "for another one.";
    return "";
}

} // namespace pollarix::exchange
