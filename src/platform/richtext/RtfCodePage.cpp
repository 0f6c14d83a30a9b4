#include "platform/richtext/RtfCodePage.h"

#include <algorithm>
#include <iterator>

#include "platform/base/Windows1252.h"

namespace pollarix::rtf {

namespace {

struct KnownPage {
    int number;
    const char* codec;
    bool manyBytes = false;
};

constexpr KnownPage KnownPages[] = {
    {437, "IBM437"},
    {850, "IBM850"},
    {866, "IBM866"},
    {874, "windows-874"},
    {932, "windows-932", true},
    {936, "GBK", true},
    {949, "windows-949", true},
    {950, "Big5", true},
    {1250, "windows-1250"},
    {1251, "windows-1251"},
    {1253, "windows-1253"},
    {1254, "windows-1254"},
    {1255, "windows-1255"},
    {1256, "windows-1256"},
    {1257, "windows-1257"},
    {1258, "windows-1258"},
    {10000, "macintosh"},
    {65001, "UTF-8", true},
};

const KnownPage* Find(int number) {
    const auto* found = std::ranges::find(KnownPages, number, &KnownPage::number);
    return found == std::end(KnownPages) ? nullptr : found;
}

char16_t UnitOf(QStringDecoder& decoder, int byte) {
    const char one = static_cast<char>(byte);
    const QString text = decoder.decode(QByteArrayView(&one, 1));
    decoder.resetState();
    return text.size() == 1 ? text[0].unicode() : u'\0';
}

} // namespace

int CodePageOfCharSet(int charSet, int textCodePage) {
    switch (charSet) {
    case 0:
    case 2: // symbols: the byte's own number is what counts
        return 1252;
    case 77:
        return 10000;
    case 128:
        return 932;
    case 129:
        return 949;
    case 134:
        return 936;
    case 136:
        return 950;
    case 161:
        return 1253;
    case 162:
        return 1254;
    case 163:
        return 1258;
    case 177:
        return 1255;
    case 178:
        return 1256;
    case 186:
        return 1257;
    case 204:
        return 1251;
    case 222:
        return 874;
    case 238:
        return 1250;
    case 255:
        return 437;
    default:
        return textCodePage;
    }
}

CodePage::CodePage(int number) {
    if (const KnownPage* known = Find(number)) {
        QStringDecoder decoder(known->codec);
        if (decoder.isValid() && known->manyBytes) {
            decoder_.emplace(known->codec);
            return;
        }
        if (decoder.isValid()) {
            for (int byte = 0; byte < 256; ++byte)
                units_[byte] = UnitOf(decoder, byte);
            return;
        }
    }
    QByteArray all(256, '\0');
    for (int byte = 0; byte < 256; ++byte)
        all[byte] = static_cast<char>(byte);
    const QString text = FromWindows1252(all);
    for (int byte = 0; byte < 256; ++byte)
        units_[byte] = text[byte].unicode();
}

QStringView CodePage::Decode(unsigned char byte) {
    if (!decoder_)
        return {&units_[byte], 1};
    const char one = static_cast<char>(byte);
    decoded_ = decoder_->decode(QByteArrayView(&one, 1));
    waiting_ = decoded_.isEmpty();
    return decoded_;
}

void CodePage::Reset() {
    if (!waiting_)
        return;
    decoder_->resetState();
    waiting_ = false;
}

CodePage& CodePages::Get(int number) {
    if (number != DefaultCodePage && !Find(number))
        number = DefaultCodePage;
    return pages_.try_emplace(number, number).first->second;
}

} // namespace pollarix::rtf
