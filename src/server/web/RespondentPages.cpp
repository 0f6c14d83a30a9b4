#include "server/web/RespondentPages.h"

namespace pollarix::server {

namespace {

// A title, the survey's name above it if there is one, and a line of text.
Page Plain(std::string_view survey, std::string_view title, std::string_view text) {
    Page page;
    page.title = std::string(title) + (survey.empty() ? "" : " – " + std::string(survey));
    if (!survey.empty())
        (page.body << "<p class=\"survey\" dir=\"auto\">").Text(survey) << "</p>";
    (page.body << "<h1>").Text(title) << "</h1><p>";
    page.body.Text(text) << "</p>";
    return page;
}

} // namespace

Page StartPage(const Words& words, std::span<const Survey> surveys) {
    Page page;
    page.title = words.surveys;
    (page.body << "<h1>").Text(words.surveys) << "</h1>";
    if (surveys.empty()) {
        (page.body << "<p>").Text(words.noSurveys) << "</p>";
        return page;
    }
    page.body << "<ul class=\"surveys\">";
    for (const Survey& survey : surveys) {
        (page.body << "<li><a").Attribute("href", "/s/" + survey.address) << " dir=\"auto\">";
        page.body.Text(survey.name) << "</a></li>";
    }
    page.body << "</ul>";
    return page;
}

Page ThanksPage(const Words& words, std::string_view survey, bool twice) {
    Page page = Plain(survey, words.thanksTitle, words.thanksText);
    if (twice)
        (page.body << "<p>").Text(words.thanksTwice) << "</p>";
    return page;
}

Page ClosedPage(const Words& words, std::string_view survey) {
    return Plain(survey, words.closedTitle, words.closedText);
}

Page LaterPage(const Words& words, std::string_view survey, std::string_view link, Time until) {
    Page page = Plain(survey, words.laterTitle, words.laterText);
    Html& html = page.body;
    (html << "<p><label for=\"link\">").Text(words.laterLink);
    (html << "</label><input class=\"link\" id=\"link\" readonly dir=\"ltr\"")
            .Attribute("value", link)
        << "></p><p>";
    html.Text(With(words.laterKept, Day(until)));
    (html << "</p><p><a class=\"main\"").Attribute("href", link) << ">";
    html.Text(words.goOn) << "</a></p>";
    return page;
}

Page FaultPage(const Words& words, int status) {
    Page page = status == 404   ? Plain("", words.notFoundTitle, words.notFoundText)
                : status == 413 ? Plain("", words.failedTitle, words.tooMuch)
                                : Plain("", words.failedTitle, words.failedText);
    page.status = status;
    return page;
}

} // namespace pollarix::server
