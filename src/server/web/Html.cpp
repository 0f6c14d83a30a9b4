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

// One way for content and attributes: nobody has to remember which is which. What needs no escape
// goes over in one piece.
void Html::Escape(std::string_view text) {
    std::size_t plain = 0; // where the piece begins
    const auto instead = [&](std::size_t at, std::string_view escaped) {
        markup_.append(text, plain, at - plain).append(escaped);
        plain = at + 1;
    };
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        if (c > '>') // nearly all letters
            continue;
        if (c == '&')
            instead(i, "&amp;");
        else if (c == '<')
            instead(i, "&lt;");
        else if (c == '>')
            instead(i, "&gt;");
        else if (c == '"')
            instead(i, "&quot;");
        else if (c == '\'')
            instead(i, "&#39;");
        else if (c < 0x20 && c != '\n' && c != '\t')
            instead(i, "");
    }
    markup_.append(text, plain);
}

} // namespace pollarix::server
