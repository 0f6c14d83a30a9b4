// The steps of the design that can be undone and done again. Keeps values only: what a step changes
// is SurveyEditor's, and how a state is shown is the screen's.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "document/SurveySnapshot.h"

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
    SurveySnapshot survey;
    std::vector<NodeLabel> nodes; // in the tree's collection order
    bool changed = false;         // whether the survey was marked
};

class DesignHistory {
  public:
    // Forgets all steps. What the survey holds now is what its file holds.
    void Start(SurveySnapshot saved);

    // Keeps the state before a step; what had been undone can't be done again.
    void Keep(DesignState before);

    // These two give the state to go to, keeping the one that is left; none when there is no such
    // step. A state that holds what the file holds is not marked as changed.
    std::optional<DesignState> Undo(DesignState now);
    std::optional<DesignState> Redo(DesignState now);

    // After a save that wrote `written` and read it back as `saved`, with new keys and the ids of
    // new rows: the steps go on with these. A question or response whose row the save has deleted
    // can't get it back, so a step that leads to one goes, and all beyond it.
    void FollowSave(const SurveySnapshot& written, SurveySnapshot saved);

  private:
    // A long survey differs in one or two questions from step to step; the others are shared.
    struct Packed {
        std::vector<std::shared_ptr<const SurveySnapshot::Question>> questions;
        QString selectedKey;
        std::shared_ptr<const std::vector<NodeLabel>> nodes;
        bool changed = false;
    };
    Packed Pack(DesignState state);
    std::optional<DesignState> Step(std::vector<Packed>& from, std::vector<Packed>& to,
                                    DesignState now);

    SurveySnapshot saved_;
    std::vector<Packed> undone_; // the next one to be done again last
    std::vector<Packed> done_;
    Packed last_; // what was packed last: with it the next one shares
};

} // namespace pollarix
