// Which texts are addresses of web pages: the one rule for what is shown as a link and for what is
// opened. Not for what the program itself fetches.
#pragma once

#include <QString>
#include <QUrl>

namespace pollarix {

// The address, an empty one for a text that is none: only http and https, with a host, and no
// control character anywhere. Blanks around it are passed over.
QUrl WebAddressOf(const QString& text);

} // namespace pollarix
