#include "server/app/DataDirectory.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "server/app/Log.h"
#include "server/store/Records.h"

namespace pollarix::server {

std::string MakeDataDirectory(const std::string& wanted) {
    namespace fs = std::filesystem;
    std::string directory = wanted;
    if (directory.empty()) {
        const char* shared = std::getenv("XDG_DATA_HOME");
        const char* home = std::getenv("HOME");
        if (shared && *shared == '/')
            directory = std::string(shared) + "/pollarix-server";
        else if (home && *home == '/')
            directory = std::string(home) + "/.local/share/pollarix-server";
        else
            throw StoreFailure("There is no home directory; please name one with --data.");
    }
    std::error_code failed;
    if (fs::create_directories(directory, failed))
        fs::permissions(directory, fs::perms::owner_all, failed);
    if (failed)
        throw StoreFailure("Can't make the directory " + directory + ": " + failed.message());
    return directory;
}

DataLock::DataLock(const std::string& directory)
    : file_(open((directory + "/lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {
    if (file_ < 0)
        throw StoreFailure("Can't write into the directory " + directory);
    if (flock(file_, LOCK_EX | LOCK_NB) != 0) {
        close(file_);
        throw StoreFailure("A server is running on the directory " + directory);
    }
}

void DataLock::Tell(const std::string& root) const {
    // Nothing is lost when this fails: it is told that the root isn't known.
    if (ftruncate(file_, 0) != 0 ||
        pwrite(file_, root.data(), root.size(), 0) != static_cast<ssize_t>(root.size()))
        Log("the server's address could not be left in its data directory");
}

std::string RunningServer(const std::string& directory) {
    const int file = open((directory + "/lock").c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return {};
    std::string root;
    if (flock(file, LOCK_SH | LOCK_NB) != 0) { // somebody has it
        std::array<char, 1024> text{};
        const ssize_t count = pread(file, text.data(), text.size(), 0);
        root.assign(text.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
    close(file);
    return root;
}

DataLock::~DataLock() {
    close(file_);
}

} // namespace pollarix::server
