// What of a text from outside is shown. Servers, respondents and the clipboard send what they like,
// and to lay out one line takes a time that grows with the square of its length: so what is only
// shown is bounded here. What is stored stays whole.
#pragma once

#include <QString>

namespace pollarix {

// At most so many characters, and then a sign that there were more. Never half of a pair.
QString Shortened(const QString& text, qsizetype most);

// With places to break a line in words longer than any line. For labels, which else grow as wide as
// the word; never for what the user can select and copy.
QString Breakable(const QString& text);

// A control character, which a terminal could take for a command.
bool HasControls(const QString& text);
QString WithoutControls(QString text);

} // namespace pollarix
