#include "server/protocol/Exchange.h"

#include <algorithm>
#include <ctime>

#include "exchange/CodePage.h"
#include "exchange/ResultsWriter.h"
#include "exchange/SentText.h"
#include "exchange/SurveyReader.h"

namespace pollarix::server {

namespace {

constexpr std::size_t LongestRefusal = 200;
constexpr std::size_t ChunkBytes = 64 * 1024;

Time Now() {
    return std::time(nullptr);
}

// The program reads every reply in Windows-1252.
std::string Narrow(const std::string& utf8) {
    exchange::LostLetters lost;
    return exchange::Windows1252FromUtf8(utf8, lost);
}

Response Reply(const std::string& utf8) {
    Response response;
    response.contentType = "text/plain; charset=windows-1252";
    response.headers = {{"Cache-Control", "no-store"}};
    response.body = Narrow(utf8);
    return response;
}

// One line that isn't too long, and that can't pass for a success.
std::string Words(std::string words) {
    std::replace_if(
        words.begin(), words.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; },
        ' ');
    if (words.size() > LongestRefusal) {
        std::size_t end = LongestRefusal;
        while (end > 0 && (static_cast<unsigned char>(words[end]) & 0xC0U) == 0x80U)
            --end; // not within a letter
        words.resize(end);
    }
    return words;
}

// A host as a browser sends it, with or without a port.
bool IsHost(std::string_view host) {
    return !host.empty() && std::all_of(host.begin(), host.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               std::string_view(".-:[]").find(c) != std::string_view::npos;
    });
}

// "<user>-<survey><ending>", parted.
struct FileName {
    std::string user;
    std::string survey;
};
std::optional<FileName> ReadFileName(const std::string& name, std::string_view ending) {
    const std::size_t dash = name.find('-');
    if (dash == std::string::npos || !name.ends_with(ending) || name.size() < dash + ending.size())
        return std::nullopt;
    return FileName{name.substr(0, dash),
                    name.substr(dash + 1, name.size() - ending.size() - dash - 1)};
}

} // namespace

Exchange::Exchange(Store& store, Accounts& accounts, Questionnaires& questionnaires,
                   ExchangeSettings settings, std::function<void(const std::string&)> log)
    : store_(store), accounts_(accounts), questionnaires_(questionnaires),
      settings_(std::move(settings)), log_(std::move(log)) {}

void Exchange::AddRoutes(Router& router) {
    router.Add("GET", "/ws/CallFunc.php",
               [this](const Request& request, const PathParts&) { return Call(request); });
}

Response Exchange::Call(const Request& request) {
    const auto call = ReadCall(request.query);
    if (!call)
        return Reply("The server doesn't know this call.");
    const bool isDocument = call->function == "GetSurveyResults";
    // A page elsewhere could have its visitors' browsers guess passwords, until nobody at their
    // address can log in.
    if (IsFromOtherSite(request, settings_.publicUrl))
        return Reply("Failure: This call came from another site.");
    try {
        if (isDocument)
            return GetSurveyResults(call->values[0], request.address);
        return Reply("Success<br>" + Value(*call, request) + "<br>");
    } catch (const Refusal& refusal) {
        // A document is told from a refusal by the refusal's first word.
        return Reply(Words((isDocument ? "Failure: " : "") + refusal.words));
    } catch (const Bounded& bound) {
        return Reply(Words(bound.what()));
    } catch (const StoreFailure& failure) {
        log_(std::string("a call failed: ") + failure.what());
        return Reply(isDocument ? "Failure: The server can't read its results just now."
                                : "The server can't store this just now. Please try again later.");
    }
}

std::string Exchange::Value(const RawCall& call, const Request& request) {
    const std::string& address = request.address;
    const std::vector<std::string>& values = call.values;
    if (call.function == "GetWebUserID")
        return GetWebUserID(call, address);
    if (call.function == "GetSurveyID") {
        const auto survey = store_.FindSurvey(AccountOf(values[1], address), values[0]);
        if (!survey)
            throw Refusal{"There is no survey of that name."};
        return std::to_string(survey->id);
    }
    if (call.function == "CreateSurvey")
        return CreateSurvey(AccountOf(values[0], address), values[1]);
    if (call.function == "MoveNewSurvey")
        return MoveNewSurvey(call, request);
    if (call.function == "GetSurveyListForUser")
        return GetSurveyListForUser(AccountOf(values[0], address));
    if (call.function == "GetSurveyName")
        return GetSurveyName(values[0], address);
    return DeleteSurveyResultsFile(call, address);
}

