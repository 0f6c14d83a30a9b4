// What the survey document asks of the screen that shows the survey, when one is opened, saved or
// closed. The Design screen answers; the document knows no widget.
#pragma once

#include <QString>

#include <optional>
#include <vector>

namespace pollarix {

// Key of the tree's root node, which is no question.
inline constexpr const char* RootKey = "S_Parent";

class SurveyViews {
  public:
    virtual ~SurveyViews() = default;

    struct Node {
        QString key, text;
    };

    // The question tree, tvTreeView: "Survey" under RootKey, expanded, and below it the questions
    // in their order. Nothing is selected.
    virtual void ShowTree(const std::vector<Node>& questions) = 0;
    virtual void SelectNode(const QString& key) = 0; // raises nothing
    virtual void tvTreeView_NodeClick(const QString& key) = 0;
    virtual std::optional<QString> SelectedKey() const = 0; // none when no node is selected

    // The question's editor, txtQ, which works the same while its panel is hidden.
    virtual QString EditorText() const = 0; // Text
    virtual void ClearEditors() = 0;        // empties txtQ and lstCheckResponses

    // The list of scales, out of the survey file. Throws what the database throws.
    virtual void LoadMatrixResponses() = 0;
};

} // namespace pollarix
