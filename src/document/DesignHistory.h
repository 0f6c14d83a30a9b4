// The steps of the design that can be undone and done again. Keeps values only: what a step changes
// is SurveyEditor's, and how a state is shown is the screen's. A state shares with its neighbours
// what the step between them left alone. The oldest steps go when there are more than MostSteps, or
// when all of them take more than MostBytes; the last one always stays.
#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <vector>

#include "document/SharedQuestions.h"

namespace pollarix {

// The text of a node of the question tree. It tells of what happened to the node, so that it can't
// be worked out from the question.
struct NodeLabel {
    QString key;
    QString text;
    bool operator==(const NodeLabel&) const = default;
};

// The Design screen between two steps.
struct DesignState {
    SharedQuestions questions;
    QString selectedKey;          // of the question that is selected; "" for none or the root
    std::vector<NodeLabel> nodes; // in the tree's collection order
    bool changed = false;         // whether the survey was marked
};

class DesignHistory {
  public:
    static constexpr std::size_t MostSteps = 1000;
    static constexpr std::int64_t MostBytes = 64 << 20;

    // Forgets all steps. What the survey holds now is what its file holds.
    void Start(const clsSurvey& saved);
    // Forgets all steps, and nothing else.
    void Forget();

    // The questions as they are now, for a state. Touch tells of a change in place.
    QuestionSharer& Questions() { return questions_; }

    // Keeps the state before a step; what had been undone can't be done again.
    void Keep(DesignState before);
    // The step that was kept last has come to nothing, and goes. Gives the mark of the state before
    // it.
    bool Drop();

    // These two give the state to go to, keeping the one that is left; none when there is no such
    // step. A state that holds what the file holds is not marked as changed.
    std::optional<DesignState> Undo(DesignState now);
    std::optional<DesignState> Redo(DesignState now);
    bool HoldsWhatIsSaved(const SharedQuestions& questions) const;

    // After a save that wrote `written` and read it back as `saved`, with new keys and the ids of
    // new rows: the steps go on with these. A question or response whose row the save has deleted
    // can't get it back, so a step that leads to one goes, and all beyond it.
    void FollowSave(const SurveySnapshot& written, const clsSurvey& saved);

  private:
    using Labels = std::shared_ptr<const std::vector<NodeLabel>>;
    struct Packed {
        SharedQuestions questions;
        QString selectedKey;
        Labels nodes;
        bool changed = false;
        std::int64_t bytes = 0; // about what is held for this state alone
    };
    Packed Pack(DesignState state);
    std::optional<DesignState> Step(std::deque<Packed>& from, std::deque<Packed>& to,
                                    DesignState now);

    QuestionSharer questions_;
    SharedQuestions saved_;
    std::deque<Packed> undone_; // the next one to be done again last
    std::deque<Packed> done_;
    std::int64_t bytes_ = 0; // of both
    Labels last_;            // that were packed last: with them the next ones share
};

} // namespace pollarix
