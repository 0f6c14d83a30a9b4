// Lets a failed expectation show Qt's texts as texts.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <ostream>

inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}

inline void PrintTo(const QByteArray& bytes, std::ostream* out) {
    *out << '"' << bytes.left(400).toStdString() << "\" (" << bytes.size() << " bytes)";
}

inline void PrintTo(const QStringList& texts, std::ostream* out) {
    *out << '{';
    for (const QString& text : texts)
        *out << "\n  \"" << text.toStdString() << '"';
    *out << '}';
}
