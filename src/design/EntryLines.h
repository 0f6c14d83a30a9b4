// What a box for one entry of a list stands for when several lines were pasted into it.
#pragma once

#include <QRegularExpression>
#include <QStringList>

namespace pollarix {

// Each line is an entry of its own, and an empty one is none. Nothing is trimmed.
inline QStringList EntryLines(const QString& text) {
    static const QRegularExpression LineEnd("[\\n\\r\\x{2028}\\x{2029}]");
    return text.split(LineEnd, Qt::SkipEmptyParts);
}

} // namespace pollarix
