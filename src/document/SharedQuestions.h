// The questions of the survey as values that states of the design share: one is made anew only
// after it was changed, so that looking at a long survey costs no copy of it. Who changes a
// question in place says so (Touch); objects that were exchanged for others are seen by themselves.
#pragma once

#include <memory>
#include <vector>

#include "document/SurveySnapshot.h"

namespace pollarix {

class clsQ;

// A question in a state. Its number stands beside the value, whose own is empty: one deletion
// changes the numbers of all that follow.
struct SharedQuestion {
    std::shared_ptr<const SurveySnapshot::Question> value;
    QString number;
    bool operator==(const SharedQuestion& other) const {
        return number == other.number && (value == other.value || *value == *other.value);
    }
};
using SharedQuestions = std::vector<SharedQuestion>;

class QuestionSharer {
  public:
    // The question is about to be changed in place.
    void Touch(const clsQ& q);

    // The questions of the survey, in its order.
    SharedQuestions Take(const clsSurvey& survey);

    // Makes the survey what it was, under the same keys and ids. The objects of questions that are
    // as they were stay; the others are new ones.
    void PutInto(clsSurvey& survey, const SharedQuestions& questions);

    // Bytes of the values that were given up since the last call, as if they shared nothing with
    // those in their place: about what a state takes that still has them.
    std::int64_t TakeReleased();

  private:
    struct Entry {
        std::shared_ptr<clsQ> object; // kept alive, so that no other comes to lie at its address
        std::shared_ptr<const SurveySnapshot::Question> value; // none after a change
    };
    void Release(Entry& entry);

    std::vector<Entry> entries_; // of the survey as it was last taken
    std::int64_t released_ = 0;
};

} // namespace pollarix
