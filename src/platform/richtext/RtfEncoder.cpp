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
    if (fonts_.contains(name))
        return;
    fonts_.insert(name, static_cast<int>(fontsInOrder_.size()));
    fontsInOrder_.append(name);
}

qsizetype Encoder::FontEntrySize(const QString& name) {
    return FontEntry(9999, name).size();
}

void Encoder::BeginParagraph(bool bullet) {
    if (inBullets_ && !bullet) {
        body_ += "\\pard";
        blankDue_ = true;
    } else if (inBullets_) {
        body_ += BulletText;
        blankDue_ = false;
    } else if (bullet) {
        body_ += "\\pard";
        body_ += BulletText;
        body_ += BulletStyle;
        blankDue_ = true;
    }
    inBullets_ = bullet;
}

void Encoder::EndParagraph() {
    body_ += "\\par\r\n";
    blankDue_ = false;
}

void Encoder::Text(QStringView text) {
    if (text.isEmpty())
        return;
    ApplyFormat();
    const bool hasBoxes = current_.fontName == QLatin1String(BoxFontName);
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
            if (std::exchange(blankDue_, false))
                body_ += ' ';
            const qsizetype size = body_.size();
            body_.resize(size + (at - start));
            std::transform(start, at, body_.begin() + size,
                           [](char16_t unit) { return static_cast<char>(unit); });
            continue;
        }
        const char16_t unit = *at++;
        blankDue_ = unit == '\t';
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
    blankDue_ = true;
}

void Encoder::Switch(const char* word, bool& current, bool wanted) {
    if (current == wanted)
        return;
    current = wanted;
    body_ += word;
    if (!wanted)
        body_ += '0';
    blankDue_ = true;
}

// The format in the codes for complex scripts: between these two words they are read as such.
void Encoder::ComplexFormat(int font, int halfPoints) {
    body_ += "\\rtlch";
    Number("\\af", font);
    Number("\\afs", halfPoints);
    body_ += wanted_.bold ? "\\ab" : "\\ab0";
    body_ += wanted_.italic ? "\\ai" : "\\ai0";
    body_ += "\\ltrch";
}

void Encoder::ApplyFormat() {
    if (wanted_ == current_)
        return;
    EnterFont(wanted_.fontName);
    const int font = fonts_.value(wanted_.fontName);
    const int halfPoints = HalfPoints(wanted_);
    if (scripts_ == Scripts::Both)
        ComplexFormat(font, halfPoints);
    if (wanted_.fontName != current_.fontName)
        Number("\\f", font);
    if (wanted_.fontSize != current_.fontSize)
        Number("\\fs", halfPoints);
    Switch("\\b", current_.bold, wanted_.bold);
    Switch("\\i", current_.italic, wanted_.italic);
    Switch("\\ul", current_.underline, wanted_.underline);
    if (wanted_.colour != current_.colour) {
        int number = 0;
        if (wanted_.colour) {
            const QRgb rgb = wanted_.colour->rgb();
            number = colours_.value(rgb);
            if (number == 0) {
                coloursInOrder_.append(rgb);
                number = static_cast<int>(coloursInOrder_.size());
                colours_.insert(rgb, number);
            }
        }
        Number("\\cf", number);
    }
    current_ = wanted_;
}

QByteArray Encoder::Head(qsizetype fontTableSize) const {
    QByteArray fonts;
    for (qsizetype number = 0; number < fontsInOrder_.size(); ++number)
        fonts += FontEntry(static_cast<int>(number), fontsInOrder_[number]);
    if (fonts.size() < fontTableSize)
        fonts += QByteArray(fontTableSize - fonts.size(), '\n');
    QByteArray head = "{\\rtf1\\ansi\\ansicpg1252\\deff0\\uc1{\\fonttbl" + fonts + "}";
    if (!coloursInOrder_.isEmpty()) {
        head += "{\\colortbl ;";
        for (QRgb colour : coloursInOrder_) {
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
