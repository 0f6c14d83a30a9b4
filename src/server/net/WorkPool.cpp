#include "server/net/WorkPool.h"

namespace pollarix::server {

WorkPool::WorkPool(int threads, std::size_t mostWaiting) : mostWaiting_(mostWaiting) {
    for (int i = 0; i < threads; ++i)
        threads_.emplace_back([this] { Run(); });
}

WorkPool::~WorkPool() {
    {
        const std::lock_guard lock(mutex_);
        isEnding_ = true;
    }
    wake_.notify_all();
    for (std::thread& thread : threads_)
        thread.join();
}

bool WorkPool::Post(std::function<void()> work) {
    {
        const std::lock_guard lock(mutex_);
        if (waiting_.size() >= mostWaiting_)
            return false;
        waiting_.push_back(std::move(work));
    }
    wake_.notify_one();
    return true;
}

void WorkPool::Run() {
    for (;;) {
        std::function<void()> work;
        {
            std::unique_lock lock(mutex_);
            wake_.wait(lock, [this] { return isEnding_ || !waiting_.empty(); });
            if (waiting_.empty())
                return;
            work = std::move(waiting_.front());
            waiting_.pop_front();
        }
        work();
    }
}

} // namespace pollarix::server
