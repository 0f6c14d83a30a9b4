// The published versions of surveys, read once and kept in memory as long as there is room. A
// version never changes, so none is ever out of date. May be asked by many threads at once.
#pragma once

#include <cstddef>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

#include "exchange/Questionnaire.h"
#include "server/store/Store.h"

namespace pollarix::server {

class Questionnaires {
  public:
    // room: bytes of documents whose questions are kept.
    explicit Questionnaires(Store& store, std::size_t room = 16U << 20U)
        : store_(store), room_(room) {}

    // Null when there is no such version. Throws StoreFailure, also for a document that was
    // published and can't be read any more.
    std::shared_ptr<const exchange::Questionnaire> Find(Id survey, int version);

    // The same as long as it is in memory and small; else null. Never waits.
    std::shared_ptr<const exchange::Questionnaire> Known(Id survey, int version);

    // What a respondent answered, with the questions as they were. Throws StoreFailure also when
    // the two don't fit: leaving answers out in silence would lose them.
    struct Answered {
        std::shared_ptr<const exchange::Questionnaire> questionnaire;
        exchange::Answers answers;
    };
    Answered Read(Id survey, const Submission& submission);

  private:
    using Key = std::pair<Id, int>;
    struct Kept {
        std::shared_ptr<const exchange::Questionnaire> questionnaire;
        std::size_t size;
        std::list<Key>::iterator place;
    };
    // Null when it isn't kept, or larger than that.
    std::shared_ptr<const exchange::Questionnaire> FindKept(const Key& key, std::size_t most);
    void Keep(const Key& key, std::size_t size,
              const std::shared_ptr<const exchange::Questionnaire>& questionnaire);

    Store& store_;
    std::size_t room_;
    std::mutex mutex_;
    std::map<Key, Kept> kept_;
    std::list<Key> order_; // the one asked for last comes first
    std::size_t used_ = 0;
};

} // namespace pollarix::server
