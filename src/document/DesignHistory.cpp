#include "document/DesignHistory.h"

#include <QHash>
#include <QMultiHash>

#include <algorithm>
#include <utility>

#include "document/Kinds.h"
#include "platform/richtext/RichText.h"

namespace pollarix {

namespace {

using Question = SurveySnapshot::Question;
using Response = SurveySnapshot::Response;

// A text may be written in another way when it is committed unchanged.
bool SameText(const QString& a, const QString& b) {
    return a == b || ReadRichText(a) == ReadRichText(b);
}

bool SameInFile(const Response& a, const Response& b) {
    return a.DatabaseID == b.DatabaseID && a.Text == b.Text &&
           a.LogicJumpToQuestionKey == b.LogicJumpToQuestionKey;
}

// The number of rows is in no file, and the scale of another kind than a matrix means nothing.
bool SameInFile(const Question& a, const Question& b) {
    return a.Key == b.Key && a.DatabaseID == b.DatabaseID && a.qType == b.qType &&
           (a.qType != kind::Matrix || a.ResponseMatrixGroupID == b.ResponseMatrixGroupID) &&
           std::equal(a.responses.begin(), a.responses.end(), b.responses.begin(),
                      b.responses.end(),
                      [](const Response& x, const Response& y) { return SameInFile(x, y); }) &&
           SameText(a.Text, b.Text);
}

bool SameInFile(const SharedQuestion& a, const SharedQuestion& b) {
    return a.number == b.number && (a.value == b.value || SameInFile(*a.value, *b.value));
}

// Whether what was read after a save can be what was written: another program may have come
// between.
bool CanBe(const SurveySnapshot& written, const SharedQuestions& saved) {
    return std::equal(written.questions.begin(), written.questions.end(), saved.begin(),
                      saved.end(), [](const Question& before, const SharedQuestion& after) {
                          return (before.DatabaseID < 1 ||
                                  before.DatabaseID == after.value->DatabaseID) &&
                                 after.value->responses.size() <= before.responses.size();
                      });
}

// From the keys and ids before a save to those after it.
class Identities {
  public:
    Identities(const SurveySnapshot& written, const SharedQuestions& saved) {
        for (std::size_t i = 0; i < written.questions.size(); ++i)
            pairs_.insert(written.questions[i].Key, {&written.questions[i], saved[i].value});
    }

    QString KeyOf(const QString& key) const {
        const auto pair = pairs_.find(key);
        return pair == pairs_.end() ? key : pair->saved->Key;
    }

    // None when the question, or a response of it, had a row that is gone. Each is followed once,
    // and shared on.
    std::shared_ptr<const Question> Follow(const std::shared_ptr<const Question>& question) {
        const auto known = followed_.constFind(question.get());
        if (known != followed_.constEnd())
            return known->after;
        auto after = std::make_shared<Question>(*question);
        const auto pair = pairs_.constFind(question->Key);
        const bool has = pair != pairs_.constEnd();
        if (has) {
            after->Key = pair->saved->Key;
            after->DatabaseID = pair->saved->DatabaseID;
        }
        const bool follows =
            has ? FollowResponses(*after, pair->written->responses, pair->saved->responses)
                : question->DatabaseID < 1 && FollowResponses(*after, {}, {});
        Followed& followed = followed_[question.get()];
        followed.before = question;
        if (follows)
            followed.after = has && *after == *pair->saved ? pair->saved : std::move(after);
        return followed.after;
    }

  private:
    struct Pair {
        const Question* written;
        std::shared_ptr<const Question> saved;
    };
    struct Followed {
        std::shared_ptr<const Question> before; // keeps its address
        std::shared_ptr<const Question> after;
    };

    bool FollowResponses(Question& question, const std::vector<Response>& written,
                         const std::vector<Response>& saved) const {
        QHash<std::int16_t, int> rows;
        QMultiHash<QString, std::int16_t> newRows; // by text, which never changes
        for (std::size_t j = saved.size(); j-- > 0;) {
            if (written[j].DatabaseID > 0)
                ++rows[saved[j].DatabaseID];
            else
                newRows.insert(saved[j].Text, saved[j].DatabaseID);
        }
        for (Response& r : question.responses) {
            if (r.DatabaseID > 0 && !rows.contains(r.DatabaseID))
                return false;
            if (const auto row = newRows.find(r.Text); r.DatabaseID < 1 && row != newRows.end()) {
                r.DatabaseID = *row;
                newRows.erase(row);
            }
            r.LogicJumpToQuestionKey = KeyOf(r.LogicJumpToQuestionKey);
        }
        return true;
    }

