// The code pages that bytes of rich text (\'hh) may be in, as the reader needs them: a byte goes
// in, the characters it completes come out.
#pragma once

#include <QString>
#include <QStringDecoder>

#include <array>
#include <map>
#include <optional>

namespace pollarix::rtf {

constexpr int DefaultCodePage = 1252;

// The code page that a font's character set (\fcharsetN) stands for; the text's own for "default".
int CodePageOfCharSet(int charSet, int textCodePage);

class CodePage {
  public:
    explicit CodePage(int number); // an unknown one reads as Windows-1252

    // True while the first byte of a character waits for the next.
    bool IsWaiting() const { return waiting_; }
    // Characters that the byte completes; none while more bytes are wanted.
    QStringView Decode(unsigned char byte);
    // Forgets a byte that waits.
    void Reset();

  private:
    std::array<char16_t, 256> units_{};     // of a code page with one byte a character
    std::optional<QStringDecoder> decoder_; // of the others
    QString decoded_;
    bool waiting_ = false;
};

// The code pages one text uses, each made when first asked for.
class CodePages {
  public:
    CodePage& Get(int number);

  private:
    std::map<int, CodePage> pages_;
};

} // namespace pollarix::rtf
