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

    // Leaves a line for the commands beside the server: its root.
    void Tell(const std::string& root) const;

  private:
    int file_;
};

// The root of the server that runs on the directory, as it told; "" when none does.
std::string RunningServer(const std::string& directory);

} // namespace pollarix::server
