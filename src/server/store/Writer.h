// The one thread that changes the database. What waits at the same time goes into one transaction,
// since a commit costs a wait for the disk, however much is in it.
#pragma once

#include <condition_variable>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "server/store/Connection.h"

namespace pollarix::server {

class Writer {
  public:
    explicit Writer(const std::string& path);
    ~Writer(); // after everything that waits is committed
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    // Runs the change in the writer's thread and comes back after the commit that holds it. What
    // the change throws comes out here, and then nothing of it is stored. A change may be run again
    // after a transaction that failed, so it only assigns to what it gives back.
    void Run(const std::function<void(Connection&)>& change);

    std::uint64_t Commits() const;

  private:
    struct Waiting {
        const std::function<void(Connection&)>* change;
        std::exception_ptr failure{};
        bool isDone = false;
        std::condition_variable done{};
    };
    void Work();
    // False when the transaction could not be had; then none of them is stored.
    bool CommitTogether(const std::vector<Waiting*>& batch);
    void CommitAlone(Waiting& waiting);
    void RollBack();

    Connection connection_;
    mutable std::mutex mutex_;
    std::condition_variable wake_;
    std::vector<Waiting*> queue_;
    std::uint64_t commits_ = 0;
    bool isEnding_ = false;
    std::thread thread_; // last: it uses all of the above
};

} // namespace pollarix::server
