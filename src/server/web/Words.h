// The words of the form, in the languages that it speaks. The survey's own words are its author's;
// the holder's pages are in English, as the program is.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace pollarix::server {

// All are plain text. %1 and %2 are filled in by With.
struct Words {
    std::string_view language; // as "lang" names it
    bool isRightToLeft = false;

    std::string_view surveys;
    std::string_view noSurveys;

    std::string_view pageOf; // the page and how many there are
    std::string_view several;
    std::string_view yourAnswer;
    std::string_view next;
    std::string_view back;
    std::string_view send;
    std::string_view later;

    std::string_view laterTitle;
    std::string_view laterText;
    std::string_view laterKept; // until this day
    std::string_view laterLink;
    std::string_view goOn;

    std::string_view thanksTitle;
    std::string_view thanksText;
    std::string_view thanksTwice;

    std::string_view closedTitle;
    std::string_view closedText;

    std::string_view errorTitle;
    std::string_view tooLong; // at most so many characters
    std::string_view foreign;
    std::string_view notStored;
    std::string_view tooMuch; // all answers together
    std::string_view tryAgain;
    std::string_view noLine;

    std::string_view notFoundTitle;
    std::string_view notFoundText;
    std::string_view failedTitle;
    std::string_view failedText;
};

std::span<const Words> AllWords();

// Those that the browser wants most, of the ones there are; English if it wants others.
// acceptLanguage is the header of that name.
const Words& WordsFor(std::string_view acceptLanguage);

// The text with %1 and %2 filled in.
std::string With(std::string_view text, std::string_view first, std::string_view second = "");

} // namespace pollarix::server
