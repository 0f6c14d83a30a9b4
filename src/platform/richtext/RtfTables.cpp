#include "platform/richtext/RtfTables.h"

#include <algorithm>
#include <utility>

#include "platform/richtext/RichText.h"
#include "platform/richtext/RtfCodePage.h"

namespace pollarix::rtf {

namespace {

constexpr qsizetype MaxNameLength = 128;

} // namespace

int FontEntry::CodePageIn(int textCodePage) const {
    return codePage > 0 ? codePage : CodePageOfCharSet(charSet, textCodePage);
}

void FontTable::Begin() {
    current_ = {};
    number_ = 0;
}

void FontTable::Obey(Word word, int value) {
    if (word == Word::Font) {
        End();
        number_ = value;
    } else if (word == Word::CharSet) {
        current_.charSet = value;
    } else if (word == Word::CodePage) {
        current_.codePage = value;
    }
}

void FontTable::Add(char16_t unit) {
    if (unit == ';')
        End();
    else if (current_.name.size() < MaxNameLength)
        current_.name += QChar(unit);
}

void FontTable::End() {
    if (current_.name.isEmpty())
        return;
    current_.name = Normalised({.fontName = current_.name}).fontName;
    entries_[number_] = std::exchange(current_, {});
}

const FontEntry* FontTable::Find(int number) const {
    const auto found = entries_.find(number);
    return found == entries_.end() ? nullptr : &found->second;
}

void ColourTable::Begin() {
    current_.reset();
}

void ColourTable::Obey(Word word, int value) {
    if (word != Word::Red && word != Word::Green && word != Word::Blue)
        return;
    if (!current_)
        current_ = QColor(0, 0, 0);
    const int part = std::clamp(value, 0, 255);
    if (word == Word::Red)
        current_->setRed(part);
    else if (word == Word::Green)
        current_->setGreen(part);
    else
        current_->setBlue(part);
}

void ColourTable::Add(char16_t unit) {
    if (unit == ';')
        entries_.push_back(std::exchange(current_, std::nullopt));
}

std::optional<QColor> ColourTable::Find(int position) const {
    if (position < 0 || static_cast<std::size_t>(position) >= entries_.size())
        return std::nullopt;
    return entries_[static_cast<std::size_t>(position)];
}

} // namespace pollarix::rtf
