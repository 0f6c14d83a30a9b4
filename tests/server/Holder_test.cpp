// The pages of those who hold surveys, through the router and with a real store.
#include <gtest/gtest.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <regex>

#include "server/web/HolderPages.h"
#include "server/web/Pages.h"
#include "server/web/QrCode.h"
#include "server/web/ResultTable.h"
#include "support/Places.h"

using namespace pollarix::server;
using namespace pollarix::test;

namespace {

class HolderSite : public testing::Test {
  protected:
    HolderSite() {
        AddPages(router,
                 {store, accounts, questionnaires, "https://example.org/", [this] { return now; }});
        QFile file(SourceFile("tests/exchange/every-kind.txt"));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        document = file.readAll().replace("-1<", "41<").replace("\n", "\r\n").toStdString();
    }

    Response Ask(const std::string& method, const std::string& target,
                 const std::vector<Field>& fields = {}) {
        Request request;
        request.method = method;
        request.path = target.substr(0, target.find('?'));
        request.query = target.substr(std::min(target.size(), request.path.size() + 1));
        for (const auto& [name, value] : fields)
            request.body += PercentEncoded(name) + '=' + PercentEncoded(value) + '&';
        request.headers = {{"Cookie", cookie}, {"Sec-Fetch-Site", from}};
        if (!origin.empty())
            request.headers = {{"Cookie", cookie}, {"Host", "example.org"}, {"Origin", origin}};
        const Router::Found found = router.Find(method, request.path);
        Response response = found.route ? found.route->handler(request, found.parts)
                                        : router.ErrorPage(found.status, request);
        for (const auto& [name, value] : response.headers)
            if (name == "Set-Cookie")
                cookie = value.substr(0, value.find(';'));
        std::string chunk;
        while (response.stream && response.stream(chunk))
            response.body += chunk;
        std::smatch secret;
        if (std::regex_search(response.body, secret,
                              std::regex("name=\"csrf\" value=\"([^\"]+)\"")))
            csrf = secret[1];
        return response;
    }
    Response Send(const std::string& path, std::vector<Field> fields = {}) {
        fields.emplace_back("csrf", csrf);
        return Ask("POST", path, fields);
    }
    // With an account, a cookie, and a published survey, whose path comes back.
    std::string Enter(const std::string& name) {
        const std::string invitation = accounts.Invite();
        EXPECT_EQ(Ask("POST", "/CreateAccount.php",
                      {{"name", name}, {"password", "Sesame-93"}, {"invitation", invitation}})
                      .status,
                  303);
        account = store.FindAccount(name)->id;
        survey = store.CreateSurvey(account, name + "'s <b>", "address-of-" + name, now);
        store.Publish(survey, document, true, now);
        Ask("GET", "/surveys");
        return "/surveys/" + std::to_string(survey);
    }
    static bool Holds(const Response& response, std::string_view words) {
        return response.body.find(words) != std::string::npos;
    }

    QTemporaryDir directory;
    Time now = 1800000000;
    Store store{directory.path().toStdString()};
    Accounts accounts{store, {}};
    Questionnaires questionnaires{store};
    Router router;
    std::string document;
    std::string cookie;
    std::string csrf;
    std::string from = "same-origin";
    std::string origin; // what an older browser tells instead, unless empty
    Id account = None;
    Id survey = None;
};

} // namespace

