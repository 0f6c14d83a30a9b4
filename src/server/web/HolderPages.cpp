#include "server/web/HolderPages.h"

#include <array>
#include <cstdio>
#include <ctime>

#include "exchange/CodePage.h"

namespace pollarix::server {

namespace {

Html Done(std::string_view words, bool isFault) {
    if (words.empty())
        return {};
    Html html("<p role=\"alert\" class=\"");
    (html << (isFault ? Html("problem") : Html("done")) << "\">").Text(words) << "</p>";
    return html;
}

Html Button(Literal words, Literal kind) {
    Html html("<p><button class=\"");
    return html << kind << "\">" << words << "</button></p>";
}

// attributes: of our own, with a blank in front.
Html Input(Literal label, Literal name, std::string_view value, Literal attributes) {
    Html html("<label class=\"field\" for=\"");
    html << name << "\">" << label << "</label><input id=\"" << name << "\" name=\"" << name << "\""
         << attributes;
    return html.Attribute("value", value) << ">";
}

Html CheckBox(Literal label, Literal name, bool isTicked) {
    Html html("<label class=\"choice\"><input type=\"checkbox\" value=\"1\" name=\"");
    html << name << "\"";
    if (isTicked)
        html << " checked";
    return html << "><span>" << label << "</span></label>";
}

Html FormHead(std::string_view action, const Holder& holder) {
    Html html("<form method=\"post\"");
    html.Attribute("action", action) << "><input type=\"hidden\" name=\"csrf\"";
    return html.Attribute("value", holder.formSecret) << ">";
}

Page HolderPage(const Holder& holder, std::string_view title) {
    Page page;
    page.title = title;
    page.navigation << "<nav><ul><li><a href=\"/surveys\">Surveys</a></li>"
                       "<li><a href=\"/account\">Account</a></li><li>"
                    << FormHead("/logout", holder) << "<button class=\"other\">Log out</button>"
                    << "</form></li></ul></nav>";
    (page.body << "<h1 dir=\"auto\">").Text(title) << "</h1>";
    return page;
}

std::string State(const Survey& s, Time now) {
    if (s.deleted > 0)
        return "Deleted";
    if (s.version == 0)
        return "Not published yet";
    if (!s.isOpen)
        return "Closed by you";
    if (now < s.opens)
        return "Opens on " + Day(s.opens);
    if (s.closes > 0 && now >= s.closes)
        return "Closed since " + Day(s.closes);
    return s.isPublic ? "Takes answers, public" : "Takes answers, private";
}

Html CountsHtml(const SurveyWithCounts& s, Time now) {
    Html html("<dl><dt>State</dt><dd>");
    html.Text(State(s.survey, now))
        << "</dd><dt>Answers not yet collected</dt><dd>" << s.counts.waiting
        << "</dd><dt>Collected</dt><dd>" << s.counts.dropped << "</dd>";
    if (s.counts.last > 0)
        (html << "<dt>Last answer</dt><dd>").Text(Day(s.counts.last)) << "</dd>";
    return html << "</dl>";
}

std::string SurveyPath(const Survey& survey) {
    return "/surveys/" + std::to_string(survey.id);
}

Html SettingsHtml(const Holder& holder, const Survey& s) {
    Html html("<h2>Settings</h2>");
    html << FormHead(SurveyPath(s), holder)
         << Input("Name", "name", s.name, " required maxlength=\"200\" aria-describedby=\"byname\"")
         << "<p class=\"hint\" id=\"byname\">The program finds the survey by its name when you "
            "publish it again.</p>"
         << CheckBox("Takes answers", "open", s.isOpen)
         << CheckBox("Public: listed on the start page", "public", s.isPublic)
         << CheckBox("All questions on one page", "onePage", s.onOnePage)
         << Input("Takes answers from (UTC), empty for at once", "opens", MomentField(s.opens),
                  " type=\"datetime-local\"")
         << Input("Until (UTC), empty for no end", "closes", MomentField(s.closes),
                  " type=\"datetime-local\"");
    return html << Button("Save", "main") << "</form>";
}

// Each once, with blanks between them.
std::string LettersApart(std::string_view some) {
    exchange::LostLetters letters;
    exchange::NoteLost(some, letters);
    return letters.Names();
}

Html ResultsHtml(const Holder& holder, const SurveyDetails& d, Time now) {
    const std::string path = SurveyPath(d.survey);
    Html html("<h2>Answers</h2>");
    html << CountsHtml({d.survey, d.counts}, now);
    if (d.counts.conflicts > 0)
        html << "<p>" << d.counts.conflicts
             << " of them came from forms that had been sent before with other answers. Both are "
                "kept; the table for spreadsheets marks the later ones.</p>";
    if (d.lost.count > 0)
        (html << "<p>Letters in the waiting answers that the program can't show: " << d.lost.count
              << " (<span dir=\"auto\">")
                .Text(LettersApart(d.lost.some))
            << "</span>). It knows those of Western Europe only; others arrive there as \"?\". The "
               "table for spreadsheets has them all.</p>";
    (html << "<ul><li><a").Attribute("href", path + "/results.csv")
        << ">All answers as a table for spreadsheets (CSV)</a></li><li><a";
    html.Attribute("href", path + "/results.txt")
        << ">Those not yet collected as a results file</a></li></ul>";
    if (d.counts.dropped > 0)
        html << FormHead(path + "/restore-results", holder)
             << "<p>Answers stay here for a while after the program has collected them.</p>"
             << Button("Let all answers be collected again", "other") << "</form>";
    return html;
}

} // namespace

Page LoginPage(std::string_view name, std::string_view message) {
    Page page;
    page.title = message.empty() ? "Log in" : "Problem: Log in";
    page.body << "<h1>Log in</h1>" << Done(message, true)
              << "<form method=\"post\" action=\"/login\">"
              << Input("User name", "name", name, " required autocomplete=\"username\"")
              << Input("Password", "password", "",
                       " type=\"password\" required autocomplete=\"current-password\"")
              << Button("Log in", "main") << "</form>";
    return page;
}

Page NewAccountPage(std::string_view name, std::string_view invitation, std::string_view message) {
    Page page;
    page.title = message.empty() ? "Create an account" : "Problem: Create an account";
    page.body << "<h1>Create an account</h1>" << Done(message, true)
              << "<p>With an account you can publish surveys from the program to this server and "
                 "collect their answers.</p><form method=\"post\" action=\"/CreateAccount.php\">"
                 "<input type=\"hidden\" name=\"invitation\"";
    page.body.Attribute("value", invitation)
        << ">"
        << Input("User name", "name", name, " required maxlength=\"64\" autocomplete=\"username\"")
        << Input("Password, 8 characters or more", "password", "",
                 " type=\"password\" required minlength=\"8\" autocomplete=\"new-password\"")
        << Button("Create the account", "main") << "</form>";
    return page;
}

Page NoNewAccountPage() {
    Page page;
    page.status = 403;
    page.title = "Accounts are made by invitation";
    page.body << "<h1>Accounts are made by invitation</h1><p>Please ask whoever keeps this server "
                 "for a link. Each link makes one account, and works for some days only.</p>"
                 "<p><a href=\"/login\">Log in</a></p>";
    return page;
}

Page SurveysPage(const Holder& holder, const std::vector<SurveyWithCounts>& surveys, Time now) {
    Page page = HolderPage(holder, "Your surveys");
    if (surveys.empty())
        page.body << "<p>There are none yet. Publish one from the program: choose \"Publish Web "
                     "Survey\" in its menu.</p>";
    page.body << "<ul class=\"surveys\">";
    for (const SurveyWithCounts& s : surveys) {
        (page.body << "<li><h2 dir=\"auto\"><a").Attribute("href", SurveyPath(s.survey)) << ">";
        page.body.Text(s.survey.name) << "</a></h2>" << CountsHtml(s, now) << "</li>";
    }
    page.body << "</ul>";
    return page;
}

Page SurveyPage(const Holder& holder, const SurveyDetails& d, Time now, std::string_view done,
                bool isFault) {
    const Survey& s = d.survey;
    Page page = HolderPage(holder, s.name);
    Html& html = page.body;
    html << Done(done, isFault);
    if (s.deleted > 0) {
        (html << "<p>It can be had back until ").Text(Day(d.keptUntil))
            << ", with all its answers.</p>" << FormHead(SurveyPath(s) + "/undelete", holder)
            << Button("Have it back", "main") << "</form>" << ResultsHtml(holder, d, now);
        return page;
    }
    if (s.version > 0) {
        (html << "<h2>Link</h2><label class=\"field\" for=\"link\">For respondents</label>"
                 "<input class=\"link\" id=\"link\" readonly dir=\"ltr\"")
                .Attribute("value", d.link)
            << "><p><a";
        html.Attribute("href", "/s/" + s.address) << ">Open the form</a></p><a";
        html.Attribute("href", SurveyPath(s) + "/code.svg") << "><img class=\"code\"";
        html.Attribute("src", SurveyPath(s) + "/code.svg")
            << " width=\"256\" height=\"256\" alt=\"The link as a QR code, to be downloaded\"></a>";
    }
    html << ResultsHtml(holder, d, now) << SettingsHtml(holder, s) << "<h2>Delete</h2>"
         << FormHead(SurveyPath(s) + "/delete", holder)
         << "<p>The form disappears at once. For a while you can have the survey back here, with "
            "all its answers; then it is gone for good.</p>"
         << CheckBox("Yes, delete this survey", "sure", false) << Button("Delete", "bad")
         << "</form>";
    return page;
}

Page AccountPage(const Holder& holder, std::string_view done, bool isFault) {
    Page page = HolderPage(holder, "Your account");
    (page.body << Done(done, isFault) << "<p>User name: <span dir=\"auto\">").Text(holder.name)
        << "</span></p><h2>Password</h2>" << FormHead("/account", holder)
        << Input("Password until now", "old", "",
                 " type=\"password\" required autocomplete=\"current-password\"")
        << Input("New password, 8 characters or more", "new", "",
                 " type=\"password\" required minlength=\"8\" autocomplete=\"new-password\"")
        << Button("Change the password", "main")
        << "</form><h2>Your data</h2><p><a href=\"/account/data.json\">Download all that this "
           "server keeps of you</a>: your surveys in all their versions, and their answers.</p>";
    return page;
}

Page HolderFaultPage(int status, std::string_view words) {
    Page page;
    page.status = status;
    page.title = "That did not work";
    (page.body << "<h1>That did not work</h1><p>").Text(words)
        << "</p><p><a href=\"/surveys\">Your surveys</a></p>";
    return page;
}

std::string MomentField(Time time) {
    if (time == 0)
        return "";
    const auto seconds = static_cast<std::time_t>(time);
    std::tm parts{};
    gmtime_r(&seconds, &parts);
    std::array<char, 32> text{};
    return {text.data(), std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M", &parts)};
}

Time ReadMomentField(std::string_view value) {
    if (value.empty())
        return 0;
    std::tm parts{};
    int end = 0;
    const std::string text(value);
    // Browsers may add seconds; nobody needs them.
    const int read =
        std::sscanf(text.c_str(), "%4d-%2d-%2dT%2d:%2d%n", &parts.tm_year, &parts.tm_mon,
                    &parts.tm_mday, &parts.tm_hour, &parts.tm_min, &end);
    if (read != 5 || (text.size() != static_cast<std::size_t>(end) && text[end] != ':') ||
        parts.tm_year < 1970)
        return -1;
    parts.tm_year -= 1900;
    parts.tm_mon -= 1;
    const std::tm meant = parts;
    const std::time_t time = timegm(&parts);
    // The 31st of a short month comes out as another day.
    if (parts.tm_mday != meant.tm_mday || parts.tm_mon != meant.tm_mon ||
        parts.tm_hour != meant.tm_hour || parts.tm_min != meant.tm_min)
        return -1;
    return time;
}

} // namespace pollarix::server
