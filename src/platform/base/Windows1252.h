// Text as the survey server and the files exchanged with it write it: one byte a character,
// Windows-1252. Only the codec: line ends and markup are the callers' business.
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringView>

namespace pollarix {

// Every byte is a character: the five that the code page leaves undefined become the control
// characters of the same number, so that no byte is lost on the way in and out again.
QString FromWindows1252(QByteArrayView bytes);

// What the code page can't hold becomes one "?" for each code point (a surrogate pair is one).
QByteArray ToWindows1252(QStringView text);

// True when every character has a byte of its own, so that nothing would become "?".
bool FitsWindows1252(QStringView text);

} // namespace pollarix
