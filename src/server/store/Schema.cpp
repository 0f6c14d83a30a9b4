#include "server/store/Schema.h"

#include <iterator>
#include <string>

#include "server/store/Records.h"

namespace pollarix::server {

namespace {

// A step is never changed once it was delivered; what changes is a new step behind it.
constexpr const char* Steps[] = {
    R"sql(
CREATE TABLE account (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    name TEXT NOT NULL UNIQUE COLLATE NOCASE,
    password_hash TEXT NOT NULL,
    is_disabled INTEGER NOT NULL DEFAULT 0,
    created INTEGER NOT NULL
) STRICT;

CREATE TABLE invitation (
    token_hash BLOB PRIMARY KEY,
    expires INTEGER NOT NULL
) STRICT, WITHOUT ROWID;

CREATE TABLE session (
    token_hash BLOB PRIMARY KEY,
    account INTEGER NOT NULL REFERENCES account (id) ON DELETE CASCADE,
    form_secret TEXT NOT NULL,
    expires INTEGER NOT NULL
) STRICT, WITHOUT ROWID;
CREATE INDEX session_account ON session (account);

CREATE TABLE survey (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    account INTEGER NOT NULL REFERENCES account (id),
    name TEXT NOT NULL,
    address TEXT NOT NULL UNIQUE,
    is_public INTEGER NOT NULL DEFAULT 0,
    is_open INTEGER NOT NULL DEFAULT 1,
    on_one_page INTEGER NOT NULL DEFAULT 0,
    opens INTEGER NOT NULL DEFAULT 0,
    closes INTEGER NOT NULL DEFAULT 0,
    version INTEGER NOT NULL DEFAULT 0,
    created INTEGER NOT NULL,
    deleted INTEGER NOT NULL DEFAULT 0
) STRICT;
CREATE UNIQUE INDEX survey_name ON survey (account, name) WHERE deleted = 0;
CREATE INDEX survey_public ON survey (name) WHERE is_public = 1 AND deleted = 0;

CREATE TABLE upload (
    survey INTEGER PRIMARY KEY REFERENCES survey (id) ON DELETE CASCADE,
    document BLOB NOT NULL,
    received INTEGER NOT NULL
) STRICT;

CREATE TABLE version (
    survey INTEGER NOT NULL REFERENCES survey (id) ON DELETE CASCADE,
    number INTEGER NOT NULL,
    document BLOB NOT NULL,
    published INTEGER NOT NULL,
    PRIMARY KEY (survey, number)
) STRICT;

CREATE TABLE draft (
    token_hash BLOB PRIMARY KEY,
    survey INTEGER NOT NULL REFERENCES survey (id) ON DELETE CASCADE,
    version INTEGER NOT NULL,
    answers BLOB NOT NULL,
    updated INTEGER NOT NULL
) STRICT, WITHOUT ROWID;
CREATE INDEX draft_survey ON draft (survey);
CREATE INDEX draft_updated ON draft (updated);

-- digest is that of the answers: one form sent twice is one row, and what differs is another one.
CREATE TABLE submission (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    survey INTEGER NOT NULL REFERENCES survey (id) ON DELETE CASCADE,
    version INTEGER NOT NULL,
    token_hash BLOB NOT NULL,
    digest BLOB NOT NULL,
    answers BLOB NOT NULL,
    received INTEGER NOT NULL,
    is_conflict INTEGER NOT NULL DEFAULT 0,
    dropped INTEGER NOT NULL DEFAULT 0
) STRICT;
CREATE UNIQUE INDEX submission_token ON submission (token_hash, survey, digest);
CREATE INDEX submission_survey ON submission (survey, id, dropped, is_conflict);
)sql",
    R"sql(
-- Counts what ends all logins of an account: another password, and being disabled.
ALTER TABLE account ADD COLUMN stamp INTEGER NOT NULL DEFAULT 0;
-- How often results of the survey were restored, and the count at which each one was: what came
-- back after a fetch had begun was not handed out by it.
ALTER TABLE survey ADD COLUMN restores INTEGER NOT NULL DEFAULT 0;
ALTER TABLE submission ADD COLUMN restored INTEGER NOT NULL DEFAULT 0;
-- Letters that the program can't show, and some of them by name.
ALTER TABLE submission ADD COLUMN lost INTEGER NOT NULL DEFAULT 0;
ALTER TABLE submission ADD COLUMN lost_letters TEXT NOT NULL DEFAULT '';
CREATE INDEX submission_lost ON submission (survey, dropped) WHERE lost > 0;
)sql",
};

int Pragma(SQLite::Database& database, const char* name) {
    return database.execAndGet(std::string("PRAGMA ") + name).getInt();
}

} // namespace

int CurrentSchema() {
    return static_cast<int>(std::size(Steps));
}

int SchemaOf(SQLite::Database& database) {
    const int schema = Pragma(database, "user_version");
    const int mark = Pragma(database, "application_id");
    const bool isEmpty = database.execAndGet("SELECT count(*) FROM sqlite_schema").getInt() == 0;
    if (isEmpty && schema == 0)
        return 0;
    if (mark != ApplicationMark)
        throw StoreFailure("The database was not made by this server.");
    if (schema > CurrentSchema())
        throw StoreFailure("The database was made by a later version of this server.");
    return schema;
}

void BringUpToDate(SQLite::Database& database) {
    const int schema = SchemaOf(database);
    if (schema == CurrentSchema())
        return;
    SQLite::Transaction transaction(database, SQLite::TransactionBehavior::IMMEDIATE);
    for (int step = schema; step < CurrentSchema(); ++step)
        database.exec(Steps[step]);
    database.exec("PRAGMA application_id = " + std::to_string(ApplicationMark));
    database.exec("PRAGMA user_version = " + std::to_string(CurrentSchema()));
    transaction.commit();
}

} // namespace pollarix::server