std::string Exchange::GetWebUserID(const RawCall& call, const std::string& address) {
    const Accounts::Login login = accounts_.LogIn(call.values[0], call.values[1], address);
    switch (login.result) {
    case LogInResult::Wrong:
        log_("a login of the program was refused");
        throw Refusal{"The user name or the password is wrong."};
    case LogInResult::TooMany:
        throw Refusal{
            "There were too many wrong logins. Please try again in a quarter of an hour."};
    case LogInResult::Busy:
        throw Refusal{"The server is busy. Please try again in a moment."};
    case LogInResult::Fine:
        break;
    }
    const auto ticket = tickets_.Give({login.account, login.stamp}, address, Now());
    if (!ticket)
        throw Refusal{"Too many users are logged in. Please try again in half an hour."};
    return std::to_string(*ticket);
}

std::string Exchange::CreateSurvey(Id account, const std::string& name) {
    if (const std::string_view fault = exchange::FaultOfSurveyName(name); !fault.empty())
        throw Refusal{std::string(fault)};
    const std::vector<Survey> surveys = store_.ListSurveys(account);
    if (surveys.size() >= static_cast<std::size_t>(settings_.surveysPerAccount))
        throw Refusal{"This account has as many surveys as it can have."};
    const Id survey = store_.CreateSurvey(account, name, NewToken(), Now());
    if (survey == None)
        throw Refusal{"This account has a survey of that name already."};
    return std::to_string(survey);
}

std::string Exchange::MoveNewSurvey(const RawCall& call, const Request& request) {
    const std::string& user = call.values[3];
    const Id account = AccountOf(user, request.address);
    const Survey survey = SurveyOf(account, call.values[1]);
    const auto file = ReadFileName(call.values[0], ".xml");
    if (!file || file->user != user || file->survey != call.values[1])
        throw Refusal{"The uploaded file has another name than this survey's."};
    const auto document = store_.FindUpload(survey.id);
    if (!document)
        throw Refusal{"The survey's document has not arrived. Please publish again."};
    try {
        exchange::ReadSurveyDocument(*document);
    } catch (const exchange::DocumentFault& fault) {
        throw Refusal{fault.what()};
    }
    const int version =
        store_.Publish(survey.id, *document, call.values[2] == "True", Now(), settings_.bounds);
    if (version == 0)
        throw Refusal{"There is no such survey any more."};
    log_("survey " + std::to_string(survey.id) + " version " + std::to_string(version) +
         " was published");
    return UrlOf(survey, request);
}

std::string Exchange::GetSurveyListForUser(Id account) {
    std::string ids;
    for (const Survey& survey : store_.ListSurveys(account))
        if (survey.deleted == 0)
            ids += (ids.empty() ? "" : ",") + std::to_string(survey.id);
    return ids;
}

// The call says nothing of the user; it is answered where somebody of the survey's account has just
// logged in.
std::string Exchange::GetSurveyName(const std::string& survey, const std::string& address) {
    const auto number = NumberOf(survey);
    const auto found = number ? store_.FindSurvey(*number) : std::nullopt;
    const auto account = found ? store_.FindAccount(found->account) : std::nullopt;
    if (!account || account->isDisabled || found->deleted != 0 ||
        !tickets_.IsHere({account->id, account->stamp}, address, Now()))
        throw Refusal{"There is no such survey."};
    return found->name;
}

