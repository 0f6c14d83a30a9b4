// Text of the documents that program and server exchange, Windows-1252, to and from UTF-8. Only the
// codec, on plain strings: line ends and markup are the callers' business.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace pollarix::exchange {

// Letters that had no place in the code page.
struct LostLetters {
    std::size_t count = 0;
    std::u32string some; // the first few, each once
    // These as UTF-8, with blanks between them.
    std::string Names() const;
    void Note(char32_t letter);
};

// Every byte is a character: the five that the code page leaves undefined become the control
// characters of the same number.
std::string Utf8FromWindows1252(std::string_view bytes);

// What the code page can't hold becomes one "?" for each letter, and is noted as lost.
std::string Windows1252FromUtf8(std::string_view utf8, LostLetters& lost);

// Notes the letters that the above would lose.
void NoteLost(std::string_view utf8, LostLetters& lost);

// Without overlong forms, surrogates and letters beyond the last one.
bool IsUtf8(std::string_view bytes);

// Takes the first letter off the text, which isn't empty. Bytes that are no UTF-8 give U+FFFD, one
// at a time.
char32_t TakeLetter(std::string_view& utf8);
void AppendLetter(std::string& utf8, char32_t letter);

} // namespace pollarix::exchange
