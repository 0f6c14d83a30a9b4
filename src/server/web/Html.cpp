#include "server/web/Html.h"

namespace pollarix::server {

Html& Html::Attribute(Literal name, std::string_view value) {
    markup_ += ' ';
    markup_ += name.Text();
    markup_ += "=\"";
    Escape(value);
    markup_ += '"';
    return *this;
}

// One way for content and attributes: nobody has to remember which is which.
void Html::Escape(std::string_view text) {
    markup_.reserve(markup_.size() + text.size());
    for (const char c : text) {
        switch (c) {
        case '&':
            markup_ += "&amp;";
            break;
        case '<':
            markup_ += "&lt;";
            break;
        case '>':
            markup_ += "&gt;";
            break;
        case '"':
            markup_ += "&quot;";
            break;
        case '\'':
            markup_ += "&#39;";
            break;
        default:
            if (static_cast<unsigned char>(c) >= 0x20 || c == '\n' || c == '\t')
                markup_ += c;
        }
    }
}

} // namespace pollarix::server
