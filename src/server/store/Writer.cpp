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

void Writer::Post(Change change, Done done) {
    bool wasEmpty = false;
    {
        const std::lock_guard lock(mutex_);
        wasEmpty = queue_.empty();
        queue_.push_back({std::move(change), std::move(done)});
    }
    // Otherwise the writer has been woken, or looks here once its commit is done.
    if (wasEmpty)
        wake_.notify_one();
}

void Writer::Run(const Change& change) {
    std::mutex mutex;
    std::condition_variable told;
    bool isDone = false;
    std::exception_ptr failure;
    Post([&](Connection& database) { change(database); },
         [&](const std::exception_ptr& thrown) {
             const std::lock_guard lock(mutex);
             failure = thrown;
             isDone = true;
             told.notify_one(); // within the lock: all of this is gone as soon as it is seen
         });
    std::unique_lock lock(mutex);
    told.wait(lock, [&] { return isDone; });
    if (failure)
        std::rethrow_exception(failure);
}

void Writer::Work() {
    std::vector<Waiting> batch;
    std::unique_lock lock(mutex_);
    for (;;) {
        wake_.wait(lock, [this] { return isEnding_ || !queue_.empty(); });
        if (queue_.empty())
            return;
        batch.swap(queue_);
        lock.unlock();
        // One that fails, or that needs more room than there is, must not take the others down
        // with it.
        if (!CommitTogether(batch))
            for (Waiting& waiting : batch)
                CommitAlone(waiting);
        for (const Waiting& waiting : batch)
            waiting.done(waiting.failure);
        batch.clear();
        lock.lock();
    }
}

bool Writer::CommitTogether(const std::vector<Waiting>& batch) {
    try {
        connection_.Do("BEGIN IMMEDIATE");
        for (const Waiting& waiting : batch)
            waiting.change(connection_);
        connection_.Do("COMMIT");
        return true;
    } catch (const SQLite::Exception& failure) {
        RollBack();
        // What was committed before may be taking room twice.
        if (failure.getErrorCode() == SQLITE_FULL)
            connection_.Raw().tryExec("PRAGMA wal_checkpoint(PASSIVE)");
        return false;
    } catch (const std::exception&) {
        RollBack();
        return false;
    }
}

void Writer::CommitAlone(Waiting& waiting) {
    try {
        try {
            connection_.Do("BEGIN IMMEDIATE");
            waiting.change(connection_);
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
