#include "server/store/Database.h"

#include <ctime>
#include <filesystem>

#include <fcntl.h>
#include <unistd.h>

#include <SQLiteCpp/Backup.h>

#include "server/store/Schema.h"
#include "server/store/Store.h"

namespace pollarix::server {

namespace {

constexpr int MostReaders = 4;
constexpr auto Restoring = ".restoring";

// The file itself and its place in the directory are on the disk.
void Settle(const std::string& file) {
    const std::filesystem::path directory = std::filesystem::path(file).parent_path();
    for (const std::string& path : {file, directory.empty() ? "." : directory.string()}) {
        const int opened = open(path.c_str(), O_RDONLY | O_CLOEXEC);
        const bool isSettled = opened >= 0 && fsync(opened) == 0;
        if (opened >= 0)
            close(opened);
        if (!isSettled)
            throw StoreFailure("Can't write " + path);
    }
}

void CopyWhole(Connection& from, const std::string& file) {
    namespace fs = std::filesystem;
    if (fs::exists(file))
        throw StoreFailure("There is a file of that name: " + file);
    const std::string partial = file + ".partial";
    std::error_code ignored;
    fs::remove(partial, ignored);
    try {
        SQLite::Statement copy(from.Raw(), "VACUUM INTO ?");
        copy.bind(1, partial);
        copy.exec();
        Settle(partial);
        fs::rename(partial, file);
        Settle(file);
    } catch (const SQLite::Exception& failure) {
        fs::remove(partial, ignored);
        ThrowStoreFailure(failure);
    } catch (const fs::filesystem_error& failure) {
        fs::remove(partial, ignored);
        throw StoreFailure(failure.what());
    }
}

std::vector<std::string> Faults(SQLite::Database& database) {
    std::vector<std::string> faults;
    SQLite::Statement integrity(database, "PRAGMA integrity_check");
    while (integrity.executeStep())
        if (const std::string line = integrity.getColumn(0).getString(); line != "ok")
            faults.push_back(line);
    SQLite::Statement keys(database, "PRAGMA foreign_key_check");
    while (keys.executeStep())
        faults.push_back("A row of " + keys.getColumn(0).getString() + " has lost its " +
                         keys.getColumn(2).getString());
    return faults;
}

} // namespace

std::string DatabasePath(const std::string& directory) {
    return directory + "/pollarix-server.db";
}

Database::Database(const std::string& directory, Opening opening) : path_(DatabasePath(directory)) {
    if (std::filesystem::exists(path_ + Restoring) && !std::filesystem::exists(path_))
        throw StoreFailure("Restoring a backup was cut short. Please restore it again.");
    try {
        Connection first(path_, Connection::Use::Write);
        const int schema = SchemaOf(first.Raw());
        if (schema > 0 && schema < CurrentSchema()) {
            // An older server may be running on it.
            if (opening == Opening::Use)
                throw StoreFailure("The database is of an older version of this server. Please "
                                   "start this version's server once: it brings it up to date.");
            CopyWhole(first, path_ + ".schema-" + std::to_string(schema) + '-' +
                                 std::to_string(std::time(nullptr)));
        }
        BringUpToDate(first.Raw());
    } catch (const SQLite::Exception& failure) {
        if (failure.getErrorCode() == SQLITE_NOTADB)
            throw StoreFailure("This is no database: " + path_);
        ThrowStoreFailure(failure);
    }
}

Database::Borrowed::Borrowed(Database& from) : lender(from) {
    std::unique_lock lock(lender.mutex_);
    lender.returned_.wait(lock,
                          [&] { return !lender.free_.empty() || lender.made_ < MostReaders; });
    if (!lender.free_.empty()) {
        connection = std::move(lender.free_.back());
        lender.free_.pop_back();
        return;
    }
    try {
        connection = std::make_unique<Connection>(lender.path_, Connection::Use::Read);
    } catch (const SQLite::Exception& failure) {
        ThrowStoreFailure(failure);
    }
    ++lender.made_;
}

Database::Borrowed::~Borrowed() {
    {
        const std::lock_guard lock(lender.mutex_);
        lender.free_.push_back(std::move(connection));
    }
    lender.returned_.notify_one();
}

namespace {

// One that is there, and this server's.
std::unique_ptr<Connection> OpenKnown(const std::string& directory, Connection::Use use) {
    const std::string path = DatabasePath(directory);
    if (!std::filesystem::exists(path))
        throw StoreFailure("There is no database in " + directory);
    auto connection = std::make_unique<Connection>(path, use);
    if (SchemaOf(connection->Raw()) == 0)
        throw StoreFailure("There is nothing in the database " + path);
    return connection;
}

} // namespace

void BackupDatabase(const std::string& directory, const std::string& file) {
    try {
        CopyWhole(*OpenKnown(directory, Connection::Use::Write), file);
    } catch (const SQLite::Exception& failure) {
        ThrowStoreFailure(failure);
    }
}

std::vector<std::string> CheckDatabase(const std::string& directory) {
    try {
        return Faults(OpenKnown(directory, Connection::Use::Read)->Raw());
    } catch (const SQLite::Exception& failure) {
        ThrowStoreFailure(failure);
    }
}

std::string RestoreDatabase(const std::string& directory, const std::string& file) {
    namespace fs = std::filesystem;
    const std::string path = DatabasePath(directory);
    const std::string incoming = path + Restoring;
    try {
        std::error_code ignored;
        fs::remove(incoming, ignored);
        fs::remove(incoming + "-journal", ignored);
        {
            SQLite::Database source(file, SQLite::OPEN_READONLY);
            if (SchemaOf(source) == 0)
                throw StoreFailure("There is nothing in " + file);
            if (const std::vector<std::string> faults = Faults(source); !faults.empty())
                throw StoreFailure(file + " is damaged: " + faults.front());
            // With what stands in its log, if it has one beside it.
            SQLite::Database target(incoming, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
            SQLite::Backup(target, source).executeStep(-1);
        }
        for (const char* part : {"-wal", "-shm", "-journal"})
            fs::remove(incoming + part, ignored);
        Settle(incoming);
        std::string kept;
        // Its log goes along with a database: what stands in there is part of it.
        if (fs::exists(path) || fs::exists(path + "-wal"))
            kept = path + ".before-restore-" + std::to_string(std::time(nullptr));
        for (const char* part : {"", "-wal", "-shm"})
            if (fs::exists(path + part))
                fs::rename(path + part, kept + part);
        fs::rename(incoming, path);
        Settle(path);
        return kept;
    } catch (const SQLite::Exception& failure) {
        if (failure.getErrorCode() == SQLITE_NOTADB || failure.getErrorCode() == SQLITE_CANTOPEN)
            throw StoreFailure("This is no database that can be read: " + file);
        ThrowStoreFailure(failure);
    } catch (const fs::filesystem_error& failure) {
        throw StoreFailure(failure.what());
    }
}

} // namespace pollarix::server
