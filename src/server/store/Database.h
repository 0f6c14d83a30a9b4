// The file of the database, and the connections that read from it.
#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "server/store/Connection.h"

namespace pollarix::server {

enum class Opening;

class Database {
  public:
    Database(const std::string& directory, Opening opening);

    const std::string& Path() const { return path_; }

    // Calls read with a connection, waiting for one if need be; gives what it gives.
    template <typename Read> auto Reading(Read read) {
        const Borrowed borrowed(*this);
        try {
            return read(*borrowed.connection);
        } catch (const SQLite::Exception& failure) {
            ThrowStoreFailure(failure);
        }
    }

  private:
    struct Borrowed {
        explicit Borrowed(Database& lender);
        ~Borrowed();
        Borrowed(const Borrowed&) = delete;
        Borrowed& operator=(const Borrowed&) = delete;
        Database& lender;
        std::unique_ptr<Connection> connection;
    };

    std::string path_;
    std::mutex mutex_;
    std::condition_variable returned_;
    std::vector<std::unique_ptr<Connection>> free_;
    int made_ = 0;
};

// The database's file in a data directory.
std::string DatabasePath(const std::string& directory);

// These three take a database of any version of the server.

// Copies the directory's database as it is at this moment into a new file, while it is in use.
// Throws StoreFailure, also when the file exists.
void BackupDatabase(const std::string& directory, const std::string& file);
// What is wrong with the directory's database, a line each; empty when all is well. Throws
// StoreFailure when it can't be read.
std::vector<std::string> CheckDatabase(const std::string& directory);
// Puts the file in the place of the directory's database, after looking whether it is one and
// whole; what was there is kept beside it under the name that is given back ("" when there was
// nothing). No server may be running. Throws StoreFailure.
std::string RestoreDatabase(const std::string& directory, const std::string& file);

} // namespace pollarix::server
