// Which UTF-16 units may stand in a run of rich text, and the cutting of loose text into lines of
// such units. Shared by the reader, the writers and the editor; no format, no markup.
#pragma once

#include <QChar>
#include <QStringView>

#include <cstdint>

namespace pollarix {

enum class UnitKind : std::uint8_t { Plain, Break, Drop, High, Low };

// Control characters, and the marks a text document uses for its own structure, never reach a run.
constexpr UnitKind KindOf(char16_t unit) {
    if (unit < 0x20) {
        if (unit == '\t')
            return UnitKind::Plain;
        return unit >= 0x0A && unit <= 0x0C ? UnitKind::Break : UnitKind::Drop;
    }
    if (unit < 0x7F)
        return UnitKind::Plain;
    if (unit < 0xA0)
        return UnitKind::Drop;
    if (unit < 0x2028)
        return UnitKind::Plain;
    if (unit <= 0x2029)
        return UnitKind::Break;
    if (unit >= 0xD800 && unit <= 0xDFFF)
        return unit < 0xDC00 ? UnitKind::High : UnitKind::Low;
    const bool structural = unit == 0xFFFC || unit >= 0xFFFE || (unit >= 0xFDD0 && unit <= 0xFDEF);
    return structural ? UnitKind::Drop : UnitKind::Plain;
}

// Takes text in pieces and gives it as lines of clean units. CR LF, LF and CR are one line end
// each, also when a piece ends between CR and LF. Half of a surrogate pair becomes U+FFFD.
class LineSplitter {
  public:
    // onText(QStringView) gets a stretch that is never empty; onBreak() stands for a line end.
    template <class OnText, class OnBreak>
    void Feed(QStringView text, OnText&& onText, OnBreak&& onBreak) {
        const char16_t* at = text.utf16();
        const char16_t* const end = at + text.size();
        while (at != end) {
            const char16_t* const start = at;
            while (at != end && KindOf(*at) == UnitKind::Plain)
                ++at;
            if (at != start) {
                Finish(onText);
                afterReturn_ = false;
                onText(QStringView(start, at));
                continue;
            }
            const char16_t unit = *at++;
            const bool lineFeedOfReturn = afterReturn_ && unit == '\n';
            const UnitKind kind = unit == '\r' ? UnitKind::Break : KindOf(unit);
            if (kind == UnitKind::Drop || lineFeedOfReturn) {
                afterReturn_ = false;
                continue;
            }
            afterReturn_ = unit == '\r';
            if (kind == UnitKind::Low && high_) {
                const char16_t pair[] = {high_, unit};
                high_ = 0;
                onText(QStringView(pair, 2));
                continue;
            }
            Finish(onText);
            if (kind == UnitKind::Break) {
                onBreak();
            } else {
                high_ = unit;
                if (kind == UnitKind::Low)
                    Finish(onText);
            }
        }
    }

    // No more text: what waits for its other half comes out.
    template <class OnText> void Finish(OnText&& onText) {
        if (!high_)
            return;
        high_ = 0;
        const char16_t replacement = QChar::ReplacementCharacter;
        onText(QStringView(&replacement, 1));
    }

    // Whether a text that begins with a plain unit or CR LF may go past this splitter. It has to
    // be told of it; the text must end in a plain unit or CR LF.
    bool IsBetweenUnits() const { return !high_; }
    void Passed() { afterReturn_ = false; }

  private:
    bool afterReturn_ = false;
    char16_t high_ = 0;
};

} // namespace pollarix