Response Exchange::GetSurveyResults(const std::string& file, const std::string& address) {
    const auto name = ReadFileName(file, ".txt");
    if (!name)
        throw Refusal{"There is no such file."};
    const Survey survey = SurveyOf(AccountOf(name->user, address), name->survey);
    std::shared_ptr<Submissions> rows = store_.WaitingResults(survey.id);
    auto first = rows->Next();
    if (!first)
        throw Refusal{"There are no new answers."};
    struct Fetch {
        std::optional<Submission> next;
        std::int64_t count = 0;
        exchange::LostLetters lost;
    };
    auto fetch = std::make_shared<Fetch>();
    fetch->next = std::move(first);
    Response response;
    response.contentType = "text/plain; charset=windows-1252";
    response.headers = {{"Cache-Control", "no-store"}};
    response.stream = [this, rows, fetch, id = survey.id,
                       ticket = *NumberOf(name->user)](std::string& chunk) {
        while (fetch->next && chunk.size() < ChunkBytes) {
            const Submission& row = *fetch->next;
            const auto [questionnaire, answers] = questionnaires_.Read(id, row);
            chunk += exchange::ResultsOf(*questionnaire, answers, fetch->lost);
            ++fetch->count;
            fetch->next = rows->Next();
        }
        if (!chunk.empty())
            return true;
        // Before the reply's end is sent: who has all of it may drop it.
        tickets_.NoteFetch(ticket, id, rows->All());
        log_("survey " + std::to_string(id) + ": " + std::to_string(fetch->count) +
             " results were fetched");
        return false;
    };
    return response;
}

std::string Exchange::DeleteSurveyResultsFile(const RawCall& call, const std::string& address) {
    const std::string& user = call.values[0];
    const Survey survey = SurveyOf(AccountOf(user, address), call.values[1]);
    const auto handedOut = tickets_.TakeFetch(*NumberOf(user), survey.id);
    if (!handedOut)
        throw Refusal{"These results were not fetched with this login, so none is deleted."};
    std::int64_t count = 0;
    try {
        count = store_.DropResults(survey.id, *handedOut, Now());
    } catch (const StoreFailure&) {
        tickets_.NoteFetch(*NumberOf(user), survey.id, *handedOut); // to be tried again
        throw;
    }
    log_("survey " + std::to_string(survey.id) + ": " + std::to_string(count) +
         " results were dropped");
    return std::to_string(count);
}

std::string Exchange::MayDocumentCome(std::int64_t user, std::int64_t survey,
                                      const std::string& address) {
    try {
        SurveyOf(AccountOf(std::to_string(user), address), std::to_string(survey));
        return {};
    } catch (const Refusal& refusal) {
        return Words(refusal.words);
    }
}

std::string Exchange::TakeDocument(std::int64_t user, std::int64_t survey,
                                   const std::string& document, const std::string& address) {
    try {
        const Id account = AccountOf(std::to_string(user), address);
        store_.KeepUpload(SurveyOf(account, std::to_string(survey)).id, document, Now(),
                          settings_.bounds);
        return {};
    } catch (const Refusal& refusal) {
        return Words(refusal.words);
    } catch (const Bounded& bound) {
        return Words(bound.what());
    }
}

Id Exchange::AccountOf(const std::string& user, const std::string& address) {
    const auto ticket = NumberOf(user);
    const auto login = ticket ? tickets_.Find(*ticket, address, Now()) : std::nullopt;
    const auto account = login ? store_.FindAccount(login->account) : std::nullopt;
    if (account && account->isDisabled)
        throw Refusal{"This account is disabled."};
    if (!account || account->stamp != login->stamp) {
        if (login)
            tickets_.End(*ticket);
        throw Refusal{"This login is over. Please log in again."};
    }
    return account->id;
}

Survey Exchange::SurveyOf(Id account, const std::string& survey) {
    const auto number = NumberOf(survey);
    const auto found = number ? store_.FindSurvey(*number) : std::nullopt;
    if (!found || found->account != account || found->deleted != 0)
        throw Refusal{"There is no such survey in this account."};
    return *found;
}

std::string Exchange::UrlOf(const Survey& survey, const Request& request) const {
    std::string root = settings_.publicUrl;
    if (root.empty()) {
        const std::string_view host = request.Header("Host");
        if (!IsHost(host))
            throw Refusal{"The server doesn't know its own address."};
        root = (request.isTls ? "https://" : "http://") + std::string(host) + '/';
    }
    return root + "s/" + survey.address;
}

} // namespace pollarix::server
