// The form that respondents fill in, as a pure function of the survey and of what is answered so
// far. It carries all of its state in fields of its own: it needs no cookie, no script, and nothing
// on the server until it is sent.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "exchange/Questionnaire.h"
#include "server/survey/SentAnswers.h"
#include "server/web/Page.h"

namespace pollarix::server {

// Names of the form's own fields. None begins with "q", as those of answers do.
namespace field {
constexpr std::string_view Token = "t";   // tells one filled-in form from another
constexpr std::string_view Version = "v"; // of the survey, the one that is being answered
constexpr std::string_view Place = "p";  // of the question shown, from 0; none with all on one page
constexpr std::string_view Others = "a"; // answers to the questions that aren't shown
constexpr std::string_view Button = "go";
} // namespace field

// Values of the buttons.
namespace button {
constexpr std::string_view Next = "next";
constexpr std::string_view Back = "back";
constexpr std::string_view Send = "send";
constexpr std::string_view Later = "later";
} // namespace button

struct FormState {
    const exchange::Questionnaire& questionnaire;
    const exchange::Answers& answers;
    std::string_view name;    // the survey's
    std::string_view address; // what stands behind "/s/"
    std::string_view token;
    int version = 0;
    bool onOnePage = false;
    std::size_t place = 0;     // of the question shown, unless all are
    std::size_t mostBytes = 0; // that the form may send, so that script can tell before

    // What there is to say about what was sent last.
    std::vector<std::size_t> tooLong = {};
    bool isForeign = false;
    bool wasNotStored = false;
    bool wasClosed = false; // it came too late; the answers are still the respondent's

    QuestionRange Shown() const {
        return onOnePage ? QuestionRange{0, questionnaire.questions.size()}
                         : QuestionRange{place, place + 1};
    }
    bool IsLast() const { return onOnePage || place + 1 == questionnaire.questions.size(); }
};

Page FormPage(const Words& words, const FormState& state);

// Where the form itself can't be made: all the fields that it has sent, whatever they are, to be
// sent again.
Page KeptFormPage(const Words& words, std::string_view path,
                  const std::vector<std::pair<std::string, std::string>>& fields);

// One question with its answers, as FormPage shows it.
Html QuestionHtml(const Words& words, const exchange::Question& question,
                  const exchange::Answer& answer, bool isTooLong);

} // namespace pollarix::server
