// The form as a browser without script uses it: the fields of the page that came go back, changed
// as a person would.
#include <gtest/gtest.h>

#include <QRegularExpression>
#include <QTemporaryDir>

#include <SQLiteCpp/SQLiteCpp.h>

#include <fstream>
#include <future>
#include <map>
#include <regex>

#include "server/survey/StoredAnswers.h"
#include "server/web/FormPage.h"
#include "server/web/Pages.h"
#include "support/Places.h"

using namespace pollarix::server;
using namespace pollarix::test;

namespace {

// What may become markup, and what must not.
template <typename Text>
concept IsMarkup = requires(Html html, Text text) {
    html << text;
};
template <typename Text>
concept MakesHtml = std::is_constructible_v<Html, Text> || std::is_convertible_v<Text, Html>;
static_assert(IsMarkup<Html> && IsMarkup<int> && IsMarkup<Literal>);
static_assert(!IsMarkup<std::string> && !IsMarkup<std::string_view> && !IsMarkup<char*>);
static_assert(!IsMarkup<const char*&> && !IsMarkup<char> && !IsMarkup<bool>);
static_assert(!MakesHtml<std::string> && !MakesHtml<std::string_view> && !MakesHtml<char*>);

std::string Unescaped(std::string text) {
    const std::pair<const char*, const char*> names[] = {
        {"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&#39;", "'"}, {"&amp;", "&"}};
    for (const auto& [name, letter] : names)
        text = std::regex_replace(text, std::regex(name), letter);
    return text;
}

class Pages : public testing::Test {
  protected:
    Pages() {
        account = store.CreateAccount("ann", "", now);
        survey = store.CreateSurvey(account, "A & <b>", "address", now);
        Publish("more");
        AddPages(router,
                 {store, accounts, questionnaires, "https://example.org/", [this] { return now; }});
    }

    void Publish(const std::string& instead) {
        std::ifstream file(SourceFile("tests/exchange/every-kind.txt").toStdString());
        std::string document((std::istreambuf_iterator<char>(file)), {});
        document = std::regex_replace(document, std::regex("-1<"), "41<");
        document = std::regex_replace(document, std::regex("more"), instead);
        document = std::regex_replace(document, std::regex("\n"), "\r\n");
        ASSERT_GT(store.Publish(survey, document, true, now), 0);
    }

    Response Ask(const std::string& method, const std::string& path, const std::string& body = "") {
        Request request;
        request.method = method;
        request.path = path;
        request.body = body;
        request.headers = {{"Accept-Language", language}};
        const Router::Found found = router.Find(method, path);
        if (!found.route)
            return router.ErrorPage(found.status, request);
        // As the server does: from memory where that can be.
        auto quick = found.route->quick ? found.route->quick(request, found.parts) : std::nullopt;
        if (!quick)
            return found.route->handler(request, found.parts);
        ++quickAnswers;
        if (!quick->begin)
            return *quick;
        std::promise<std::function<Response()>> rest;
        quick->begin([&](std::function<Response()> given) { rest.set_value(std::move(given)); });
        return rest.get_future().get()();
    }
    // Takes the form's fields out of the page.
    void Open(const std::string& path) { Take(Ask("GET", path)); }
    void Take(Response response) {
        shown = std::move(response);
        fields.clear();
        // The standard library's own expressions need more stack the longer a value is.
        static const QRegularExpression kinds[] = {
            QRegularExpression("<input type=\"hidden\" name=\"(\\w+)\" value=\"([^\"]*)\""),
            QRegularExpression("name=\"(q[0-9.]+)\" value=\"([0-9]+)\" checked"),
            QRegularExpression("<textarea[^>]* name=\"(q[0-9]+)\"[^>]*>\n([^<]*)<")};
        const QString page = QString::fromStdString(shown.body);
        for (const QRegularExpression& kind : kinds)
            for (auto at = kind.globalMatch(page); at.hasNext();) {
                const QRegularExpressionMatch field = at.next();
                fields.emplace(field.captured(1).toStdString(),
                               Unescaped(field.captured(2).toStdString()));
            }
    }
    std::string Body(const std::string& button) {
        std::string body = "go=" + button;
        for (const auto& [name, value] : fields)
            body += "&" + PercentEncoded(name) + "=" + PercentEncoded(value);
        return body;
    }
    void Press(const std::string& button) { Take(Ask("POST", "/s/address", Body(button))); }
    bool Says(std::string_view words) { return shown.body.find(words) != std::string::npos; }
    std::vector<std::string> Rows() {
        std::vector<std::string> rows;
        const auto all = store.AllResults(survey);
        while (const auto submission = all->Next())
            rows.push_back(std::to_string(submission->version) + " " + submission->answers +
                           (submission->isConflict ? " again" : ""));
        return rows;
    }

