// Dates and numbers as the user's locale writes them.
#pragma once

#include <QDateTime>
#include <QLocale>
#include <QString>

namespace pollarix {

// Reads a stored date and time ("YYYY-MM-DD hh:mm:ss" with or without a fraction, or a bare date).
// Throws TypeMismatch for anything else.
QDateTime StoredDate(const QString& stored);

// "Long Date", " - ", "Long Time" of the locale.
QString LongDateAndTime(const QDateTime& when, const QLocale& locale = QLocale());

// The general date format: the short date, then a blank and the long time without zone; no time at
// midnight, never a fraction of a second.
QString GeneralDate(const QDateTime& when, const QLocale& locale = QLocale());

// The general number format: as many digits as needed, the locale's decimal separator, no grouping.
QString GeneralNumber(double value, const QLocale& locale = QLocale());

} // namespace pollarix