TEST_F(HolderSite, OnlyTheHolderGetsIn) {
    EXPECT_EQ(Ask("GET", "/CreateAccount.php").status, 403);
    EXPECT_EQ(Ask("POST", "/CreateAccount.php", {{"name", "a"}, {"password", "Sesame-93"}}).status,
              403);
    const std::string eves = Enter("eve");
    const std::string path = Enter("ann");
    EXPECT_TRUE(Holds(Ask("GET", "/surveys"), "ann&#39;s &lt;b&gt;"));
    EXPECT_EQ(Ask("GET", path).status, 200);

    // Neither another's survey, nor a form without the secret, nor one of another site.
    for (const char* action : {"", "/delete", "/undelete", "/restore-results"}) {
        EXPECT_EQ(Send(eves + action, {{"sure", "1"}}).status, 404);
        EXPECT_EQ(Ask("POST", path + action, {{"csrf", "x"}, {"sure", "1"}}).status, 403);
        from = "cross-site";
        EXPECT_EQ(Send(path + action, {{"sure", "1"}}).status, 403);
        from = "same-origin";
    }
    for (const char* view : {"", "/results.csv", "/results.txt", "/code.svg"})
        EXPECT_EQ(Ask("GET", eves + view).status, 404);
    for (const char* foreign : {"https://evil.example", "http://example.org.evil", "null"}) {
        origin = foreign;
        EXPECT_EQ(Send(path + "/delete", {{"sure", "1"}}).status, 403) << foreign;
    }
    origin = "https://example.org";
    EXPECT_EQ(Send(path + "/delete").status, 422); // our own page, without the tick
    origin.clear();
    EXPECT_EQ(store.FindSurvey(survey)->deleted, 0);
    // Nor may another site's page have its visitors lock somebody out, or show what is theirs.
    from = "cross-site";
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(Ask("POST", "/login", {{"name", "ann"}, {"password", "x"}}).status, 400);
    EXPECT_EQ(Ask("GET", path + "/results.csv").status, 303);
    from = "same-origin";
    EXPECT_EQ(Ask("GET", path + "/results.csv").status, 200);

    EXPECT_EQ(Ask("POST", "/logout", {{"csrf", "x"}}).status, 403);
    const std::string old = cookie;
    EXPECT_EQ(Send("/logout").status, 303);
    for (const std::string& gone : {cookie, old, std::string("session=x")}) {
        cookie = gone;
        for (const char* page : {"/surveys", "/account", "/account/data.json"})
            EXPECT_EQ(Ask("GET", page).status, 303) << page;
        EXPECT_EQ(Ask("GET", path).status, 303);
        EXPECT_EQ(Send(path + "/delete", {{"sure", "1"}}).status, 303);
    }
    EXPECT_EQ(Ask("POST", "/login", {{"name", "ann"}, {"password", "sesame-93"}}).status, 422);
    EXPECT_EQ(Ask("POST", "/login", {{"name", "ann"}, {"password", "Sesame-93"}}).status, 303);
    Ask("GET", "/account");
    EXPECT_EQ(Send("/account", {{"old", "x"}, {"new", "Sesame-94"}}).status, 422);
    EXPECT_EQ(Send("/account", {{"old", "Sesame-93"}, {"new", "short"}}).status, 422);
    EXPECT_EQ(Send("/account", {{"old", "Sesame-93"}, {"new", "Sesame-94"}}).status, 303);
    EXPECT_EQ(Ask("GET", "/surveys").status, 200); // with a new session
}

TEST_F(HolderSite, SettingsAreCheckedAndDeletedSurveysComeBack) {
    const std::string path = Enter("ann");
    const std::vector<Field> good = {{"name", "New"},
                                     {"open", "1"},
                                     {"onePage", "1"},
                                     {"opens", "2027-01-31T08:05"},
                                     {"closes", ""}};
    EXPECT_EQ(Send(path, good).status, 303);
    const Survey saved = store.FindSurvey(survey).value();
    EXPECT_EQ(saved.name, "New");
    EXPECT_TRUE(saved.isOpen && saved.onOnePage && !saved.isPublic);
    EXPECT_EQ(saved.opens, 1801382700);
    EXPECT_TRUE(Holds(Ask("GET", path), "value=\"2027-01-31T08:05\""));
    store.CreateSurvey(account, "Taken", "b", now);
    const std::pair<const char*, const char*> bad[] = {{"name", ""},
                                                       {"name", "Taken"},
                                                       {"name", "a\nb"},
                                                       {"name", "a<bR>b"},
                                                       {"name", "50%20off"},
                                                       {"name", "\u0085"},
                                                       {"opens", "tomorrow"},
                                                       {"opens", "2027-02-30T08:05"},
                                                       {"closes", "2027-01-31T08:05"},
                                                       {"closes", "1800-01-01T00:00"}};
    for (const auto& [name, value] : bad) {
        std::vector<Field> fields = good;
        for (auto& field : fields)
            if (field.first == name)
                field.second = value;
        EXPECT_EQ(Send(path, fields).status, 422) << name << ' ' << value;
    }

    EXPECT_EQ(Send(path + "/delete").status, 422); // without the tick
    EXPECT_EQ(Send(path + "/delete", {{"sure", "1"}}).status, 303);
    EXPECT_EQ(Ask("GET", "/s/address-of-ann").status, 404);
    EXPECT_TRUE(Holds(Ask("GET", path), "Have it back"));
    EXPECT_EQ(Send(path + "/undelete").status, 303);
    EXPECT_EQ(Ask("GET", "/s/address-of-ann").status, 200);
    EXPECT_TRUE(Holds(Ask("GET", path + "/code.svg"), "<svg"));
    EXPECT_EQ(QrCodeSvg(std::string(5000, 'x')), "");
}

