// What the survey document asks of the screens when a survey is opened, saved or closed. The main
// window answers by asking its screens; the document knows no widget.
#pragma once

#include <QString>

#include <optional>

namespace pollarix {

// Key of the tree's root node, which is no question.
inline constexpr const char* RootKey = "S_Parent";

class SurveyViews {
  public:
    virtual ~SurveyViews() = default;

    // Panel 1 of the status bar.
    virtual void ShowPath(const QString& text) = 0;

    // The question tree, tvTreeView.
    virtual void ClearTree() = 0;
    virtual void AddRootNode() = 0; // "Survey" under RootKey, expanded
    virtual void AddQuestionNode(const QString& key,
                                 const QString& text) = 0; // the root's last child
    virtual void SelectNode(const QString& key) = 0;       // raises nothing
    virtual void tvTreeView_NodeClick(const QString& key) = 0;
    virtual std::optional<QString> SelectedKey() const = 0; // none when no node is selected

    // The question's editor, txtQ, which works the same while its panel is hidden.
    virtual QString PlainTextThroughEditor(const QString& rtf) = 0; // TextRTF in, Text out
    virtual QString EditorText() const = 0;                         // Text
    virtual void ClearEditors() = 0; // empties txtQ and lstCheckResponses

    virtual void LoadMatrixResponses() = 0;
    virtual void RefreshRespondeSummaryReportList() = 0; // row 1, no response
    virtual void RefreshRespondentList() = 0;            // row 1, no respondent

    // Off while many questions are loaded, so that nothing is painted in between.
    virtual void SetRedraw(bool on) = 0;
};

} // namespace pollarix
