#include "server/web/FormPage.h"

#include <algorithm>

#include "server/survey/StoredAnswers.h"

namespace pollarix::server {

using exchange::Answer;
using exchange::Kind;
using exchange::Question;

namespace {

// A scale of more points doesn't fit beside its sub questions on any screen.
constexpr std::size_t WidestScale = 7;

// The number as in the program, and the text; an instruction's number isn't shown.
Html Heading(const Question& q) {
    Html html("<span dir=\"auto\" class=\"words\">");
    if (!q.number.empty() && q.kind != Kind::Text)
        html.Text(q.number) << ". ";
    return html.Text(q.text) << "</span>";
}

Html TooLongHtml(const Words& words, const Question& q) {
    Html html("<p class=\"error\" id=\"e");
    html << q.id << "\">";
    return html.Text(With(words.tooLong, std::to_string(LongestAnswer))) << "</p>";
}

Html OpenEndedHtml(const Words& words, const Question& q, const Answer& answer, bool isTooLong) {
    Html html("<div class=\"question\"><label class=\"head\" for=\"q");
    html << q.id << "\">" << Heading(q);
    if (q.text.empty())
        (html << "<span class=\"unseen\">").Text(words.yourAnswer) << "</span>";
    html << "</label>";
    if (isTooLong)
        html << TooLongHtml(words, q);
    html << "<textarea dir=\"auto\" id=\"q" << q.id << "\" name=\"q" << q.id << "\" rows=\""
         << (q.rows < 1 ? 4 : std::min(q.rows, 30)) << "\" maxlength=\"" << LongestAnswer << "\"";
    if (isTooLong)
        html << " aria-invalid=\"true\" aria-describedby=\"e" << q.id << "\"";
    // A line end right behind the tag isn't part of the text.
    return (html << ">\n").Text(answer.text) << "</textarea></div>";
}

Html ChoicesHtml(const Words& words, const Question& q, const Answer& answer) {
    const bool isCheck = q.kind == Kind::Check;
    Html html("<fieldset class=\"question\"");
    if (isCheck && q.choices.size() > 1)
        html << " aria-describedby=\"h" << q.id << "\"";
    html << "><legend class=\"head\">" << Heading(q) << "</legend>";
    if (isCheck && q.choices.size() > 1)
        (html << "<p class=\"hint\" id=\"h" << q.id << "\">").Text(words.several) << "</p>";
    for (std::size_t i = 0; i < q.choices.size(); ++i) {
        html << "<label class=\"choice\"><input type=\""
             << (isCheck ? Html("checkbox") : Html("radio")) << "\" name=\"q" << q.id
             << "\" value=\"" << q.choices[i].id << "\"";
        if (std::binary_search(answer.ticked.begin(), answer.ticked.end(), i))
            html << " checked";
        (html << "><span dir=\"auto\" class=\"words\">").Text(q.choices[i].text)
            << "</span></label>";
    }
    return html << "</fieldset>";
}

// Each sub question is a group of its own with labels of its own: read one by one it needs no
// table. On a wide screen the labels stand once, above the columns.
Html MatrixHtml(const Question& q, const Answer& answer) {
    const bool isWide = q.scale.size() > 1 && q.scale.size() <= WidestScale;
    Html html("<fieldset class=\"question matrix");
    if (isWide)
        html << " wide c" << q.scale.size();
    html << "\"><legend class=\"head\">" << Heading(q) << "</legend>";
    if (isWide) {
        html << "<div class=\"columns\" aria-hidden=\"true\"><span></span>";
        for (const exchange::Choice& point : q.scale)
            (html << "<span dir=\"auto\">").Text(point.text) << "</span>";
        html << "</div>";
    }
    for (std::size_t row = 0; row < q.choices.size(); ++row) {
        const std::int32_t id = q.choices[row].id;
        html << "<div class=\"row\" role=\"radiogroup\" aria-labelledby=\"r" << id
             << "\"><span dir=\"auto\" class=\"words\" id=\"r" << id << "\">";
        html.Text(q.choices[row].text) << "</span>";
        for (std::size_t i = 0; i < q.scale.size(); ++i) {
            html << "<label class=\"choice\"><input type=\"radio\" name=\"q" << q.id << "." << id
                 << "\" value=\"" << q.scale[i].id << "\"";
            if (answer.points.at(row) == static_cast<int>(i))
                html << " checked";
            (html << "><span dir=\"auto\" class=\"words\">").Text(q.scale[i].text)
                << "</span></label>";
        }
        html << "</div>";
    }
    return html << "</fieldset>";
}

Html Hidden(std::string_view name, std::string_view value) {
    Html html("<input type=\"hidden\"");
    return html.Attribute("name", name).Attribute("value", value) << ">";
}

// What is wrong, at the top and with links, where a screen reader begins.
Html ProblemsHtml(const Words& words, const FormState& state) {
    if (state.tooLong.empty() && !state.isForeign && !state.wasNotStored && !state.wasClosed)
        return {};
    Html html("<div class=\"problem\" role=\"alert\" tabindex=\"-1\" autofocus><h2>");
    html.Text(state.wasClosed ? words.closedTitle : words.errorTitle) << "</h2>";
    if (state.wasClosed)
        (html << "<p>").Text(words.closedText) << "</p>";
    if (state.wasNotStored)
        (html << "<p>").Text(words.notStored) << "</p>";
    if (state.isForeign)
        (html << "<p>").Text(words.foreign) << "</p>";
    for (const std::size_t place : state.tooLong) {
        const Question& q = state.questionnaire.questions.at(place);
        (html << "<p><a href=\"#q" << q.id << "\">");
        if (!q.number.empty())
            html.Text(q.number) << ". ";
        html.Text(With(words.tooLong, std::to_string(LongestAnswer))) << "</a></p>";
    }
    return html << "</div>";
}

Html ButtonHtml(std::string_view value, std::string_view words, Literal kind) {
    Html html("<button name=\"go\"");
    html.Attribute("value", value).Attribute("class", kind.Text()) << ">";
    return html.Text(words) << "</button>";
}

} // namespace

Html QuestionHtml(const Words& words, const Question& q, const Answer& answer, bool isTooLong) {
    switch (q.kind) {
    case Kind::OpenEnded:
        return OpenEndedHtml(words, q, answer, isTooLong);
    case Kind::Check:
    case Kind::Radio:
        return ChoicesHtml(words, q, answer);
    case Kind::Matrix:
        return MatrixHtml(q, answer);
    case Kind::Text:
        break;
    }
    Html html("<div class=\"question\">");
    return html << Heading(q) << "</div>";
}

Page KeptFormPage(const Words& words, std::string_view path,
                  const std::vector<std::pair<std::string, std::string>>& fields) {
    Page page;
    page.title = words.errorTitle;
    (page.body << "<h1>").Text(words.errorTitle) << "</h1><p role=\"alert\">";
    page.body.Text(words.notStored) << "</p><form method=\"post\"";
    page.body.Attribute("action", path) << ">";
    for (const auto& [name, value] : fields)
        page.body << Hidden(name, value);
    (page.body << "<p><button class=\"main\">").Text(words.tryAgain) << "</button></p></form>";
    return page;
}

Page FormPage(const Words& words, const FormState& state) {
    const std::vector<Question>& questions = state.questionnaire.questions;
    const QuestionRange shown = state.Shown();
    const std::string progress =
        With(words.pageOf, std::to_string(state.place + 1), std::to_string(questions.size()));
    const Html problems = ProblemsHtml(words, state);

    Page page;
    page.hasScript = true;
    page.title = problems.IsEmpty() ? "" : std::string(words.errorTitle) + ": ";
    if (!state.onOnePage)
        page.title += progress + " – ";
    page.title += state.name;

    Html& html = page.body;
    (html << "<h1 dir=\"auto\">").Text(state.name) << "</h1>" << problems;
    (html << "<form id=\"form\" method=\"post\"")
        .Attribute("action", "/s/" + std::string(state.address));
    html << " data-most=\"" << state.mostBytes << "\">" << Hidden(field::Token, state.token)
         << Hidden(field::Version, std::to_string(state.version));
    if (!state.onOnePage) {
        exchange::Answers others = state.answers;
        others[state.place] = exchange::NoAnswers(state.questionnaire)[state.place];
        html << Hidden(field::Place, std::to_string(state.place))
             << Hidden(field::Others, StoredAnswers(state.questionnaire, others));
        (html << "<div class=\"progress\"><span id=\"page\">").Text(progress)
            << "</span><progress aria-labelledby=\"page\" max=\"" << questions.size()
            << "\" value=\"" << state.place + 1 << "\"></progress></div>";
    }
    for (std::size_t i = shown.first; i < shown.last; ++i)
        html << QuestionHtml(words, questions[i], state.answers.at(i),
                             std::binary_search(state.tooLong.begin(), state.tooLong.end(), i));
    (html << "<p class=\"problem\" id=\"line\" role=\"alert\" hidden>").Text(words.noLine)
        << "</p>";
    (html << "<p class=\"problem\" id=\"much\" role=\"alert\" hidden>").Text(words.tooMuch)
        << "</p>";
    html << "<div class=\"buttons\">";
    // The first one is what Enter presses.
    if (state.IsLast())
        html << ButtonHtml(button::Send, state.wasNotStored ? words.tryAgain : words.send, "main");
    else
        html << ButtonHtml(button::Next, words.next, "main");
    if (!state.onOnePage && state.place > 0)
        html << ButtonHtml(button::Back, words.back, "other");
    html << ButtonHtml(button::Later, words.later, "other") << "</div></form>";
    return page;
}

} // namespace pollarix::server
