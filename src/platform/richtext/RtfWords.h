// The control words of RTF that the reader knows, and the reading of one. What they do is the
// reader's business. Also the one sign that reader and writers have to agree on.
#pragma once

#include <cstdint>
#include <string_view>

namespace pollarix::rtf {

// "o" in this font is a hollow box. It is written as that box, with "o" as what a reader without
// Unicode takes: so a box is seen too where the font is missing. The reader gives "o" again.
constexpr const char* BoxFontName = "Wingdings";
constexpr char16_t BoxLetter = u'o';
constexpr char16_t BoxSign = 0x25A1;

enum class Word : std::uint8_t {
    Unknown,
    // the text as a whole
    AnsiCodePage, // \ansicpg
    Mac,          // the other old code pages of a whole text
    Pc,
    PcEurope,
    DefaultFont,
    // characters
    Character, // stands for one character, see WordEntry::value
    Unicode,   // \uN
    SkipCount, // \ucN
    Binary,    // \binN
    // line ends
    ParagraphEnd,
    SoftLineEnd,
    BlockEnd, // a page, section or table row: ends a paragraph that has text
    // formats
    ParagraphDefaults, // \pard
    Plain,
    Bold,
    Italic,
    Underline,
    NoUnderline,
    Font,
    FontSize,
    Colour,
    // destinations
    FontTable,
    ColourTable,
    Skipped,     // its group holds no text
    BulletText,  // \pntext, \listtext: the bullet as older readers show it
    BulletStyle, // \pn
    // inside destinations
    CharSet,
    CodePage,
    Red,
    Green,
    Blue,
    BulletLevel, // of \pn: a bullet
    NumberLevel, // of \pn: anything else
};

struct WordEntry {
    std::string_view name;
    Word word = Word::Unknown;
    char16_t value = 0;
};

inline bool IsLetter(char16_t unit) {
    return (unit >= 'a' && unit <= 'z') || (unit >= 'A' && unit <= 'Z');
}

inline bool IsDigit(char16_t unit) {
    return unit >= '0' && unit <= '9';
}

struct WordAndValue {
    const WordEntry* entry; // Unknown for letters that are no known word
    int value;              // its number, 0 for none; the nearest int for one out of range
    bool hasValue;
};

// Reads the word that begins at the position, and leaves the position behind its number and the one
// blank that belongs to it.
WordAndValue ReadWord(const char16_t*& position, const char16_t* end);

} // namespace pollarix::rtf