    QTemporaryDir directory;
    Time now = 1800000000;
    std::string language = "en";
    Store store{directory.path().toStdString()};
    Accounts accounts{store, {}};
    Questionnaires questionnaires{store};
    Router router;
    Id account = None;
    Id survey = None;
    Response shown;
    int quickAnswers = 0;
    std::multimap<std::string, std::string> fields;
};

} // namespace

TEST_F(Pages, AFormIsWalkedBackAndForthAndSentOnce) {
    Open("/s/address");
    EXPECT_TRUE(Says("<h1 dir=\"auto\">A &amp; &lt;b&gt;</h1>"));
    EXPECT_TRUE(Says("Page 1 of 6"));
    fields.find("q11")->second = "</textarea>\r\n\"it's\";\\";
    Press("next");
    Press("next"); // nothing to answer
    fields.emplace("q41", "40");
    Press("next");
    fields.emplace("q14.50", "301");
    Press("back");
    EXPECT_TRUE(Says("value=\"40\" checked"));
    Press("back");
    Press("back");
    EXPECT_TRUE(Says("\n&lt;/textarea&gt;\n&quot;it&#39;s&quot;;\\</textarea>"));
    Press("back"); // there is none before
    EXPECT_TRUE(Says("Page 1 of 6"));
    for (int i = 0; i < 5; ++i)
        Press("next");
    EXPECT_TRUE(Rows().empty());

    const std::string stored = "1 11=</textarea>\\n\"it's\"\\s\\\\;41=40;14=50:301";
    const std::string body = Body("send");
    for (int i = 0; i < 3; ++i) {
        shown = Ask("POST", "/s/address", body);
        EXPECT_TRUE(Says("Thank you"));
        EXPECT_EQ(Rows(), std::vector{stored});
    }
    fields.emplace("q16", "1"); // no box of ours
    Press("send");
    EXPECT_EQ(shown.status, 422);
    EXPECT_EQ(Rows().size(), 1U);
    EXPECT_TRUE(Says("Some of these answers"));
    fields.find("a")->second = "41=40";
    Press("send");
    EXPECT_TRUE(Says("Both have been kept."));
    EXPECT_GT(quickAnswers, 10); // all but the very first page
    EXPECT_EQ(Rows(), (std::vector<std::string>{stored, "1 41=40 again"}));
}

TEST_F(Pages, AnswersAreKeptForLaterAndGoWithTheirVersion) {
    Open("/s/address");
    fields.find("q11")->second = "draft";
    Press("next");
    Press("later");
    const std::regex link("https://example.org(/s/address/later/[\\w-]+)");
    std::smatch found;
    ASSERT_TRUE(std::regex_search(shown.body, found, link));
    const std::string path = found[1];
    EXPECT_TRUE(Says("until 2027-02-14"));

    Publish("later");
    Open(path);
    EXPECT_TRUE(Says("Page 2 of 6"));
    Press("back");
    EXPECT_TRUE(Says("more"));
    EXPECT_TRUE(Says("draft"));
    Press("send");
    EXPECT_EQ(Rows(), std::vector<std::string>{"1 11=draft"});
    Open(path); // its token was used up
    EXPECT_EQ(shown.status, 404);
    Open("/s/address");
    EXPECT_TRUE(Says("later"));
}

TEST_F(Pages, AllOnOnePageAndClosedAtItsHoldersWish) {
    Survey settings = store.FindSurvey(survey).value();
    settings.onOnePage = true;
    ASSERT_TRUE(store.ChangeSurvey(settings));
    Open("/s/address");
    EXPECT_LT(shown.body.size(), 30000U);
    fields.find("q11")->second = std::string(10001, 'x');
    fields.emplace("q14.51", "300");
    Press("send");
    EXPECT_EQ(shown.status, 422);
    EXPECT_TRUE(Says("Please shorten it to 10000 characters."));
    EXPECT_EQ(fields.count("q14.51"), 1U);
    fields.find("q11")->second.pop_back();
    Press("send");
    EXPECT_TRUE(Says("Thank you"));
    ASSERT_EQ(Rows().size(), 1U);

    Open("/s/address");
    fields.find("q11")->second = "late";
    settings.isOpen = false;
    ASSERT_TRUE(store.ChangeSurvey(settings));
    Press("send");
    EXPECT_EQ(shown.status, 403);
    EXPECT_TRUE(Says("This survey is closed"));
    EXPECT_TRUE(Says("late</textarea>")); // to be taken down, or sent when it opens again
    Open("/s/address");
    EXPECT_TRUE(Says("closed"));
    EXPECT_EQ(Rows().size(), 1U);
    EXPECT_FALSE(Ask("GET", "/").body.find("A &amp; &lt;b&gt;") != std::string::npos);
}

