#include <charconv>
#include <memory>

#include "exchange/ResultsWriter.h"
#include "exchange/SentText.h"
#include "server/accounts/Secrets.h"
#include "server/web/HolderPages.h"
#include "server/web/OwnData.h"
#include "server/web/Pages.h"
#include "server/web/QrCode.h"
#include "server/web/ResultTable.h"

namespace pollarix::server {

namespace {

constexpr std::string_view CookieName = "session";
constexpr std::size_t ChunkSize = 64U << 10U;

struct LoggedIn {
    Id account = None;
    std::string token;
    Holder holder;
};

Response Answer(const Page& page) {
    return PageResponse(WordsFor("en"), page);
}

Response Fault(int status, std::string_view words) {
    return Answer(HolderFaultPage(status, words));
}

Response Download(std::string type, const std::string& name, BodySource source) {
    Response response;
    response.contentType = std::move(type);
    response.headers = {{"Content-Disposition", "attachment; filename=\"" + name + '"'},
                        {"Content-Security-Policy", "default-src 'none'; sandbox"},
                        {"Cache-Control", "private, no-store"}};
    response.stream = std::move(source);
    return response;
}

// What the address of a survey's page says was just done. The words are ours, whatever stands
// there.
std::string_view DoneWords(std::string_view query) {
    if (query == "done=saved")
        return "The settings have been saved.";
    if (query == "done=deleted")
        return "The survey has been deleted.";
    if (query == "done=back")
        return "The survey is back.";
    if (query == "done=restored")
        return "All answers wait to be collected again.";
    return "";
}

std::string_view WordsOf(NewAccountResult result) {
    switch (result) {
    case NewAccountResult::Fine:
        break;
    case NewAccountResult::Closed:
        return "This link makes no account any more.";
    case NewAccountResult::NameUnfit:
        return "Please choose another user name: letters, digits and most signs, at most 64.";
    case NewAccountResult::PasswordWeak:
        return "Please choose a password of 8 to 128 characters.";
    case NewAccountResult::NameTaken:
        return "There is an account of this name already.";
    case NewAccountResult::TooMany:
        return "There were too many attempts from your network. Please try again later.";
    case NewAccountResult::Busy:
        return "The server is busy. Please try again in a moment.";
    }
    return "";
}

int StatusOf(NewAccountResult result) {
    return result == NewAccountResult::TooMany ? 429 : result == NewAccountResult::Busy ? 503 : 422;
}

class HolderSite {
  public:
    explicit HolderSite(const Site& site) : site_(site) {}

    using Fields = std::vector<Field>;

    // A form of another site can't be what its holder meant.
    bool IsFromElsewhere(const Request& request) const {
        return IsFromOtherSite(request, site_.base);
    }

    std::optional<LoggedIn> Find(const Request& request) const {
        // Nor may a page of another site put one of these into itself. A link may lead here.
        if (IsFromElsewhere(request) && request.method != "POST" &&
            request.Header("Sec-Fetch-Mode") != "navigate")
            return std::nullopt;
        const std::string token(request.Cookie(CookieName));
        const auto session = site_.accounts.FindSession(token);
        const auto account =
            session ? site_.store.FindAccount(session->account) : std::optional<Account>();
        if (!account)
            return std::nullopt;
        return LoggedIn{account->id, token, {account->name, session->formSecret}};
    }

    Response LogIn(const Request& request) const {
        const auto fields = FormFields(request.body);
        if (!fields || IsFromElsewhere(request))
            return Fault(400, "This form did not come from this server's page.");
        const std::string_view name = FieldOf(*fields, "name");
        const auto login =
            site_.accounts.LogIn(name, FieldOf(*fields, "password"), request.address);
        if (login.result == LogInResult::Fine)
            return Enter(request, login.account);
        Page page = LoginPage(
            name, login.result == LogInResult::Wrong ? "The user name or the password is wrong."
                  : login.result == LogInResult::TooMany
                      ? "There were too many attempts. Please try again in a quarter of an hour."
                      : "The server is busy. Please try again in a moment.");
        page.status = login.result == LogInResult::Wrong     ? 422
                      : login.result == LogInResult::TooMany ? 429
                                                             : 503;
        return Answer(page);
    }

    Response LogOut(const Request& request, const LoggedIn& who) const {
        site_.accounts.EndSession(who.token);
        Response response = Response::SeeOther("/login");
        response.headers.emplace_back("Set-Cookie", Cookie(request, "") + "; Max-Age=0");
        return response;
    }

