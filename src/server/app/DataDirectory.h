// Where the server keeps its database, and who may use it just now.
#pragma once

#include <string>

namespace pollarix::server {

// The directory, made if it isn't there, for nobody else to read. "" gives one in the user's home.
// Throws StoreFailure.
std::string MakeDataDirectory(const std::string& wanted);

// Held by the one who serves from a directory, or restores into it. Ends with the process, however
// that ends.
class DataLock {
  public:
    // Throws StoreFailure when somebody else has it.
    explicit DataLock(const std::string& directory);
    ~DataLock();
    DataLock(const DataLock&) = delete;
    DataLock& operator=(const DataLock&) = delete;

  private:
    int file_;
};

} // namespace pollarix::server
