// Threads for work that waits: commits, passwords, long reads.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace pollarix::server {

class WorkPool {
  public:
    // So many threads, and so many that may wait for one.
    WorkPool(int threads, std::size_t mostWaiting);
    ~WorkPool(); // after all that waits is done
    WorkPool(const WorkPool&) = delete;
    WorkPool& operator=(const WorkPool&) = delete;

    // False when too many wait already; then it won't be done. Work doesn't throw.
    bool Post(std::function<void()> work);

  private:
    void Run();

    const std::size_t mostWaiting_;
    std::mutex mutex_;
    std::condition_variable wake_;
    std::deque<std::function<void()>> waiting_;
    bool isEnding_ = false;
    std::vector<std::thread> threads_;
};

} // namespace pollarix::server