    Response NewAccount(const Request& request) const {
        const auto fields = FormFields(request.query);
        const std::string_view invitation = fields ? FieldOf(*fields, "invitation") : "";
        return Answer(site_.accounts.MayCreateAccount(invitation)
                          ? NewAccountPage("", invitation, "")
                          : NoNewAccountPage());
    }

    Response CreateAccount(const Request& request) const {
        const auto fields = FormFields(request.body);
        if (!fields || IsFromElsewhere(request))
            return Fault(400, "This form did not come from this server's page.");
        const std::string_view name = FieldOf(*fields, "name");
        const std::string_view invitation = FieldOf(*fields, "invitation");
        if (!site_.accounts.MayCreateAccount(invitation))
            return Answer(NoNewAccountPage());
        const auto made = site_.accounts.CreateAccount(name, FieldOf(*fields, "password"),
                                                       invitation, request.address);
        if (made.result == NewAccountResult::Fine)
            return Enter(request, made.account);
        Page page = NewAccountPage(name, invitation, WordsOf(made.result));
        page.status = StatusOf(made.result);
        return Answer(page);
    }

    Response Surveys(const LoggedIn& who) const {
        std::vector<SurveyWithCounts> surveys;
        for (const Survey& survey : site_.store.ListSurveys(who.account))
            surveys.push_back({survey, site_.store.CountResults(survey.id)});
        return Answer(SurveysPage(who.holder, surveys, site_.now()));
    }

    Response Show(const Request& request, const LoggedIn& who, const Survey& survey,
                  std::string_view fault = "") const {
        SurveyDetails details;
        details.survey = survey;
        details.counts = site_.store.CountResults(survey.id);
        details.link = LinkOf(request, survey);
        details.keptUntil = survey.deleted + site_.retention.deletedSurveys;
        details.lost = site_.store.CountLost(survey.id);
        Page page = SurveyPage(who.holder, details, site_.now(),
                               fault.empty() ? DoneWords(request.query) : fault, !fault.empty());
        page.status = fault.empty() ? 200 : 422;
        return Answer(page);
    }

    Response Save(const Request& request, const LoggedIn& who, const Survey& survey,
                  const Fields& fields) const {
        Survey changed = survey;
        changed.name = FieldOf(fields, "name");
        changed.isOpen = !FieldOf(fields, "open").empty();
        changed.isPublic = !FieldOf(fields, "public").empty();
        changed.onOnePage = !FieldOf(fields, "onePage").empty();
        changed.opens = ReadMomentField(FieldOf(fields, "opens"));
        changed.closes = ReadMomentField(FieldOf(fields, "closes"));
        if (changed.opens < 0 || changed.closes < 0)
            return Show(request, who, survey,
                        "Please give a date and a time, or leave them empty.");
        if (changed.closes > 0 && changed.closes <= changed.opens)
            return Show(request, who, survey, "The survey would close before it opens.");
        if (const std::string_view fault = exchange::FaultOfSurveyName(changed.name);
            !fault.empty())
            return Show(request, who, survey, fault);
        if (!site_.store.ChangeSurvey(changed))
            return Show(request, who, survey, "You have another survey of that name.");
        return Done(survey, "saved");
    }

    Response Delete(const Request& request, const LoggedIn& who, const Survey& survey,
                    const Fields& fields) const {
        if (FieldOf(fields, "sure").empty())
            return Show(request, who, survey, "Please tick the box if you mean to delete it.");
        site_.store.DeleteSurvey(survey.id, site_.now());
        return Done(survey, "deleted");
    }

    Response Undelete(const Request& request, const LoggedIn& who, const Survey& survey,
                      const Fields&) const {
        if (!site_.store.UndeleteSurvey(survey.id))
            return Show(request, who, survey,
                        "You have a new survey of this name. Rename that one first.");
        return Done(survey, "back");
    }

    Response RestoreResults(const Request&, const LoggedIn&, const Survey& survey,
                            const Fields&) const {
        site_.store.RestoreResults(survey.id, 0);
        return Done(survey, "restored");
    }

    Response Table(const Survey& survey) const {
        return Download("text/csv; charset=utf-8", "survey-" + std::to_string(survey.id) + ".csv",
                        ResultTable(site_.store, site_.questionnaires, survey));
    }

