#include "platform/base/Windows1252.h"

#include <algorithm>

#include "platform/base/CodePage1252.h"

namespace pollarix {

using namespace codepage1252;

QString FromWindows1252(QByteArrayView bytes) {
    QString text = QString::fromLatin1(bytes);
    for (QChar& character : text) {
        character = QChar(LetterOf(static_cast<unsigned char>(character.unicode())));
    }
    return text;
}

QByteArray ToWindows1252(QStringView text) {
    QByteArray bytes(text.size(), Qt::Uninitialized);
    char* to = bytes.data();
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool pair =
            text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
        const int byte = ByteOf(text[i].unicode());
        *to++ = byte < 0 ? '?' : static_cast<char>(byte);
        if (pair)
            ++i;
    }
    bytes.truncate(to - bytes.constData());
    return bytes;
}

bool FitsWindows1252(QStringView text) {
    return std::all_of(text.begin(), text.end(),
                       [](QChar character) { return ByteOf(character.unicode()) >= 0; });
}

} // namespace pollarix
