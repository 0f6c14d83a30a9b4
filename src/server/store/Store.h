// The one database of the server. All calls block and may come from any thread. Whatever changes
// something returns after the commit that holds it; changes that wait at the same time share one
// commit. What answers and documents say is nobody's business here: they are bytes.
//
// All calls throw StoreFull or StoreFailure, and have then changed nothing.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "server/store/Records.h"

namespace pollarix::server {

class Database;
class Writer;

// How long things are kept that nobody wants any more, in seconds.
struct Retention {
    Time drafts = 30 * 86400;
    Time droppedResults = 90 * 86400;
    Time deletedSurveys = 90 * 86400;
};

// Goes through submissions one at a time, a page of them in memory. What comes in after it was made
// is not among them. It may be kept as long as a slow client needs.
class Submissions {
  public:
    virtual ~Submissions() = default;
    // Nothing behind the last one.
    virtual std::optional<Submission> Next() = 0;
};

class Store {
  public:
    // Opens the database below the directory, or makes it. An older one is brought up to date,
    // after a copy of it was put beside it.
    explicit Store(const std::string& directory);
    ~Store(); // after everything that waits is committed
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;

    // Accounts. A name is taken also by an account that is disabled; then None comes back.
    Id CreateAccount(const std::string& name, const std::string& passwordHash, Time now);
    std::optional<Account> FindAccount(const std::string& name);
    std::optional<Account> FindAccount(Id account);
    std::vector<Account> ListAccounts();
    // Both end all of the account's sessions. False when there is no such account.
    bool SetPasswordHash(Id account, const std::string& passwordHash);
    bool SetDisabled(Id account, bool isDisabled);

    // Invitations to create an account, each for one. Of tokens only hashes come here.
    void CreateInvitation(const std::string& tokenHash, Time expires);
    bool HasInvitation(const std::string& tokenHash, Time now);
    // In one commit: the invitation is used up and the account made. None, and the invitation
    // stays, when the name is taken or the invitation isn't valid.
    Id CreateInvitedAccount(const std::string& tokenHash, const std::string& name,
                            const std::string& passwordHash, Time now);

    // Sessions in the browser.
    void CreateSession(const std::string& tokenHash, const Session& session);
    std::optional<Session> FindSession(const std::string& tokenHash, Time now);
    void DeleteSession(const std::string& tokenHash);

    // Surveys. A new one is not yet live, its address is given by the caller. None when the account
    // has a survey of that name, compared exactly. Throws OutOfNumbers when there is no id left
    // that the program could keep.
    Id CreateSurvey(Id account, const std::string& name, const std::string& address, Time now);
    std::optional<Survey> FindSurvey(Id survey);
    // Neither of these two gives a survey that is deleted.
    std::optional<Survey> FindSurvey(Id account, const std::string& name);
    std::optional<Survey> FindSurveyByAddress(const std::string& address);
    // By id. Deleted ones come as well, marked.
    std::vector<Survey> ListSurveys(Id account);
    // Public, live and taking answers now, by name.
    std::vector<Survey> ListPublicSurveys(Time now, int most = 200);
    // Stores name, isPublic, isOpen, onOnePage, opens and closes as given. False when the survey
    // isn't there, or another one of the account has the name.
    bool ChangeSurvey(const Survey& survey);
    // It can be had back until its time is over, with all its answers.
    bool DeleteSurvey(Id survey, Time now);
    bool UndeleteSurvey(Id survey);

    // Documents. What was uploaded waits until it is published, one per survey: a later one takes
    // its place.
    void KeepUpload(Id survey, const std::string& document, Time now);
    std::optional<std::string> FindUpload(Id survey);
    // In one commit: the document becomes the survey's next version, which is live then, the upload
    // is gone, and the survey is public or not. The same document as the live version's is no new
    // version. Gives the number of the live version, 0 when there is no such survey.
    int Publish(Id survey, const std::string& document, bool isPublic, Time now);
    std::optional<std::string> FindVersion(Id survey, int version);

    // Drafts, by the hash of their token. Storing one again overwrites it.
    void KeepDraft(const std::string& tokenHash, const Draft& draft);
    std::optional<Draft> FindDraft(const std::string& tokenHash);
    void DeleteDraft(const std::string& tokenHash);

    // Answers. tokenHash tells one filled-in form from another; its draft is deleted along with it.
    Submitted Submit(Id survey, int version, const std::string& tokenHash,
                     const std::string& answers, Time now);
    // Those that wait to be fetched, in the order they came.
    std::unique_ptr<Submissions> WaitingResults(Id survey);
    // All, also those that were dropped and are still there.
    std::unique_ptr<Submissions> AllResults(Id survey);
    // Drops those that wait up to this one; what came later stays. Gives how many.
    std::int64_t DropResults(Id survey, Id last, Time now);
    // Those that were dropped wait again; since as in DropResults' now, 0 for all.
    std::int64_t RestoreResults(Id survey, Time since);
    SurveyCounts CountResults(Id survey);

    // Deletes for good what is older than the retention. Gives how many rows went.
    std::int64_t Purge(const Retention& retention, Time now);

    // Copies the database as it is at this moment into a new file, while it is in use. Throws when
    // the file exists.
    void Backup(const std::string& file);
    // What is wrong with the database, a line each; empty when all is well.
    std::vector<std::string> Check();

  private:
    std::unique_ptr<Database> database_;
    std::unique_ptr<Writer> writer_;
};

} // namespace pollarix::server
