// The apostrophe that keeps spreadsheets from taking a text of a table for a formula: put in front
// by the export and taken away by the import, so that every text comes back as it was.
#pragma once

#include <QRegularExpression>
#include <QString>

namespace pollarix::tables {

// A spreadsheet takes such a text for a formula and works it out, whoever has sent it. A number
// stays one.
inline bool LooksLikeFormula(QStringView text) {
    static const QRegularExpression number(R"(^[-+]?\d+([.,]\d+)?$)");
    return !text.isEmpty() && QStringView(u"=+-@\t\r").contains(text[0]) &&
           !number.match(text).hasMatch();
}

// Also one that has an apostrophe in front of a formula already, which else would be taken for the
// guard.
inline bool NeedsGuard(QStringView text) {
    while (text.startsWith(u'\''))
        text = text.mid(1);
    return LooksLikeFormula(text);
}

inline QString WithoutGuard(const QString& text) {
    return text.startsWith(u'\'') && NeedsGuard(text) ? text.mid(1) : text;
}

} // namespace pollarix::tables
