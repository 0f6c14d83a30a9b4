#include "platform/base/ShownText.h"

#include <algorithm>

namespace pollarix {

namespace {

constexpr int LongestWord = 60;
constexpr QChar BreakHere(0x200B);

bool IsControl(QChar c) {
    return c.category() == QChar::Other_Control || c == QChar::LineSeparator ||
           c == QChar::ParagraphSeparator;
}

} // namespace

QString Shortened(const QString& text, qsizetype most) {
    if (text.size() <= most)
        return text;
    if (text[most - 1].isHighSurrogate())
        --most;
    return text.left(most) + u'\u2026';
}

QString Breakable(const QString& text) {
    QString shown;
    shown.reserve(text.size());
    int length = 0;
    for (const QChar c : text) {
        if (length >= LongestWord && !c.isLowSurrogate() && !c.isMark()) {
            shown += BreakHere;
            length = 0;
        }
        length = c.isSpace() ? 0 : length + 1;
        shown += c;
    }
    return shown;
}

bool HasControls(const QString& text) {
    return std::any_of(text.begin(), text.end(), IsControl);
}

QString WithoutControls(QString text) {
    text.removeIf(IsControl);
    return text;
}

} // namespace pollarix
