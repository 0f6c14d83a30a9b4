// The store's answers: taken, handed out, dropped and restored.
#include <deque>

#include <sodium.h>

#include "server/store/Database.h"
#include "server/store/Store.h"
#include "server/store/Writer.h"

namespace pollarix::server {

namespace {

constexpr auto WaitingPage = "SELECT id, version, answers, received, is_conflict FROM submission "
                             "WHERE survey = ? AND id > ? AND id <= ? AND dropped = 0 "
                             "ORDER BY id LIMIT 200";
constexpr auto AnyPage = "SELECT id, version, answers, received, is_conflict FROM submission "
                         "WHERE survey = ? AND id > ? AND id <= ? ORDER BY id LIMIT 200";

// Holds no connection between two pages, so that a slow client holds up nobody.
class PagedSubmissions : public Submissions {
  public:
    PagedSubmissions(Database& database, Id survey, const char* page)
        : database_(database), survey_(survey), page_(page) {
        last_ = database_.Reading([&](Connection& connection) {
            Query row = connection.Ask("SELECT max(id) FROM submission WHERE survey = ?", survey);
            return row.Next() ? row.Number(0) : None;
        });
    }

    std::optional<Submission> Next() override {
        if (read_.empty() && after_ < last_)
            Read();
        if (read_.empty())
            return std::nullopt;
        Submission next = std::move(read_.front());
        read_.pop_front();
        return next;
    }

  private:
    void Read() {
        database_.Reading([&](Connection& connection) {
            for (Query row = connection.Ask(page_, survey_, after_, last_); row.Next();)
                read_.push_back({row.Number(0), static_cast<int>(row.Number(1)), row.Text(2),
                                 row.Number(3), row.Flag(4)});
        });
        after_ = read_.empty() ? last_ : read_.back().id;
    }

    Database& database_;
    Id survey_;
    const char* page_;
    Id after_ = None;
    Id last_ = None;
    std::deque<Submission> read_;
};

std::string Digest(const std::string& bytes) {
    std::string digest(crypto_generichash_BYTES_MIN, '\0');
    crypto_generichash(reinterpret_cast<unsigned char*>(digest.data()), digest.size(),
                       reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size(), nullptr,
                       0);
    return digest;
}

bool TakesAnswers(Connection& database, Id survey, Time now) {
    Query row = database.Ask("SELECT version, is_open, deleted, opens, closes FROM survey "
                             "WHERE id = ?",
                             survey);
    if (!row.Next())
        return false;
    Survey found;
    found.version = static_cast<int>(row.Number(0));
    found.isOpen = row.Flag(1);
    found.deleted = row.Number(2);
    found.opens = row.Number(3);
    found.closes = row.Number(4);
    return found.TakesAnswers(now);
}

} // namespace

Submitted Store::Submit(Id survey, int version, const std::string& tokenHash,
                        const std::string& answers, Time now) {
    const std::string digest = Digest(answers);
    Submitted result = Submitted::Closed;
    writer_->Run([&](Connection& database) {
        bool isConflict = false;
        for (Query row =
                 database.Ask("SELECT digest FROM submission WHERE token_hash = ? AND survey = ?",
                              Bytes{tokenHash}, survey);
             row.Next();) {
            // Also when the survey has been closed since: they are there.
            if (row.Text(0) == digest) {
                result = Submitted::AlreadyStored;
                return;
            }
            isConflict = true;
        }
        result = Submitted::Closed;
        if (!TakesAnswers(database, survey, now))
            return;
        database
            .Ask("INSERT INTO submission (survey, version, token_hash, digest, answers, received, "
                 "is_conflict) VALUES (?, ?, ?, ?, ?, ?, ?)",
                 survey, version, Bytes{tokenHash}, Bytes{digest}, Bytes{answers}, now, isConflict)
            .Run();
        database.Ask("DELETE FROM draft WHERE token_hash = ?", Bytes{tokenHash}).Run();
        result = isConflict ? Submitted::StoredAsConflict : Submitted::Stored;
    });
    return result;
}

std::unique_ptr<Submissions> Store::WaitingResults(Id survey) {
    return std::make_unique<PagedSubmissions>(*database_, survey, WaitingPage);
}

std::unique_ptr<Submissions> Store::AllResults(Id survey) {
    return std::make_unique<PagedSubmissions>(*database_, survey, AnyPage);
}

std::int64_t Store::DropResults(Id survey, Id last, Time now) {
    std::int64_t dropped = 0;
    writer_->Run([&](Connection& database) {
        dropped = database
                      .Ask("UPDATE submission SET dropped = ? "
                           "WHERE survey = ? AND id <= ? AND dropped = 0",
                           now, survey, last)
                      .Run();
    });
    return dropped;
}

std::int64_t Store::RestoreResults(Id survey, Time since) {
    std::int64_t restored = 0;
    writer_->Run([&](Connection& database) {
        restored = database
                       .Ask("UPDATE submission SET dropped = 0 "
                            "WHERE survey = ? AND dropped > 0 AND dropped >= ?",
                            survey, since)
                       .Run();
    });
    return restored;
}

SurveyCounts Store::CountResults(Id survey) {
    return database_->Reading([&](Connection& database) {
        SurveyCounts counts;
        Query row = database.Ask("SELECT count(*) FILTER (WHERE dropped = 0), "
                                 "count(*) FILTER (WHERE dropped > 0), "
                                 "count(*) FILTER (WHERE is_conflict) FROM submission "
                                 "WHERE survey = ?",
                                 survey);
        if (row.Next())
            counts = {row.Number(0), row.Number(1), row.Number(2), 0};
        Query last = database.Ask(
            "SELECT received FROM submission WHERE survey = ? ORDER BY id DESC LIMIT 1", survey);
        if (last.Next())
            counts.last = last.Number(0);
        return counts;
    });
}

} // namespace pollarix::server
