// What the program asks of the server: the eight functions of "ws/CallFunc.php", and the documents
// that come by FTP. Its replies are what the program shows its user. Pages are not made here.
#pragma once

#include <functional>
#include <string>

#include "server/accounts/Accounts.h"
#include "server/accounts/Tickets.h"
#include "server/net/Router.h"
#include "server/protocol/RawCall.h"
#include "server/survey/Questionnaires.h"

namespace pollarix::server {

struct ExchangeSettings {
    std::string publicUrl; // the server's root with its closing "/"; "" for that of the request
    int surveysPerAccount = 1000;
    PublishBounds bounds = {};
};

class Exchange {
  public:
    Exchange(Store& store, Accounts& accounts, Questionnaires& questionnaires,
             ExchangeSettings settings, std::function<void(const std::string&)> log);

    // Adds "/ws/CallFunc.php".
    void AddRoutes(Router& router);
    // Whether a document may come by FTP, and one that came; see UploadTaker.
    std::string MayDocumentCome(std::int64_t user, std::int64_t survey, const std::string& address);
    std::string TakeDocument(std::int64_t user, std::int64_t survey, const std::string& document,
                             const std::string& address);

  private:
    // Refusals are thrown, in words for the program's user.
    struct Refusal {
        std::string words;
    };
    Response Call(const Request& request);
    std::string Value(const RawCall& call, const Request& request);

    std::string GetWebUserID(const RawCall& call, const std::string& address);
    std::string CreateSurvey(Id account, const std::string& name);
    std::string MoveNewSurvey(const RawCall& call, const Request& request);
    std::string GetSurveyListForUser(Id account);
    std::string GetSurveyName(const std::string& survey, const std::string& address);
    std::string DeleteSurveyResultsFile(const RawCall& call, const std::string& address);
    Response GetSurveyResults(const std::string& file, const std::string& address);

    // Of a user id. Throws a Refusal for one that isn't good here.
    Id AccountOf(const std::string& user, const std::string& address);
    // Of the account, and not deleted. Throws a Refusal.
    Survey SurveyOf(Id account, const std::string& survey);
    std::string UrlOf(const Survey& survey, const Request& request) const;

    Store& store_;
    Accounts& accounts_;
    Questionnaires& questionnaires_;
    const ExchangeSettings settings_;
    const std::function<void(const std::string&)> log_;
    Tickets tickets_;
};

} // namespace pollarix::server