    QHash<QString, Pair> pairs_;
    QHash<const Question*, Followed> followed_;
};

std::int64_t BytesOf(const std::vector<NodeLabel>& nodes) {
    std::int64_t units = 0;
    for (const NodeLabel& node : nodes)
        units += node.text.size();
    return static_cast<std::int64_t>(nodes.size() * sizeof(NodeLabel)) +
           units * static_cast<std::int64_t>(sizeof(QChar));
}

} // namespace

void DesignHistory::Start(const clsSurvey& saved) {
    *this = {};
    saved_ = questions_.Take(saved);
}

void DesignHistory::Forget() {
    done_.clear();
    undone_.clear();
    bytes_ = 0;
}

DesignHistory::Packed DesignHistory::Pack(DesignState state) {
    Packed packed{std::move(state.questions), std::move(state.selectedKey), last_, state.changed};
    packed.bytes = static_cast<std::int64_t>(packed.questions.size() * sizeof(SharedQuestion)) +
                   questions_.TakeReleased();
    if (!last_ || *last_ != state.nodes) {
        last_ = packed.nodes =
            std::make_shared<const std::vector<NodeLabel>>(std::move(state.nodes));
        packed.bytes += BytesOf(*last_);
    }
    bytes_ += packed.bytes;
    return packed;
}

void DesignHistory::Keep(DesignState before) {
    for (const Packed& packed : undone_)
        bytes_ -= packed.bytes;
    undone_.clear();
    done_.push_back(Pack(std::move(before)));
    while (done_.size() > 1 && (done_.size() > MostSteps || bytes_ > MostBytes)) {
        bytes_ -= done_.front().bytes;
        done_.pop_front();
    }
}

bool DesignHistory::Drop() {
    if (done_.empty())
        return true;
    const Packed dropped = std::move(done_.back());
    done_.pop_back();
    bytes_ -= dropped.bytes;
    return dropped.changed;
}

bool DesignHistory::HoldsWhatIsSaved(const SharedQuestions& questions) const {
    return std::equal(
        questions.begin(), questions.end(), saved_.begin(), saved_.end(),
        [](const SharedQuestion& x, const SharedQuestion& y) { return SameInFile(x, y); });
}

std::optional<DesignState> DesignHistory::Step(std::deque<Packed>& from, std::deque<Packed>& to,
                                               DesignState now) {
    if (from.empty())
        return std::nullopt;
    to.push_back(Pack(std::move(now)));
    Packed packed = std::move(from.back());
    from.pop_back();
    bytes_ -= packed.bytes;
    const bool changed = packed.changed && !HoldsWhatIsSaved(packed.questions);
    return DesignState{std::move(packed.questions), std::move(packed.selectedKey), *packed.nodes,
                       changed};
}

std::optional<DesignState> DesignHistory::Undo(DesignState now) {
    return Step(done_, undone_, std::move(now));
}

std::optional<DesignState> DesignHistory::Redo(DesignState now) {
    return Step(undone_, done_, std::move(now));
}

void DesignHistory::FollowSave(const SurveySnapshot& written, const clsSurvey& saved) {
    SharedQuestions questions = questions_.Take(saved);
    if (!CanBe(written, questions)) {
        Start(saved);
        return;
    }
    Identities identities(written, questions);
    bytes_ = 0;
    for (std::deque<Packed>* const steps : {&done_, &undone_}) {
        std::deque<Packed> kept;
        for (auto packed = steps->rbegin(); packed != steps->rend();
             ++packed) { // the nearest first
            DesignState state{{}, identities.KeyOf(packed->selectedKey), *packed->nodes, true};
            for (const SharedQuestion& question : packed->questions) {
                std::shared_ptr<const Question> followed = identities.Follow(question.value);
                if (!followed)
                    break;
                state.questions.push_back({std::move(followed), question.number});
            }
            if (state.questions.size() < packed->questions.size())
                break;
            for (NodeLabel& node : state.nodes)
                node.key = identities.KeyOf(node.key);
            const std::int64_t bytes = packed->bytes;
            kept.push_front(Pack(std::move(state)));
            bytes_ += bytes - std::exchange(kept.front().bytes, bytes);
        }
        *steps = std::move(kept);
    }
    saved_ = std::move(questions);
}

} // namespace pollarix
