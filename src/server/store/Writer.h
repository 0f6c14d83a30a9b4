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
    // A change may be run again after a transaction that failed, so it only assigns to what it
    // gives back.
    using Change = std::function<void(Connection&)>;
    // Gets what the change threw, or null. Called on the writer's thread, so it must not wait, and
    // must not throw.
    using Done = std::function<void(const std::exception_ptr&)>;

    explicit Writer(const std::string& path);
    ~Writer(); // after everything that waits is committed
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    // Has the change run in the writer's thread, and calls done after the commit that holds it.
    // Where the change throws, nothing of it is stored.
    void Post(Change change, Done done);
    // The same, and comes back after that. What the change throws comes out here.
    void Run(const Change& change);

  private:
    struct Waiting {
        Change change;
        Done done;
        std::exception_ptr failure{};
    };
    void Work();
    // False when it failed; then none of them is stored.
    bool CommitTogether(const std::vector<Waiting>& batch);
    void CommitAlone(Waiting& waiting);
    void RollBack();

    Connection connection_;
    std::mutex mutex_;
    std::condition_variable wake_;
    std::vector<Waiting> queue_;
    bool isEnding_ = false;
    std::thread thread_; // last: it uses all of the above
};

} // namespace pollarix::server
