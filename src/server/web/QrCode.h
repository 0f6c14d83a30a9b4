// A link as a picture for telephones.
#pragma once

#include <string>

namespace pollarix::server {

// An SVG document, black on white with the quiet border that readers need; "" for a text too long.
std::string QrCodeSvg(const std::string& text);

} // namespace pollarix::server