TEST_F(HolderSite, AnswersAreHandedOutWhole) {
    const std::string path = Enter("ann");
    store.Submit(survey, 1, "1", "11==1+1\\n\"x\";41=40;14=50:301", now);
    store.Submit(survey, 1, "1", "11=\u0416\u20ac", now, {1, "\u0416"});
    store.Publish(survey, std::regex_replace(document, std::regex(">11<"), ">17<"), true, now);
    store.Submit(survey, 2, "2", "17= @sum", now);

    const std::string csv = Ask("GET", path + "/results.csv").body;
    EXPECT_EQ(csv.substr(csv.find("\r\n") + 2),
              "2027-01-15 08:00:00,1,,,Yes,So & so,,,\"'=1+1\n\"\"x\"\"\"\r\n"
              "2027-01-15 08:00:00,1,yes,,,,,,\u0416\u20ac\r\n"
              "2027-01-15 08:00:00,2,,' @sum,,,,,\r\n");
    const std::string results = Ask("GET", path + "/results.txt").body;
    EXPECT_EQ(std::count(results.begin(), results.end(), '\x80'), 1);
    EXPECT_NE(results.find("<Response>301,50</Response>"), std::string::npos);

    const Response page = Ask("GET", path);
    EXPECT_TRUE(Holds(page, "the program can't show: 1"));
    EXPECT_TRUE(Holds(page, "\u0416"));
    EXPECT_TRUE(Holds(page, "1 of them came from forms"));
    EXPECT_TRUE(Holds(page, "<dt>Answers not yet collected</dt><dd>3</dd>"));
    store.DropResults(survey, {3, 0}, now);
    EXPECT_TRUE(Holds(Ask("GET", path), "<dt>Collected</dt><dd>3</dd>"));
    EXPECT_EQ(Send(path + "/restore-results").status, 303);
    EXPECT_EQ(store.CountResults(survey).waiting, 3);

    const QByteArray json = QByteArray::fromStdString(Ask("GET", "/account/data.json").body);
    QJsonParseError fault;
    const QJsonDocument data = QJsonDocument::fromJson(json, &fault);
    ASSERT_EQ(fault.error, QJsonParseError::NoError) << fault.offset << json.toStdString();
    const QJsonValue all = data["surveys"][0];
    EXPECT_EQ(all["documents"].toArray().size(), 2);
    EXPECT_EQ(all["answers"][0]["answers"]["11"].toString(), "=1+1\n\"x\"");
    EXPECT_EQ(all["answers"][0]["answers"]["14"]["50"].toInt(), 301);
    EXPECT_EQ(all["answers"][2]["version"].toInt(), 2);
}

TEST(CsvCells, AreNeverFormulas) {
    const std::pair<const char*, const char*> cases[] = {
        {"plain", "plain"},      {"", ""},
        {"a,b", "\"a,b\""},      {"a\"b", "\"a\"\"b\""},
        {"=1", "'=1"},           {" +1", "' +1"},
        {"-1", "'-1"},           {"@x", "'@x"},
        {"\t=1", "\"'\t=1\""},   {"\n-1", "\"'\n-1\""},
        {"\uFF1D1", "'\uFF1D1"}, {"1-1=0", "1-1=0"}};
    for (const auto& [text, cell] : cases)
        EXPECT_EQ(CsvCell(text), cell);
}
