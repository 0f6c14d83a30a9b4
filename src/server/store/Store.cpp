#include "server/store/Store.h"

#include "server/store/Database.h"
#include "server/store/KnownSurveys.h"
#include "server/store/Writer.h"

namespace pollarix::server {

namespace {

constexpr auto AccountById =
    "SELECT id, name, password_hash, is_disabled, created, stamp FROM account WHERE id = ?";
constexpr auto AccountByName =
    "SELECT id, name, password_hash, is_disabled, created, stamp FROM account WHERE name = ?";
constexpr auto AllAccounts =
    "SELECT id, name, password_hash, is_disabled, created, stamp FROM account ORDER BY id";
constexpr auto AddAccount =
    "INSERT INTO account (name, password_hash, created) VALUES (?, ?, ?) ON CONFLICT DO NOTHING";

Account ReadAccount(const Query& row) {
    return {row.Number(0), row.Text(1), row.Text(2), row.Flag(3), row.Number(4), row.Number(5)};
}

std::optional<Account> FirstAccount(Query row) {
    return row.Next() ? std::optional(ReadAccount(row)) : std::nullopt;
}

void EndSessions(Connection& database, Id account) {
    database.Ask("DELETE FROM session WHERE account = ?", account).Run();
}

} // namespace

Store::Store(const std::string& directory, Opening opening)
    : database_(std::make_unique<Database>(directory, opening)),
      known_(std::make_unique<KnownSurveys>()),
      writer_(std::make_unique<Writer>(database_->Path())) {}

Store::~Store() = default;

Id Store::CreateAccount(const std::string& name, const std::string& passwordHash, Time now) {
    Id id = None;
    writer_->Run([&](Connection& database) {
        id =
            database.Ask(AddAccount, name, passwordHash, now).Run() == 1 ? database.LastId() : None;
    });
    return id;
}

std::optional<Account> Store::FindAccount(const std::string& name) {
    return database_->Reading(
        [&](Connection& database) { return FirstAccount(database.Ask(AccountByName, name)); });
}

std::optional<Account> Store::FindAccount(Id account) {
    return database_->Reading(
        [&](Connection& database) { return FirstAccount(database.Ask(AccountById, account)); });
}

std::vector<Account> Store::ListAccounts() {
    return database_->Reading([](Connection& database) {
        std::vector<Account> accounts;
        for (Query row = database.Ask(AllAccounts); row.Next();)
            accounts.push_back(ReadAccount(row));
        return accounts;
    });
}

bool Store::SetPasswordHash(Id account, const std::string& passwordHash) {
    bool isThere = false;
    writer_->Run([&](Connection& database) {
        isThere = database
                      .Ask("UPDATE account SET password_hash = ?, stamp = stamp + 1 WHERE id = ?",
                           passwordHash, account)
                      .Run() == 1;
        EndSessions(database, account);
    });
    return isThere;
}

bool Store::SetDisabled(Id account, bool isDisabled) {
    bool isThere = false;
    writer_->Run([&](Connection& database) {
        isThere = database
                      .Ask("UPDATE account SET is_disabled = ?, stamp = stamp + 1 WHERE id = ?",
                           isDisabled, account)
                      .Run() == 1;
        EndSessions(database, account);
    });
    return isThere;
}

void Store::CreateInvitation(const std::string& tokenHash, Time expires) {
    writer_->Run([&](Connection& database) {
        database
            .Ask("INSERT INTO invitation (token_hash, expires) VALUES (?, ?)", Bytes{tokenHash},
                 expires)
            .Run();
    });
}

bool Store::HasInvitation(const std::string& tokenHash, Time now) {
    return database_->Reading([&](Connection& database) {
        return database
            .Ask("SELECT 1 FROM invitation WHERE token_hash = ? AND expires > ?", Bytes{tokenHash},
                 now)
            .Next();
    });
}

Id Store::CreateInvitedAccount(const std::string& tokenHash, const std::string& name,
                               const std::string& passwordHash, Time now) {
    Id id = None;
    writer_->Run([&](Connection& database) {
        id = None;
        // A name that is taken must not cost the invitation.
        if (FirstAccount(database.Ask(AccountByName, name)) ||
            database.Ask("DELETE FROM invitation WHERE token_hash = ? AND expires > ?",
                         Bytes{tokenHash}, now)
                    .Run() == 0)
            return;
        database.Ask(AddAccount, name, passwordHash, now).Run();
        id = database.LastId();
    });
    return id;
}

void Store::CreateSession(const std::string& tokenHash, const Session& session) {
    writer_->Run([&](Connection& database) {
        database
            .Ask("INSERT INTO session (token_hash, account, form_secret, expires) "
                 "VALUES (?, ?, ?, ?)",
                 Bytes{tokenHash}, session.account, session.formSecret, session.expires)
            .Run();
    });
}

std::optional<Session> Store::FindSession(const std::string& tokenHash, Time now) {
    return database_->Reading([&](Connection& database) -> std::optional<Session> {
        Query row = database.Ask("SELECT account, form_secret, expires FROM session "
                                 "WHERE token_hash = ? AND expires > ?",
                                 Bytes{tokenHash}, now);
        if (!row.Next())
            return std::nullopt;
        return Session{row.Number(0), row.Text(1), row.Number(2)};
    });
}

void Store::DeleteSession(const std::string& tokenHash) {
    writer_->Run([&](Connection& database) {
        database.Ask("DELETE FROM session WHERE token_hash = ?", Bytes{tokenHash}).Run();
    });
}

std::int64_t Store::Purge(const Retention& retention, Time now) {
    std::int64_t gone = 0;
    writer_->Run([&](Connection& database) {
        gone = database.Ask("DELETE FROM session WHERE expires <= ?", now).Run();
        gone += database.Ask("DELETE FROM invitation WHERE expires <= ?", now).Run();
        gone += database.Ask("DELETE FROM draft WHERE updated <= ?", now - retention.drafts).Run();
        gone += database
                    .Ask("DELETE FROM submission WHERE dropped > 0 AND dropped <= ?",
                         now - retention.droppedResults)
                    .Run();
        gone += database
                    .Ask("DELETE FROM survey WHERE deleted > 0 AND deleted <= ?",
                         now - retention.deletedSurveys)
                    .Run();
    });
    known_->Forget();
    return gone;
}

} // namespace pollarix::server
