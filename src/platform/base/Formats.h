// Dates and numbers as the user's locale writes them.
#pragma once

#include <QByteArrayView>
#include <QDateTime>
#include <QLocale>
#include <QString>

namespace pollarix {

// Reads a stored date and time in UTF-8 ("YYYY-MM-DD hh:mm:ss" with or without a fraction, or a
// bare date). Throws TypeMismatch for anything else. The result carries no time zone of its own: it
// is kept as UTC so that no daylight-saving rule of this machine moves a time that was written on
// another.
QDateTime StoredDate(QByteArrayView stored);

// "Long Date", " - ", "Long Time" of the locale, without the name of a time zone.
QString LongDateAndTime(const QDateTime& when, const QLocale& locale = QLocale());

// The general date format: the short date with its year in full, then a blank and the long time
// without zone; no time at midnight. A fraction of a second is dropped.
QString GeneralDate(const QDateTime& when, const QLocale& locale = QLocale());

// The "Long Time" of the locale, without zone and fraction.
QString LongTime(QTime time, const QLocale& locale = QLocale());

// The general number format: as many digits as needed, fifteen at most, the locale's decimal
// separator, no grouping.
QString GeneralNumber(double value, const QLocale& locale = QLocale());

} // namespace pollarix
