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
           a.QuestionNo == b.QuestionNo &&
           (a.qType != kind::Matrix || a.ResponseMatrixGroupID == b.ResponseMatrixGroupID) &&
           std::equal(a.responses.begin(), a.responses.end(), b.responses.begin(),
                      b.responses.end(),
                      [](const Response& x, const Response& y) { return SameInFile(x, y); }) &&
           SameText(a.Text, b.Text);
}

bool SameInFile(const SurveySnapshot& a, const SurveySnapshot& b) {
    return std::equal(a.questions.begin(), a.questions.end(), b.questions.begin(),
                      b.questions.end(),
                      [](const Question& x, const Question& y) { return SameInFile(x, y); });
}

// Whether what was read after a save can be what was written: another program may have come
// between.
bool CanBe(const SurveySnapshot& written, const SurveySnapshot& saved) {
    return std::equal(written.questions.begin(), written.questions.end(), saved.questions.begin(),
                      saved.questions.end(), [](const Question& before, const Question& after) {
                          return (before.DatabaseID < 1 || before.DatabaseID == after.DatabaseID) &&
                                 after.responses.size() <= before.responses.size();
                      });
}

// From the keys and ids before a save to those after it.
class Identities {
  public:
    Identities(const SurveySnapshot& written, const SurveySnapshot& saved) {
        for (std::size_t i = 0; i < written.questions.size(); ++i)
            pairs_.insert(written.questions[i].Key, {&written.questions[i], &saved.questions[i]});
    }

    QString KeyOf(const QString& key) const {
        const auto pair = pairs_.find(key);
        return pair == pairs_.end() ? key : pair->saved->Key;
    }

    // False when the question, or a response of it, had a row that is gone.
    bool Follow(Question& question) const {
        const auto pair = pairs_.find(question.Key);
        if (pair == pairs_.end())
            return question.DatabaseID < 1 && FollowResponses(question, {}, {});
        question.Key = pair->saved->Key;
        question.DatabaseID = pair->saved->DatabaseID;
        return FollowResponses(question, pair->written->responses, pair->saved->responses);
    }

  private:
    struct Pair {
        const Question* written;
        const Question* saved;
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
};

} // namespace

void DesignHistory::Start(SurveySnapshot saved) {
    *this = {};
    saved_ = std::move(saved);
}

DesignHistory::Packed DesignHistory::Pack(DesignState state) {
    Packed packed;
    packed.selectedKey = std::move(state.survey.selectedKey);
    packed.changed = state.changed;
    packed.nodes = last_.nodes && *last_.nodes == state.nodes
                       ? last_.nodes
                       : std::make_shared<const std::vector<NodeLabel>>(std::move(state.nodes));
    // The two orders differ by a question that came, went or changed places with its neighbour.
    std::size_t at = 0;
    for (Question& question : state.survey.questions) {
        for (const std::size_t beside : {at, at + 1})
            if (beside < last_.questions.size() && last_.questions[beside]->Key == question.Key)
                at = beside;
        const bool same = at < last_.questions.size() && *last_.questions[at] == question;
        packed.questions.push_back(same ? last_.questions[at]
                                        : std::make_shared<const Question>(std::move(question)));
        if (at < last_.questions.size() && last_.questions[at]->Key == packed.questions.back()->Key)
            ++at;
    }
    last_ = packed;
    return packed;
}

void DesignHistory::Keep(DesignState before) {
    undone_.clear();
    done_.push_back(Pack(std::move(before)));
}

std::optional<DesignState> DesignHistory::Step(std::vector<Packed>& from, std::vector<Packed>& to,
                                               DesignState now) {
    if (from.empty())
        return std::nullopt;
    to.push_back(Pack(std::move(now)));
    const Packed packed = std::move(from.back());
    from.pop_back();
    DesignState state{{{}, packed.selectedKey}, *packed.nodes, packed.changed};
    for (const auto& question : packed.questions)
        state.survey.questions.push_back(*question);
    state.changed = state.changed && !SameInFile(state.survey, saved_);
    return state;
}

std::optional<DesignState> DesignHistory::Undo(DesignState now) {
    return Step(done_, undone_, std::move(now));
}

std::optional<DesignState> DesignHistory::Redo(DesignState now) {
    return Step(undone_, done_, std::move(now));
}

void DesignHistory::FollowSave(const SurveySnapshot& written, SurveySnapshot saved) {
    if (!CanBe(written, saved)) {
        Start(std::move(saved));
        return;
    }
    const Identities identities(written, saved);
    for (std::vector<Packed>* const steps : {&done_, &undone_}) {
        std::vector<Packed> kept; // from the nearest on
        for (auto packed = steps->rbegin(); packed != steps->rend(); ++packed) {
            DesignState state{{{}, identities.KeyOf(packed->selectedKey)}, *packed->nodes, true};
            bool follows = true;
            for (const auto& question : packed->questions)
                follows =
                    follows && identities.Follow(state.survey.questions.emplace_back(*question));
            if (!follows)
                break;
            for (NodeLabel& node : state.nodes)
                node.key = identities.KeyOf(node.key);
            kept.push_back(Pack(std::move(state)));
        }
        steps->assign(std::make_move_iterator(kept.rbegin()), std::make_move_iterator(kept.rend()));
    }
    saved_ = std::move(saved);
}

} // namespace pollarix
