// The font and colour tables at the head of a rich text, as they are read: entry by entry,
// character by character. Which group holds them is the parser's business.
#pragma once

#include <QColor>
#include <QString>

#include <optional>
#include <unordered_map>
#include <vector>

#include "platform/richtext/RtfWords.h"

namespace pollarix::rtf {

struct FontEntry {
    QString name;     // as RunFormat names it: "" for the default font
    int charSet = 1;  // "default"
    int codePage = 0; // 0 where the character set says it
    // The code page of the font's bytes, the text's own given.
    int CodePageIn(int textCodePage) const;
};

class FontTable {
  public:
    // The entry being read.
    void Begin(); // no entry, or what a broken table left, is under way
    void Obey(Word word, int value);
    void Add(char16_t unit); // ";" ends the entry
    void End();
    const FontEntry& Current() const { return current_; }

    // None for a number the table does not hold.
    const FontEntry* Find(int number) const;

  private:
    FontEntry current_;
    int number_ = 0;
    std::unordered_map<int, FontEntry> entries_;
};

class ColourTable {
  public:
    void Begin();
    void Obey(Word word, int value);
    void Add(char16_t unit); // ";" ends the entry

    // None for an entry that leaves the colour to the window, or that the table does not hold.
    std::optional<QColor> Find(int position) const;

  private:
    std::optional<QColor> current_;
    std::vector<std::optional<QColor>> entries_;
};

} // namespace pollarix::rtf
