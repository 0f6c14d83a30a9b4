// The parser of rich text, for the reader alone. One pass over the text without recursion: what a
// group changes is kept on a stack of its own. It gives paragraphs and formats to a sink and knows
// nothing of what the sink makes of them.
#pragma once

#include <algorithm>
#include <utility>
#include <vector>

#include "platform/base/TextUnits.h"
#include "platform/richtext/RichText.h"
#include "platform/richtext/RtfCodePage.h"
#include "platform/richtext/RtfTables.h"
#include "platform/richtext/RtfWords.h"

namespace pollarix::rtf {

// Beyond this depth groups with formats of their own share one entry of the stack: the text is
// kept, the memory stays bounded.
constexpr std::size_t MaxSavedStates = 1 << 20;
constexpr qsizetype MaxBulletTextLength = 8;

struct State {
    int font = -1; // number in the font table; -1 for the text's default
    int halfPoints = 0;
    int colour = -1; // position in the colour table
    int skipCount = 1;
    bool bold = false;
    bool italic = false;
    bool underline = false;
    bool bullet = false;
    bool operator==(const State&) const = default;
};

enum class Destination { Text, FontTable, ColourTable, BulletText, BulletStyle };

inline int HexValue(char16_t unit) {
    if (IsDigit(unit))
        return unit - '0';
    const char16_t lower = unit | 0x20;
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

// Units that are text by themselves, one after the other.
inline bool IsOrdinary(char16_t unit) {
    return unit != '\\' && unit != '{' && unit != '}' && KindOf(unit) == UnitKind::Plain;
}

// What stands in front of a paragraph is a bullet if it is a sign, and a number if it has letters
// or digits. A lone "o" is the bullet of inner lists.
inline bool IsBulletText(const QString& text) {
    const QString sign = text.trimmed();
    return sign == "o" ||
           (!sign.isEmpty() && std::none_of(sign.begin(), sign.end(),
                                            [](QChar unit) { return unit.isLetterOrNumber(); }));
}

// A sink gets each paragraph as Begin(), Text(QStringView)..., End(bullet), and, if it says
// WantsFormats, SetFormat(RunFormat) before the text that the format is for.
template <class Sink> class Parser {
  public:
    Parser(QStringView text, Sink& sink)
        : at_(text.utf16()), end_(at_ + text.size()), sink_(sink) {}

    void Run() {
        while (at_ != end_ && !finished_) {
            if (skippedDepth_ > 0)
                SkipOn();
            else
                Step();
        }
        FlushHalfPair();
        if (open_ || softPiece_)
            EndParagraph(false);
    }

  private:
    void Step() {
        const char16_t unit = *at_;
        if (destination_ == Destination::Text && IsOrdinary(unit) && unitsToSkip_ == 0 &&
            !BytesWait()) {
            const char16_t* const start = at_;
            do
                ++at_;
            while (at_ != end_ && IsOrdinary(*at_));
            Emit(QStringView(start, at_));
            return;
        }
        ++at_;
        switch (unit) {
        case '{':
            Open();
            break;
        case '}':
            Close();
            break;
        case '\\':
            Control();
            break;
        case '\r':
        case '\n':
        case '\0':
            break;
        default:
            RawUnit(unit);
        }
    }

    // Groups.

    void Open() {
        EndSkipping();
        groupStart_ = true;
        ++depth_;
        if (!saved_.empty() && (saved_.back().first == state_ || saved_.size() >= MaxSavedStates))
            ++saved_.back().second;
        else
            saved_.emplace_back(state_, 1);
    }

    void Close() {
        EndSkipping();
        groupStart_ = false;
        if (depth_ > 0) {
            SetState(saved_.back().first);
            if (--saved_.back().second == 0)
                saved_.pop_back();
            if (destination_ != Destination::Text && depth_ == destinationDepth_)
                LeaveDestination();
            --depth_;
        }
        finished_ = depth_ == 0;
    }

    void Enter(Destination destination) {
        destination_ = destination;
        destinationDepth_ = depth_;
        fonts_.Begin();
        colours_.Begin();
        bulletText_.clear();
        bulletStyle_ = state_.bullet;
    }

    void LeaveDestination() {
        switch (std::exchange(destination_, Destination::Text)) {
        case Destination::FontTable:
            fonts_.End();
            break;
        case Destination::BulletText:
            paragraphBullet_ = IsBulletText(bulletText_);
            break;
        case Destination::BulletStyle:
            state_.bullet = bulletStyle_;
            break;
        default:
            break;
        }
    }

    // A group without text is passed over fast; only its braces and binary data count.
    void SkipOn() {
        while (at_ != end_) {
            const char16_t unit = *at_++;
            if (unit == '{') {
                ++skippedDepth_;
            } else if (unit == '}') {
                if (--skippedDepth_ == 0) {
                    Close();
                    return;
                }
            } else if (unit == '\\' && at_ != end_) {
                if (!IsLetter(*at_)) {
                    ++at_;
                    continue;
                }
                const WordAndValue found = ReadWord(at_, end_);
                if (found.entry->word == Word::Binary)
                    SkipBinary(found.value);
            }
        }
    }

    // Control words and symbols.

    void Control() {
        if (at_ == end_)
            return;
        const char16_t unit = *at_;
        if (IsLetter(unit)) {
            const bool starts = std::exchange(groupStart_, false);
            const bool ignorable = std::exchange(ignorable_, false);
            Obey(ReadWord(at_, end_), starts, ignorable);
            return;
        }
        ++at_;
        if (unit == '*') {
            ignorable_ = groupStart_;
            while (ignorable_ && at_ != end_ && *at_ == ' ')
                ++at_;
            return;
        }
        groupStart_ = false;
        switch (unit) {
        case '\\':
        case '{':
        case '}':
        case '\t':
            RawUnit(unit);
            break;
        case '\'':
            HexByte();
            break;
        case '~':
            Character(QChar::Nbsp);
            break;
        case '-':
            Character(QChar::SoftHyphen);
            break;
        case '_':
            Character(0x2011);
            break;
        case '\r':
            if (at_ != end_ && *at_ == '\n')
                ++at_;
            [[fallthrough]];
        case '\n':
            EndSkipping();
            ParagraphEnd();
            break;
        default:
            break;
        }
    }

    void HexByte() {
        if (end_ - at_ < 2 || HexValue(at_[0]) < 0 || HexValue(at_[1]) < 0)
            return;
        const int byte = HexValue(at_[0]) * 16 + HexValue(at_[1]);
        at_ += 2;
        if (unitsToSkip_ > 0)
            --unitsToSkip_;
        else
            Byte(static_cast<unsigned char>(byte));
    }

    void Obey(const WordAndValue& found, bool starts, bool ignorable) {
        const Word word = found.entry->word;
        if (word == Word::Character) {
            Character(found.entry->value);
            return;
        }
        EndSkipping();
        if (word == Word::Binary)
            SkipBinary(found.value);
        if (starts && EnterFor(word, ignorable))
            return;
        if (word == Word::Unicode)
            Unicode(found.value);
        else if (word == Word::SkipCount)
            state_.skipCount = std::max(found.value, 0);
        else if (destination_ == Destination::Text)
            ObeyInText(word, found);
        else
            ObeyInDestination(word, found.value);
    }

    // True if the word, first of its group, says that the group is no text.
    bool EnterFor(Word word, bool ignorable) {
        const bool inText = destination_ == Destination::Text;
        if (inText && word == Word::FontTable)
            Enter(Destination::FontTable);
        else if (inText && word == Word::ColourTable)
            Enter(Destination::ColourTable);
        else if (inText && word == Word::BulletText)
            Enter(Destination::BulletText);
        else if (inText && word == Word::BulletStyle)
            Enter(Destination::BulletStyle);
        else if (word == Word::Skipped || ignorable)
            skippedDepth_ = 1;
        else
            return false;
        return true;
    }

    void ObeyInText(Word word, const WordAndValue& found) {
        const bool on = !found.hasValue || found.value != 0;
        switch (word) {
        case Word::ParagraphEnd:
            ParagraphEnd();
            return;
        case Word::SoftLineEnd:
            SoftLineEnd();
            return;
        case Word::BlockEnd:
            if (open_)
                EndParagraph(false);
            return;
        case Word::ParagraphDefaults:
            state_.bullet = false;
            return;
        case Word::AnsiCodePage:
            SetCodePage(found.value);
            return;
        case Word::Mac:
            SetCodePage(10000);
            return;
        case Word::Pc:
            SetCodePage(437);
            return;
        case Word::PcEurope:
            SetCodePage(850);
            return;
        case Word::DefaultFont:
            defaultFont_ = found.value;
            break;
        case Word::Plain: {
            State plain;
            plain.skipCount = state_.skipCount;
            plain.bullet = state_.bullet;
            state_ = plain;
            break;
        }
        case Word::Bold:
            state_.bold = on;
            break;
        case Word::Italic:
            state_.italic = on;
            break;
        case Word::Underline:
            state_.underline = on;
            break;
        case Word::NoUnderline:
            state_.underline = false;
            break;
        case Word::Font:
            state_.font = found.value;
            break;
        case Word::FontSize:
            state_.halfPoints = found.value;
            break;
        case Word::Colour:
            state_.colour = found.value;
            break;
        default:
            return;
        }
        formatChanged_ = true;
        page_ = nullptr;
    }

    void ObeyInDestination(Word word, int value) {
        if (destination_ == Destination::FontTable)
            fonts_.Obey(word, value);
        else if (destination_ == Destination::ColourTable)
            colours_.Obey(word, value);
        else if (destination_ == Destination::BulletStyle &&
                 (word == Word::BulletLevel || word == Word::NumberLevel))
            bulletStyle_ = word == Word::BulletLevel;
        page_ = nullptr;
    }

    void SkipBinary(int count) { at_ += std::min<std::ptrdiff_t>(std::max(count, 0), end_ - at_); }

    // Characters. A fallback that follows \uN is dropped unit by unit.

    void RawUnit(char16_t unit) {
        groupStart_ = false;
        ignorable_ = false;
        if (unitsToSkip_ > 0)
            --unitsToSkip_;
        else if (unit < 0x80 && BytesWait())
            Byte(static_cast<unsigned char>(unit)); // the second half of a two-byte character
        else {
            ForgetBytes();
            Unit(unit);
        }
    }

    void Character(char16_t unit) {
        if (unitsToSkip_ > 0) {
            --unitsToSkip_;
            return;
        }
        ForgetBytes();
        Unit(unit);
    }

    void Unicode(int value) {
        ForgetBytes();
        unitsToSkip_ = state_.skipCount;
        if (value > 0xFFFF && value <= static_cast<int>(QChar::LastValidCodePoint)) {
            Unit(QChar::highSurrogate(static_cast<char32_t>(value)));
            Unit(QChar::lowSurrogate(static_cast<char32_t>(value)));
        } else {
            const bool box = value == BoxSign && IsBoxFont();
            Unit(box ? BoxLetter : static_cast<char16_t>(value & 0xFFFF));
        }
    }

    void EndSkipping() {
        unitsToSkip_ = 0;
        ForgetBytes();
    }

    void Byte(unsigned char byte) {
        if (!page_)
            page_ = &pages_.Get(CurrentCodePage());
        for (QChar unit : page_->Decode(byte))
            Unit(unit.unicode());
    }

    bool BytesWait() const { return page_ && page_->IsWaiting(); }

    void ForgetBytes() {
        if (page_)
            page_->Reset();
    }

    void SetCodePage(int number) {
        codePage_ = number;
        page_ = nullptr;
    }

    int CurrentCodePage() const {
        if (destination_ == Destination::FontTable)
            return fonts_.Current().CodePageIn(codePage_);
        const FontEntry* font = FindFont();
        return font ? font->CodePageIn(codePage_) : codePage_;
    }

    void Unit(char16_t unit) {
        switch (destination_) {
        case Destination::FontTable:
            fonts_.Add(unit);
            return;
        case Destination::ColourTable:
            colours_.Add(unit);
            return;
        case Destination::BulletText:
            if (bulletText_.size() < MaxBulletTextLength)
                bulletText_ += QChar(unit);
            return;
        case Destination::BulletStyle:
            return;
        case Destination::Text:
            break;
        }
        switch (KindOf(unit)) {
        case UnitKind::Plain:
            Emit(QStringView(&unit, 1));
            break;
        case UnitKind::Break:
            SoftLineEnd();
            break;
        case UnitKind::Drop:
            break;
        case UnitKind::High:
            FlushHalfPair();
            high_ = unit;
            break;
        case UnitKind::Low: {
            const char16_t pair[] = {std::exchange(high_, u'\0'), unit};
            const char16_t replacement = QChar::ReplacementCharacter;
            Emit(pair[0] ? QStringView(pair, 2) : QStringView(&replacement, 1));
            break;
        }
        }
    }

    void FlushHalfPair() {
        if (!high_)
            return;
        high_ = 0;
        const char16_t replacement = QChar::ReplacementCharacter;
        Emit(QStringView(&replacement, 1));
    }

    void Emit(QStringView text) {
        FlushHalfPair();
        groupStart_ = false;
        ignorable_ = false;
        if (!open_) {
            sink_.Begin();
            open_ = true;
        }
        if constexpr (Sink::WantsFormats) {
            if (std::exchange(formatChanged_, false))
                sink_.SetFormat(Format());
        }
        sink_.Text(text);
    }

    void EndParagraph(bool soft) {
        FlushHalfPair();
        if (!open_)
            sink_.Begin();
        sink_.End((state_.bullet || paragraphBullet_) && !softPiece_);
        open_ = false;
        softPiece_ = soft;
    }

    void ParagraphEnd() {
        if (destination_ != Destination::Text)
            return;
        EndParagraph(false);
        paragraphBullet_ = false;
    }

    // A soft line end starts a paragraph of its own, without the bullet of the one it parts.
    void SoftLineEnd() { EndParagraph(true); }

    // Tables and formats.

    void SetState(const State& state) {
        if (state == state_)
            return;
        state_ = state;
        formatChanged_ = true;
        page_ = nullptr;
    }

    const FontEntry* FindFont() const {
        return fonts_.Find(state_.font < 0 ? defaultFont_ : state_.font);
    }

    bool IsBoxFont() const {
        const FontEntry* font = FindFont();
        return font && font->name == QLatin1String(BoxFontName);
    }

    RunFormat Format() const {
        RunFormat format;
        if (const FontEntry* font = FindFont())
            format.fontName = font->name;
        format.fontSize = state_.halfPoints / 2.0;
        format.bold = state_.bold;
        format.italic = state_.italic;
        format.underline = state_.underline;
        format.colour = colours_.Find(state_.colour);
        return Normalised(format);
    }

    const char16_t* at_;
    const char16_t* const end_;
    Sink& sink_;
    bool finished_ = false;

    State state_;
    std::vector<std::pair<State, std::size_t>> saved_; // with how many groups began in it
    std::size_t depth_ = 0;
    std::size_t skippedDepth_ = 0; // groups open within one that is passed over, itself included
    bool groupStart_ = false;      // nothing but \* stood in this group yet
    bool ignorable_ = false;       // \* stood there

    Destination destination_ = Destination::Text;
    std::size_t destinationDepth_ = 0;
    QString bulletText_;
    bool bulletStyle_ = false;

    FontTable fonts_;
    ColourTable colours_;
    int defaultFont_ = 0;
    int codePage_ = DefaultCodePage;
    CodePages pages_;
    CodePage* page_ = nullptr; // of the current font; none until a byte asks for it

    int unitsToSkip_ = 0;
    char16_t high_ = 0;
    bool open_ = false;            // the paragraph has begun
    bool softPiece_ = false;       // it follows a soft line end
    bool paragraphBullet_ = false; // a bullet stood in front of it
    bool formatChanged_ = true;
};

} // namespace pollarix::rtf
