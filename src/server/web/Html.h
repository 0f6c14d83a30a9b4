// Markup that can only be made of literals of this program and of escaped text: a string that came
// from somewhere doesn't compile as markup. Nothing here knows what a page looks like.
#pragma once

#include <concepts>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

namespace pollarix::server {

// A text that was there when the program was compiled: a pointer to one has the wrong type, and an
// array that is filled later is no constant.
class Literal {
  public:
    template <std::size_t Size>
    consteval Literal(const char (&text)[Size]) : text_(text, Size - 1) {}
    constexpr std::string_view Text() const { return text_; }

  private:
    std::string_view text_;
};

class Html {
  public:
    Html() = default;
    Html(Literal markup) : markup_(markup.Text()) {}

    Html& operator<<(Literal markup) {
        markup_ += markup.Text();
        return *this;
    }
    Html& operator<<(const Html& markup) {
        markup_ += markup.markup_;
        return *this;
    }
    template <std::integral Number>
    requires(!std::same_as<Number, bool> && !std::same_as<Number, char>) Html&
    operator<<(Number number) {
        markup_ += std::to_string(number);
        return *this;
    }
    // Any text, escaped, for the content of an element. It has to be UTF-8; control characters that
    // no page may hold are left out.
    Html& Text(std::string_view text) {
        Escape(text);
        return *this;
    }
    // ' name="value"', escaped likewise. A value that begins with what a person typed doesn't
    // belong into an address: it could be a script.
    Html& Attribute(Literal name, std::string_view value);

    const std::string& Markup() const& { return markup_; }
    std::string Markup() && { return std::move(markup_); }
    bool IsEmpty() const { return markup_.empty(); }

  private:
    void Escape(std::string_view text);

    std::string markup_;
};

} // namespace pollarix::server
