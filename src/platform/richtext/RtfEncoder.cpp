#include "platform/richtext/RtfEncoder.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>

#include "platform/richtext/RtfWords.h"

namespace pollarix::rtf {

namespace {

// Fonts whose characters are signs with numbers of their own.
bool IsSymbolFont(const QString& name) {
    return name.startsWith("Wingdings") || name == "Webdings" || name == "Symbol";
}

// Each bullet stands twice: as text for readers that know no lists, and as a list.
constexpr const char* BulletText = "{\\pntext\\f0\\'95\\tab}";
constexpr const char* BulletStyle =
    "{\\*\\pn\\pnlvlblt\\pnf0\\pnindent0{\\pntxtb\\'95}}\\fi-360\\li360";

bool IsLiteral(char16_t unit) {
    return unit >= 0x20 && unit < 0x7F && unit != '\\' && unit != '{' && unit != '}';
}

void AppendNumber(QByteArray& bytes, int value) {
    std::array<char, 12> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    bytes.append(digits.data(), end - digits.data());
}

// One unit that has no byte of its own, with one for readers that can't show it.
void AppendUnicode(QByteArray& bytes, char16_t unit, char16_t instead = u'?') {
    bytes += "\\u";
    AppendNumber(bytes, static_cast<std::int16_t>(unit));
    bytes += static_cast<char>(instead);
}

int HalfPoints(const RunFormat& format) {
    return static_cast<int>(2 *
                            (format.fontSize > 0 ? format.fontSize : RichText::DefaultFontSize));
}

QByteArray FontEntry(int number, const QString& name) {
    QByteArray entry = "{\\f";
    AppendNumber(entry, number);
    entry += IsSymbolFont(name) ? "\\fnil\\fcharset2 " : "\\fnil\\fcharset0 ";
    const QString shown = name.isEmpty() ? QString(RichText::DefaultFontName) : name;
    for (QChar unit : shown) {
        if (IsLiteral(unit.unicode()))
            entry += static_cast<char>(unit.unicode());
        else
            AppendUnicode(entry, unit.unicode());
    }
    return entry + ";}";
}

} // namespace

Encoder::Encoder(Scripts scripts) : scripts_(scripts) {
    EnterFont({});
}

void Encoder::EnterFont(const QString& name) {
    if (now_.fonts.contains(name))
        return;
    now_.fonts.insert(name, static_cast<int>(now_.fontsInOrder.size()));
    now_.fontsInOrder.append(name);
}

qsizetype Encoder::FontEntrySize(const QString& name) {
    return FontEntry(9999, name).size();
}

void Encoder::BeginParagraph(bool bullet) {
    if (now_.inBullets && !bullet) {
        body_ += "\\pard";
        now_.blankDue = true;
    } else if (now_.inBullets) {
        body_ += BulletText;
        now_.blankDue = false;
    } else if (bullet) {
        body_ += "\\pard";
        body_ += BulletText;
        body_ += BulletStyle;
        now_.blankDue = true;
    }
    now_.inBullets = bullet;
}

void Encoder::EndParagraph() {
    body_ += "\\par\r\n";
    now_.blankDue = false;
}

void Encoder::Text(QStringView text) {
    if (text.isEmpty())
        return;
    ApplyFormat();
    const bool hasBoxes = now_.current.fontName == QLatin1String(BoxFontName);
    const auto isBox = [&](char16_t unit) {
        return hasBoxes && (unit == BoxLetter || unit == BoxSign);
    };
    const char16_t* at = text.utf16();
    const char16_t* const end = at + text.size();
    while (at != end) {
        const char16_t* const start = at;
        while (at != end && IsLiteral(*at) && !isBox(*at))
            ++at;
        if (at != start) {
            if (std::exchange(now_.blankDue, false))
                body_ += ' ';
            const qsizetype size = body_.size();
            body_.resize(size + (at - start));
            std::transform(start, at, body_.begin() + size,
                           [](char16_t unit) { return static_cast<char>(unit); });
            continue;
        }
        const char16_t unit = *at++;
        now_.blankDue = unit == '\t';
        if (unit == '\t') {
            body_ += "\\tab";
        } else if (isBox(unit)) {
            AppendUnicode(body_, BoxSign, BoxLetter);
        } else if (unit < 0x80) {
            body_ += '\\';
            body_ += static_cast<char>(unit);
        } else if (unit == QChar::Nbsp) {
            body_ += "\\~";
        } else {
            AppendUnicode(body_, unit);
        }
    }
}

void Encoder::Number(const char* word, int value) {
    body_ += word;
    AppendNumber(body_, value);
    now_.blankDue = true;
}

void Encoder::Switch(const char* word, bool& current, bool wanted) {
    if (current == wanted)
        return;
    current = wanted;
    body_ += word;
    if (!wanted)
        body_ += '0';
    now_.blankDue = true;
}

// The format in the codes for complex scripts: between these two words they are read as such.
void Encoder::ComplexFormat(int font, int halfPoints) {
    body_ += "\\rtlch";
    Number("\\af", font);
    Number("\\afs", halfPoints);
    body_ += now_.wanted.bold ? "\\ab" : "\\ab0";
    body_ += now_.wanted.italic ? "\\ai" : "\\ai0";
    body_ += "\\ltrch";
}

void Encoder::ApplyFormat() {
    if (now_.wanted == now_.current)
        return;
    if (now_.wanted.fontName != now_.current.fontName || font_ < 0) {
        EnterFont(now_.wanted.fontName);
        font_ = now_.fonts.value(now_.wanted.fontName);
    }
    const int halfPoints = HalfPoints(now_.wanted);
    if (scripts_ == Scripts::Both)
        ComplexFormat(font_, halfPoints);
    if (now_.wanted.fontName != now_.current.fontName)
        Number("\\f", font_);
    if (now_.wanted.fontSize != now_.current.fontSize)
        Number("\\fs", halfPoints);
    Switch("\\b", now_.current.bold, now_.wanted.bold);
    Switch("\\i", now_.current.italic, now_.wanted.italic);
    Switch("\\ul", now_.current.underline, now_.wanted.underline);
    if (now_.wanted.colour != now_.current.colour) {
        int number = 0;
        if (now_.wanted.colour) {
            const QRgb rgb = now_.wanted.colour->rgb();
            number = now_.colours.value(rgb);
            if (number == 0) {
                now_.coloursInOrder.append(rgb);
                number = static_cast<int>(now_.coloursInOrder.size());
                now_.colours.insert(rgb, number);
            }
        }
        Number("\\cf", number);
    }
    now_.current = now_.wanted;
}

bool Encoder::AddAgain(const Piece& piece) {
    if (piece.bytes.isEmpty() || piece.blankBefore != now_.blankDue ||
        piece.wanted != now_.wanted || piece.before != now_.current)
        return false;
    body_ += piece.bytes;
    if (now_.current.fontName != now_.wanted.fontName)
        font_ = -1;
    now_.current = now_.wanted;
    now_.blankDue = piece.blankAfter;
    return true;
}

QByteArray Encoder::Head(qsizetype fontTableSize) const {
    QByteArray fonts;
    for (qsizetype number = 0; number < now_.fontsInOrder.size(); ++number)
        fonts += FontEntry(static_cast<int>(number), now_.fontsInOrder[number]);
    if (fonts.size() < fontTableSize)
        fonts += QByteArray(fontTableSize - fonts.size(), '\n');
    QByteArray head = "{\\rtf1\\ansi\\ansicpg1252\\deff0\\uc1{\\fonttbl" + fonts + "}";
    if (!now_.coloursInOrder.isEmpty()) {
        head += "{\\colortbl ;";
        for (QRgb colour : now_.coloursInOrder) {
            head += "\\red";
            AppendNumber(head, qRed(colour));
            head += "\\green";
            AppendNumber(head, qGreen(colour));
            head += "\\blue";
            AppendNumber(head, qBlue(colour));
            head += ';';
        }
        head += '}';
    }
    const QByteArray size = QByteArray::number(HalfPoints({}));
    head += "\r\n\\pard\\plain";
    if (scripts_ == Scripts::Both)
        head += "\\rtlch\\af0\\afs" + size + "\\ltrch";
    head += "\\f0\\fs" + size;
    return head;
}

} // namespace pollarix::rtf
