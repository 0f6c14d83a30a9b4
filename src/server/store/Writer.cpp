#include "server/store/Writer.h"

namespace pollarix::server {

Writer::Writer(const std::string& path)
    : connection_(path, Connection::Use::Write), thread_([this] { Work(); }) {}

Writer::~Writer() {
    {
        const std::lock_guard lock(mutex_);
        isEnding_ = true;
    }
    wake_.notify_one();
    thread_.join();
}

void Writer::Run(const std::function<void(Connection&)>& change) {
    Waiting waiting{&change};
    std::unique_lock lock(mutex_);
    queue_.push_back(&waiting);
    wake_.notify_one();
    waiting.done.wait(lock, [&] { return waiting.isDone; });
    if (waiting.failure)
        std::rethrow_exception(waiting.failure);
}

std::uint64_t Writer::Commits() const {
    const std::lock_guard lock(mutex_);
    return commits_;
}

void Writer::Work() {
    std::unique_lock lock(mutex_);
    for (;;) {
        wake_.wait(lock, [this] { return isEnding_ || !queue_.empty(); });
        if (queue_.empty())
            return;
        std::vector<Waiting*> batch;
        batch.swap(queue_);
        lock.unlock();
        // One that needs more room than there is must not take the others down with it.
        if (!CommitTogether(batch))
            for (Waiting* waiting : batch)
                CommitAlone(*waiting);
        lock.lock();
        ++commits_;
        // A waiting one is gone as soon as it knows that it is done.
        for (Waiting* waiting : batch) {
            waiting->isDone = true;
            waiting->done.notify_one();
        }
    }
}

bool Writer::CommitTogether(const std::vector<Waiting*>& batch) {
    try {
        connection_.Do("BEGIN IMMEDIATE");
        for (Waiting* waiting : batch) {
            waiting->failure = nullptr;
            connection_.Do("SAVEPOINT change");
            try {
                (*waiting->change)(connection_);
            } catch (const SQLite::Exception& failure) {
                if (HitsWholeTransaction(failure) || !connection_.InTransaction())
                    throw;
                connection_.Do("ROLLBACK TO change");
                try {
                    ThrowStoreFailure(failure);
                } catch (...) {
                    waiting->failure = std::current_exception();
                }
            } catch (const std::exception&) {
                connection_.Do("ROLLBACK TO change");
                waiting->failure = std::current_exception();
            }
            connection_.Do("RELEASE change");
        }
        connection_.Do("COMMIT");
        return true;
    } catch (const SQLite::Exception&) {
        RollBack();
        return false;
    }
}

void Writer::CommitAlone(Waiting& waiting) {
    waiting.failure = nullptr;
    try {
        try {
            connection_.Do("BEGIN IMMEDIATE");
            (*waiting.change)(connection_);
            connection_.Do("COMMIT");
        } catch (const SQLite::Exception& failure) {
            RollBack();
            ThrowStoreFailure(failure);
        }
    } catch (const std::exception&) {
        RollBack();
        waiting.failure = std::current_exception();
    }
}

void Writer::RollBack() {
    if (connection_.InTransaction())
        connection_.Raw().tryExec("ROLLBACK");
}

} // namespace pollarix::server