    // What the program would collect. Nothing is dropped by looking at it.
    Response ResultsFile(const Survey& survey) const {
        const std::shared_ptr<Submissions> rows = site_.store.WaitingResults(survey.id);
        return Download(
            "text/plain; charset=windows-1252", "survey-" + std::to_string(survey.id) + ".txt",
            [rows, id = survey.id, &questionnaires = site_.questionnaires](std::string& chunk) {
                chunk.clear();
                exchange::LostLetters lost;
                while (chunk.size() < ChunkSize) {
                    const auto row = rows->Next();
                    if (!row)
                        break;
                    const auto read = questionnaires.Read(id, *row);
                    chunk += exchange::ResultsOf(*read.questionnaire, read.answers, lost);
                }
                return !chunk.empty();
            });
    }

    Response Code(const Request& request, const Survey& survey) const {
        Response response;
        response.contentType = "image/svg+xml";
        response.body = QrCodeSvg(LinkOf(request, survey));
        response.headers = {{"Content-Security-Policy", "default-src 'none'; sandbox"},
                            {"Cache-Control", "private, no-cache"}};
        return response;
    }

    static Response ShowAccount(const Request& request, const LoggedIn& who) {
        return Answer(AccountPage(
            who.holder, request.query == "done=password" ? "The password has been changed." : "",
            false));
    }

    Response ChangePassword(const Request& request, const LoggedIn& who,
                            const Fields& fields) const {
        const NewAccountResult result = site_.accounts.ChangePassword(
            who.account, FieldOf(fields, "old"), FieldOf(fields, "new"), request.address);
        if (result == NewAccountResult::Fine) // all sessions are over; this one goes on
            return Enter(request, who.account, "/account?done=password");
        Page page = AccountPage(who.holder,
                                result == NewAccountResult::Closed
                                    ? "The password until now is another one."
                                    : WordsOf(result),
                                true);
        page.status = StatusOf(result);
        return Answer(page);
    }

    Response Data(const LoggedIn& who) const {
        return Download("application/json", "pollarix-data.json",
                        OwnData(site_.store, site_.questionnaires,
                                site_.store.FindAccount(who.account).value()));
    }

    // The account's own survey, also a deleted one.
    std::optional<Survey> FindSurvey(const LoggedIn& who, std::string_view id) const {
        Id number = None;
        const auto [stop, error] = std::from_chars(id.data(), id.data() + id.size(), number);
        if (error != std::errc() || stop != id.data() + id.size())
            return std::nullopt;
        auto survey = site_.store.FindSurvey(number);
        if (survey && survey->account != who.account)
            return std::nullopt;
        return survey;
    }

  private:
    static Response Done(const Survey& survey, const char* what) {
        return Response::SeeOther("/surveys/" + std::to_string(survey.id) + "?done=" + what);
    }

    std::string LinkOf(const Request& request, const Survey& survey) const {
        return RootOf(site_.base, request) + "s/" + survey.address;
    }

    std::string Cookie(const Request& request, const std::string& token) const {
        const bool isSecure = request.isTls || site_.base.starts_with("https://");
        return std::string(CookieName) + '=' + token + "; Path=/; HttpOnly; SameSite=Lax" +
               (isSecure ? "; Secure" : "");
    }

    Response Enter(const Request& request, Id account, const char* where = "/surveys") const {
        Response response = Response::SeeOther(where);
        response.headers.emplace_back("Set-Cookie",
                                      Cookie(request, site_.accounts.StartSession(account)));
        return response;
    }

