// The store's answers: taken, handed out, dropped and restored.
#include <deque>

#include <sodium.h>

#include "server/store/Database.h"
#include "server/store/Store.h"
#include "server/store/Writer.h"

namespace pollarix::server {

namespace {

constexpr auto WaitingPage = "SELECT id, version, answers, received, is_conflict FROM submission "
                             "WHERE survey = ? AND id > ? AND id <= ? AND restored <= ? "
                             "AND dropped = 0 ORDER BY id LIMIT 200";
constexpr auto AnyPage = "SELECT id, version, answers, received, is_conflict FROM submission "
                         "WHERE survey = ? AND id > ? AND id <= ? AND restored <= ? "
                         "ORDER BY id LIMIT 200";

// Holds no connection between two pages, so that a slow client holds up nobody.
class PagedSubmissions : public Submissions {
  public:
    PagedSubmissions(Database& database, Id survey, const char* page)
        : database_(database), survey_(survey), page_(page) {
        all_ = database_.Reading([&](Connection& connection) {
            // One statement, so that both are of the same moment.
            Query row = connection.Ask("SELECT coalesce((SELECT max(id) FROM submission "
                                       "WHERE survey = ?1), 0), restores "
                                       "FROM survey WHERE id = ?1",
                                       survey);
            return row.Next() ? HandedOut{row.Number(0), row.Number(1)} : HandedOut{};
        });
    }

    std::optional<Submission> Next() override {
        if (read_.empty() && after_ < all_.last)
            Read();
        if (read_.empty())
            return std::nullopt;
        Submission next = std::move(read_.front());
        read_.pop_front();
        return next;
    }

    HandedOut All() const override { return all_; }

  private:
    void Read() {
        database_.Reading([&](Connection& connection) {
            for (Query row = connection.Ask(page_, survey_, after_, all_.last, all_.restores);
                 row.Next();)
                read_.push_back({row.Number(0), static_cast<int>(row.Number(1)), row.Text(2),
                                 row.Number(3), row.Flag(4)});
        });
        after_ = read_.empty() ? all_.last : read_.back().id;
    }

    Database& database_;
    Id survey_;
    const char* page_;
    Id after_ = None;
    HandedOut all_;
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

struct Sent {
    Id survey;
    int version;
    const std::string& tokenHash;
    const std::string& digest;
    const std::string& answers;
    Time now;
    const LostCount& lost;
};

Submitted Insert(Connection& database, const Sent& sent) {
    bool isConflict = false;
    for (Query row =
             database.Ask("SELECT digest FROM submission WHERE token_hash = ? AND survey = ?",
                          Bytes{sent.tokenHash}, sent.survey);
         row.Next();) {
        // Also when the survey has been closed since: they are there.
        if (row.Text(0) == sent.digest)
            return Submitted::AlreadyStored;
        isConflict = true;
    }
    if (!TakesAnswers(database, sent.survey, sent.now))
        return Submitted::Closed;
    // Answers to a version that is gone could never be read again.
    if (!database
             .Ask("SELECT 1 FROM version WHERE survey = ? AND number = ?", sent.survey,
                  sent.version)
             .Next())
        throw StoreFailure("The form's version of the survey is gone");
    database
        .Ask("INSERT INTO submission (survey, version, token_hash, digest, answers, received, "
             "is_conflict, lost, lost_letters) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)",
             sent.survey, sent.version, Bytes{sent.tokenHash}, Bytes{sent.digest},
             Bytes{sent.answers}, sent.now, isConflict, sent.lost.count, sent.lost.some)
        .Run();
    database.Ask("DELETE FROM draft WHERE token_hash = ?", Bytes{sent.tokenHash}).Run();
    return isConflict ? Submitted::StoredAsConflict : Submitted::Stored;
}

} // namespace

Submitted Store::Submit(Id survey, int version, const std::string& tokenHash,
                        const std::string& answers, Time now, const LostCount& lost) {
    const std::string digest = Digest(answers);
    Submitted result = Submitted::Closed;
    writer_->Run([&](Connection& database) {
        result = Insert(database, {survey, version, tokenHash, digest, answers, now, lost});
    });
    return result;
}

void Store::Submit(Id survey, int version, std::string tokenHash, std::string answers, Time now,
                   LostCount lost, SubmitDone done) {
    struct Waiting {
        std::string tokenHash;
        std::string digest;
        std::string answers;
        LostCount lost;
        SubmitDone done;
        Submitted result = Submitted::Closed;
    };
    auto waiting = std::make_shared<Waiting>();
    waiting->digest = Digest(answers);
    waiting->tokenHash = std::move(tokenHash);
    waiting->answers = std::move(answers);
    waiting->lost = std::move(lost);
    waiting->done = std::move(done);
    writer_->Post(
        [waiting, survey, version, now](Connection& database) {
            waiting->result =
                Insert(database, {survey, version, waiting->tokenHash, waiting->digest,
                                  waiting->answers, now, waiting->lost});
        },
        [waiting](const std::exception_ptr& failure) { waiting->done(waiting->result, failure); });
}

std::unique_ptr<Submissions> Store::WaitingResults(Id survey) {
    return std::make_unique<PagedSubmissions>(*database_, survey, WaitingPage);
}

std::unique_ptr<Submissions> Store::AllResults(Id survey) {
    return std::make_unique<PagedSubmissions>(*database_, survey, AnyPage);
}

std::int64_t Store::DropResults(Id survey, const HandedOut& handedOut, Time now) {
    std::int64_t dropped = 0;
    writer_->Run([&](Connection& database) {
        dropped = database
                      .Ask("UPDATE submission SET dropped = ? "
                           "WHERE survey = ? AND id <= ? AND restored <= ? AND dropped = 0",
                           now, survey, handedOut.last, handedOut.restores)
                      .Run();
    });
    return dropped;
}

std::int64_t Store::RestoreResults(Id survey, Time since) {
    std::int64_t restored = 0;
    writer_->Run([&](Connection& database) {
        database.Ask("UPDATE survey SET restores = restores + 1 WHERE id = ?", survey).Run();
        restored = database
                       .Ask("UPDATE submission SET dropped = 0, "
                            "restored = (SELECT restores FROM survey WHERE id = ?1) "
                            "WHERE survey = ?1 AND dropped > 0 AND dropped >= ?2",
                            survey, since)
                       .Run();
    });
    return restored;
}

LostCount Store::CountLost(Id survey) {
    return database_->Reading([&](Connection& database) {
        LostCount lost;
        for (Query row = database.Ask("SELECT lost, lost_letters FROM submission "
                                      "WHERE survey = ? AND dropped = 0 AND lost > 0",
                                      survey);
             row.Next();) {
            lost.count += row.Number(0);
            if (lost.some.size() < 200)
                lost.some += row.Text(1);
        }
        return lost;
    });
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
