#include "platform/richtext/RtfWords.h"

#include <algorithm>
#include <array>
#include <limits>

namespace pollarix::rtf {

namespace {

using enum Word;

constexpr auto Entries = std::to_array<WordEntry>({
    {"ansicpg", AnsiCodePage},
    {"annotation", Skipped},
    {"atnauthor", Skipped},
    {"atnid", Skipped},
    {"b", Bold},
    {"bin", Binary},
    {"blue", Blue},
    {"bullet", Character, 0x2022},
    {"cell", Character, '\t'},
    {"cf", Colour},
    {"colortbl", ColourTable},
    {"column", BlockEnd},
    {"cpg", CodePage},
    {"deff", DefaultFont},
    {"emdash", Character, 0x2014},
    {"emspace", Character, 0x2003},
    {"endash", Character, 0x2013},
    {"enspace", Character, 0x2002},
    {"f", Font},
    {"fcharset", CharSet},
    {"filetbl", Skipped},
    {"fldinst", Skipped},
    {"fonttbl", FontTable},
    {"footer", Skipped},
    {"footerf", Skipped},
    {"footerl", Skipped},
    {"footerr", Skipped},
    {"footnote", Skipped},
    {"fs", FontSize},
    {"green", Green},
    {"header", Skipped},
    {"headerf", Skipped},
    {"headerl", Skipped},
    {"headerr", Skipped},
    {"i", Italic},
    {"info", Skipped},
    {"ldblquote", Character, 0x201C},
    {"line", SoftLineEnd},
    {"listtext", BulletText},
    {"lquote", Character, 0x2018},
    {"mac", Mac},
    {"nestcell", Character, '\t'},
    {"nestrow", BlockEnd},
    {"nonshppict", Skipped},
    {"object", Skipped},
    {"page", BlockEnd},
    {"par", ParagraphEnd},
    {"pard", ParagraphDefaults},
    {"pc", Pc},
    {"pca", PcEurope},
    {"pict", Skipped},
    {"plain", Plain},
    {"pn", BulletStyle},
    {"pnlvl", NumberLevel},
    {"pnlvlblt", BulletLevel},
    {"pnlvlbody", NumberLevel},
    {"pnlvlcont", NumberLevel},
    {"pntext", BulletText},
    {"qmspace", Character, 0x2005},
    {"rdblquote", Character, 0x201D},
    {"red", Red},
    {"row", BlockEnd},
    {"rquote", Character, 0x2019},
    {"rxe", Skipped},
    {"sect", BlockEnd},
    {"shp", Skipped},
    {"stylesheet", Skipped},
    {"tab", Character, '\t'},
    {"tc", Skipped},
    {"template", Skipped},
    {"u", Unicode},
    {"uc", SkipCount},
    {"ul", Underline},
    {"uld", Underline},
    {"uldash", Underline},
    {"uldashd", Underline},
    {"uldashdd", Underline},
    {"uldb", Underline},
    {"ulnone", NoUnderline},
    {"ulth", Underline},
    {"ulw", Underline},
    {"ulwave", Underline},
    {"xe", Skipped},
    {"zwj", Character, 0x200D},
    {"zwnj", Character, 0x200C},
});

constexpr auto Sorted = [] {
    auto entries = Entries;
    std::ranges::sort(entries, {}, &WordEntry::name);
    return entries;
}();

// Where the words with each first letter begin: the search then takes two or three steps.
constexpr auto FirstOf = [] {
    std::array<std::uint8_t, 27> first{};
    for (std::size_t letter = 0; letter <= 26; ++letter) {
        std::size_t index = 0;
        while (index < Sorted.size() && Sorted[index].name[0] < static_cast<char>('a' + letter))
            ++index;
        first[letter] = static_cast<std::uint8_t>(index);
    }
    return first;
}();
static_assert(Sorted.size() < 256);

constexpr WordEntry None;

const WordEntry& FindWord(std::string_view name) {
    if (name.empty() || name[0] < 'a' || name[0] > 'z')
        return None;
    const auto letter = static_cast<std::size_t>(name[0] - 'a');
    for (std::size_t index = FirstOf[letter]; index < FirstOf[letter + 1]; ++index) {
        if (Sorted[index].name == name)
            return Sorted[index];
    }
    return None;
}

} // namespace

WordAndValue ReadWord(const char16_t*& position, const char16_t* end) {
    const char16_t* at = position; // a local one is faster
    char name[32];
    std::size_t length = 0;
    for (; at != end && IsLetter(*at); ++at) {
        if (length < sizeof name)
            name[length] = static_cast<char>(*at);
        ++length;
    }
    WordAndValue found{&FindWord({name, length > sizeof name ? 0 : length}), 0, false};
    const bool negative = end - at > 1 && *at == '-' && IsDigit(at[1]);
    if (negative)
        ++at;
    std::int64_t value = 0;
    for (; at != end && IsDigit(*at); ++at) {
        value = std::min<std::int64_t>(value * 10 + (*at - '0'), std::numeric_limits<int>::max());
        found.hasValue = true;
    }
    found.value = static_cast<int>(negative ? -value : value);
    if (at != end && *at == ' ')
        ++at;
    position = at;
    return found;
}

} // namespace pollarix::rtf
