// The one database of the server. All calls block and may come from any thread. Whatever changes
// something returns after the commit that holds it; changes that wait at the same time share one
// commit. What answers and documents say is nobody's business here: they are bytes.
//
// All calls throw StoreFull or StoreFailure, and have then changed nothing.
#pragma once

#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "server/store/Records.h"

namespace pollarix::server {

class Database;
class KnownSurveys;
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
    // What has been handed out once there is nothing behind.
    virtual HandedOut All() const = 0;
};

// What a database on the disk has to be for who opens it.
enum class Opening {
    Serve, // whatever it is, it is brought up to date, after a copy of it was put beside it
    Use    // of today; only a new one is made. A server may be running on it.
};

class Store {
  public:
    // Opens the database below the directory, or makes it.
    explicit Store(const std::string& directory, Opening opening = Opening::Serve);
    ~Store(); // after everything that waits is committed
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;

    // Accounts. A name is taken also by an account that is disabled; then None comes back.
    Id CreateAccount(const std::string& name, const std::string& passwordHash, Time now);
    std::optional<Account> FindAccount(const std::string& name);
    std::optional<Account> FindAccount(Id account);
    std::vector<Account> ListAccounts();
    // Both end all of the account's sessions and give it another stamp. False when there is no such
    // account.
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
    // has a survey of that name, compared exactly. Throws Bounded when there is no id left that the
    // program could keep.
    Id CreateSurvey(Id account, const std::string& name, const std::string& address, Time now);
    std::optional<Survey> FindSurvey(Id survey);
    // Neither of these two gives a survey that is deleted.
    std::optional<Survey> FindSurvey(Id account, const std::string& name);
    std::optional<Survey> FindSurveyByAddress(const std::string& address);
    // What FindSurveyByAddress gives, as long as that is known without a look into the database;
    // else null. Never waits.
    std::shared_ptr<const Survey> KnownSurvey(const std::string& address);
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
    // its place. Throws Bounded when its account has no room for it, also without the versions that
    // nobody needs.
    void KeepUpload(Id survey, const std::string& document, Time now,
                    const PublishBounds& bounds = {});
    std::optional<std::string> FindUpload(Id survey);
    // In one commit: the document becomes the survey's next version, which is live then, the upload
    // is gone, and the survey is public or not. The same document as the live version's is no new
    // version. Gives the number of the live version, 0 when there is no such survey. Where the
    // survey has as many versions as it may, those that nobody needs go: older ones without answers
    // and drafts. Throws Bounded when there are none of these.
    int Publish(Id survey, const std::string& document, bool isPublic, Time now,
                const PublishBounds& bounds = {});
    // Nothing also for one that went.
    std::optional<std::string> FindVersion(Id survey, int version);

    // Drafts, by the hash of their token. Storing one again overwrites it. False when the survey
    // has so many already.
    bool KeepDraft(const std::string& tokenHash, const Draft& draft, int most = 5000);
    std::optional<Draft> FindDraft(const std::string& tokenHash);
    void DeleteDraft(const std::string& tokenHash);

    // Answers. tokenHash tells one filled-in form from another; its draft is deleted along with it.
    Submitted Submit(Id survey, int version, const std::string& tokenHash,
                     const std::string& answers, Time now, const LostCount& lost = {});
    // The same without waiting: done is called behind the commit, on a thread that must not be held
    // up, with the result or what went wrong.
    using SubmitDone = std::function<void(Submitted, std::exception_ptr)>;
    void Submit(Id survey, int version, std::string tokenHash, std::string answers, Time now,
                LostCount lost, SubmitDone done);
    // Those that wait to be fetched, in the order they came.
    std::unique_ptr<Submissions> WaitingResults(Id survey);
    // All, also those that were dropped and are still there.
    std::unique_ptr<Submissions> AllResults(Id survey);
    // Drops those of them that still wait. Gives how many.
    std::int64_t DropResults(Id survey, const HandedOut& handedOut, Time now);
    // Those that were dropped wait again; since as in DropResults' now, 0 for all.
    std::int64_t RestoreResults(Id survey, Time since);
    SurveyCounts CountResults(Id survey);
    // Of those that wait.
    LostCount CountLost(Id survey);

    // Deletes for good what is older than the retention. Gives how many rows went.
    std::int64_t Purge(const Retention& retention, Time now);

  private:
    std::unique_ptr<Database> database_;
    std::unique_ptr<KnownSurveys> known_;
    std::unique_ptr<Writer> writer_;
};

} // namespace pollarix::server