    const Site site_;
};

using Shared = std::shared_ptr<const HolderSite>;

Response Unknown() {
    return Fault(404, "There is nothing of yours at this address.");
}

// For somebody logged in only; others are led to the login.
template <typename Action> Handler ForHolder(const Shared& site, Action action) {
    return [site, action](const Request& request, const PathParts& parts) {
        const auto who = site->Find(request);
        return who ? action(*site, request, parts, *who) : Response::SeeOther("/login");
    };
}

// For one of the holder's surveys.
template <typename Action> Handler ForSurvey(const Shared& site, Action action) {
    return ForHolder(site, [action](const HolderSite& holderSite, const Request& request,
                                    const PathParts& parts, const LoggedIn& who) {
        const auto survey = holderSite.FindSurvey(who, parts[0]);
        return survey ? action(holderSite, request, who, *survey) : Unknown();
    });
}

// For a form that has to bring back the session's secret.
std::optional<std::vector<Field>> OwnFields(const HolderSite& site, const Request& request,
                                            const LoggedIn& who) {
    auto fields = FormFields(request.body);
    if (!fields || site.IsFromElsewhere(request) ||
        !SameSecret(FieldOf(*fields, "csrf"), who.holder.formSecret))
        return std::nullopt;
    return fields;
}

Response Foreign() {
    return Fault(403, "This form did not come from your own session. Please open its page again.");
}

using SurveyAction = Response (HolderSite::*)(const Request&, const LoggedIn&, const Survey&,
                                              const std::vector<Field>&) const;

Handler Changing(const Shared& site, SurveyAction action) {
    return ForSurvey(site, [action](const HolderSite& holderSite, const Request& request,
                                    const LoggedIn& who, const Survey& survey) {
        const auto fields = OwnFields(holderSite, request, who);
        return fields ? (holderSite.*action)(request, who, survey, *fields) : Foreign();
    });
}

using SurveyView = Response (HolderSite::*)(const Survey&) const;

Handler Viewing(const Shared& site, SurveyView view) {
    return ForSurvey(site, [view](const HolderSite& holderSite, const Request&, const LoggedIn&,
                                  const Survey& survey) { return (holderSite.*view)(survey); });
}

void AddSurveyPages(Router& router, const Shared& site) {
    router.Add("GET", "/surveys",
               ForHolder(site, [](const HolderSite& holderSite, const Request&, const PathParts&,
                                  const LoggedIn& who) { return holderSite.Surveys(who); }));
    router.Add("GET", "/surveys/*",
               ForSurvey(site, [](const HolderSite& holderSite, const Request& request,
                                  const LoggedIn& who, const Survey& survey) {
                   return holderSite.Show(request, who, survey);
               }));
    router.Add(
        "GET", "/surveys/*/code.svg",
        ForSurvey(site, [](const HolderSite& holderSite, const Request& request, const LoggedIn&,
                           const Survey& survey) { return holderSite.Code(request, survey); }));
    router.Add("GET", "/surveys/*/results.csv", Viewing(site, &HolderSite::Table));
    router.Add("GET", "/surveys/*/results.txt", Viewing(site, &HolderSite::ResultsFile));
    router.Add("POST", "/surveys/*", Changing(site, &HolderSite::Save));
    router.Add("POST", "/surveys/*/delete", Changing(site, &HolderSite::Delete));
    router.Add("POST", "/surveys/*/undelete", Changing(site, &HolderSite::Undelete));
    router.Add("POST", "/surveys/*/restore-results", Changing(site, &HolderSite::RestoreResults));
}

void AddAccountPages(Router& router, const Shared& site) {
    router.AddQuick("GET", "/login",
                    [](const Request&, const PathParts&) { return Answer(LoginPage("", "")); });
    router.Add("POST", "/login",
               [site](const Request& request, const PathParts&) { return site->LogIn(request); });
    router.Add("GET", "/CreateAccount.php", [site](const Request& request, const PathParts&) {
        return site->NewAccount(request);
    });
    router.Add("POST", "/CreateAccount.php", [site](const Request& request, const PathParts&) {
        return site->CreateAccount(request);
    });
    router.Add("POST", "/logout",
               ForHolder(site, [](const HolderSite& holderSite, const Request& request,
                                  const PathParts&, const LoggedIn& who) {
                   return OwnFields(holderSite, request, who) ? holderSite.LogOut(request, who)
                                                              : Foreign();
               }));
    router.Add(
        "GET", "/account",
        ForHolder(site, [](const HolderSite&, const Request& request, const PathParts&,
                           const LoggedIn& who) { return HolderSite::ShowAccount(request, who); }));
    router.Add("POST", "/account",
               ForHolder(site, [](const HolderSite& holderSite, const Request& request,
                                  const PathParts&, const LoggedIn& who) {
                   const auto fields = OwnFields(holderSite, request, who);
                   return fields ? holderSite.ChangePassword(request, who, *fields) : Foreign();
               }));
    router.Add("GET", "/account/data.json",
               ForHolder(site, [](const HolderSite& holderSite, const Request&, const PathParts&,
                                  const LoggedIn& who) { return holderSite.Data(who); }));
}

} // namespace

void AddHolderPages(Router& router, const Site& site) {
    const auto holderSite = std::make_shared<const HolderSite>(site);
    AddSurveyPages(router, holderSite);
    AddAccountPages(router, holderSite);
}

} // namespace pollarix::server
