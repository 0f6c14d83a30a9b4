#include "server/store/Connection.h"

namespace pollarix::server {

namespace {

constexpr int PatienceMs = 10000; // with the commands beside the running server

} // namespace

void ThrowStoreFailure(const SQLite::Exception& failure) {
    if (failure.getErrorCode() == SQLITE_FULL)
        throw StoreFull("There is no room left for the database.");
    throw StoreFailure(std::string("The database says: ") + failure.what() + " (" +
                       std::to_string(failure.getExtendedErrorCode()) + ')');
}

Connection::Connection(const std::string& path, Use use)
    : database_(path, use == Use::Read ? SQLite::OPEN_READWRITE
                                       : SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE) {
    database_.setBusyTimeout(PatienceMs);
    // The file may have been restored from anywhere: nothing in it is run.
    sqlite3_db_config(database_.getHandle(), SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(database_.getHandle(), SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(database_.getHandle(), SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
    database_.exec("PRAGMA foreign_keys = ON");
    database_.exec("PRAGMA cache_size = -1024");
    if (use == Use::Read) {
        database_.exec("PRAGMA query_only = ON");
        return;
    }
    database_.exec("PRAGMA journal_mode = WAL");
    database_.exec("PRAGMA synchronous = FULL");
    // Moving what it holds into the database holds up who waits for a commit: seldom is better.
    database_.exec("PRAGMA wal_autocheckpoint = 4000");
    // A WAL that grew under load is cut back at the next chance.
    database_.exec("PRAGMA journal_size_limit = 16777216");
}

SQLite::Statement& Connection::Prepared(const char* sql) {
    std::unique_ptr<SQLite::Statement>& statement = statements_[sql];
    if (!statement)
        statement = std::make_unique<SQLite::Statement>(database_, sql);
    return *statement;
}

} // namespace pollarix::server