TEST_F(Pages, WhatCanNotBeStoredStaysWithWhoTypedIt) {
    Open("/s/address");
    fields.find("q11")->second = "kept";
    SQLite::Database file(directory.filePath("pollarix-server.db").toStdString(),
                          SQLite::OPEN_READWRITE);
    for (const char* button : {"later", "send"}) {
        const std::string table = std::string(button) == "later" ? "draft" : "submission";
        file.exec("ALTER TABLE " + table + " RENAME TO elsewhere");
        Press(button);
        EXPECT_EQ(shown.status, 503);
        EXPECT_TRUE(Says("could not be stored just now"));
        EXPECT_FALSE(Says("Thank you"));
        file.exec("ALTER TABLE elsewhere RENAME TO " + table);
    }
    Press("send");
    EXPECT_TRUE(Says("Thank you"));
    EXPECT_EQ(Rows(), std::vector<std::string>{"1 11=kept"});

    // Where nobody could even look at the form, it comes back as it is.
    Open("/s/address");
    fields.find("q11")->second = "two\r\nlines & \"more\"";
    Request request;
    request.method = "POST";
    request.path = "/s/address";
    request.body = Body("send");
    Take(router.ErrorPage(503, request));
    EXPECT_EQ(shown.status, 503);
    EXPECT_TRUE(Says("could not be stored just now"));
    EXPECT_EQ(fields.count("go"), 1u);
    Take(Ask("POST", "/s/address", Body("send").substr(sizeof "go=send")));
    EXPECT_TRUE(Says("Thank you"));
    EXPECT_EQ(Rows().back(), "1 11=two\\nlines & \"more\"");
    EXPECT_EQ(router.ErrorPage(413, request).body.find("two"), std::string::npos);
}

TEST_F(Pages, WhatNoFormSendsIsRefused) {
    Open("/s/address");
    const auto good = fields;
    const std::tuple<const char*, std::string, int> cases[] = {
        {"t", "", 400},     {"t", "short", 400}, {"v", "2", 400},         {"v", "x", 400},
        {"v", "0", 400},    {"p", "6", 400},     {"p", "x", 400},         {"a", "11=\r", 400},
        {"a", "99=1", 400}, {"q12", "1", 422},   {"go", "elsewhere", 400}};
    for (const auto& [name, value, status] : cases) {
        fields = good;
        fields.erase(name);
        fields.emplace(name, value);
        const std::size_t rows = Rows().size();
        Press(std::string(name) == "go" ? value : "send");
        EXPECT_EQ(shown.status, status) << name << " " << value;
        EXPECT_EQ(Rows().size(), rows);
    }
    EXPECT_EQ(Ask("GET", "/s/elsewhere").status, 404);
    EXPECT_EQ(Ask("POST", "/s/elsewhere", "go=send").status, 404);
    EXPECT_EQ(Ask("GET", "/nothing").status, 404);
}

TEST_F(Pages, TheBrowserChoosesTheLanguage) {
    const std::pair<const char*, const char*> cases[] = {
        {"", "en"},      {"de-AT,de;q=0.9,en;q=0.8", "de"}, {"xx, pl;q=0.2, FR;q=0.31", "fr"},
        {"ar-EG", "ar"}, {"it;q=0, nl ; q=0.5", "nl"},      {"zz;q=x,,;;,es;q=1.000", "es"},
        {"*", "en"},
    };
    for (const auto& [wanted, language] : cases)
        EXPECT_EQ(WordsFor(wanted).language, language) << wanted;
    language = "ar";
    Open("/s/address");
    EXPECT_TRUE(Says("<html lang=\"ar\" dir=\"rtl\">"));
    // No language lacks a word or a place to fill in.
    for (const Words& words : AllWords()) {
        const auto* first = &words.surveys;
        const auto* english = &AllWords()[0].surveys;
        for (const auto* word = first; word <= &words.failedText; ++word, ++english) {
            EXPECT_FALSE(word->empty()) << words.language << (word - first);
            for (const char* place : {"%1", "%2"})
                EXPECT_EQ(word->find(place) == word->npos, english->find(place) == word->npos)
                    << *word;
        }
    }
}
