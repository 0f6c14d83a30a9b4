// The Design screen: the question tree and the library at the left, the question panel at the
// right. Composes the panels, adds questions, and answers for the tree and the editor when a survey
// is opened, saved or closed.
#pragma once

#include <QWidget>

#include <QPointer>

#include <optional>

#include "document/SurveyEditor.h"
#include "document/SurveyViews.h"

class QLabel;

namespace pollarix {

class TreeView;
class picLibraryView;
class picQProperties;
class picTreeView;

// Where the user is on the Design screen.
struct DesignPlace {
    QPointer<QWidget> focus; // none while the focus is elsewhere
    QString key;             // of the selected question, and its place in the survey
    int position = -1;
    int caret = 0; // in txtQ, in the document's units
};

class picDesign : public QWidget, public SurveyViews, private EditorScreen {
    Q_OBJECT
  public:
    picDesign(ApplicationState& state, QWidget* parent);

    // Lays out everything in the panel's present size; called whenever that changes. The height is
    // the status bar's, in pixels. A control that no room is left for stays as it was.
    void LayOut(int statusBarHeight);

    void LoadLibrary(); // once, with LibraryConnection open

    // Each adds a question at the end, shows it and marks the survey as changed.
    void mnuDesignAddOpenEndedQuestion_Click();
    void mnuDesignAddCheckQuestion_Click();
    void mnuDesignAddRadioQuestion_Click();
    void mnuDesignAddMatrixQuestion_Click();
    void mnuDesignAddText_Click();
    // Adds a copy of the selected question, likewise.
    void mnuDesignDuplicate_Click();
    // The one that the program starts with, which is no step that could be undone.
    void AddBlankOpenEndedQuestion();

    // For when a survey has been saved, and read back with new keys in between: the focus and the
    // caret stand where they stood, and nothing is selected. Where nothing was read back, nothing
    // happens.
    DesignPlace WhereOneIs() const;
    void GoBackTo(const DesignPlace& place);

    // Selects and shows a question, and one of its responses (from 1) unless it is 0. What is
    // entered is committed before. An unknown key does nothing.
    void GoToQuestion(const QString& key, int response = 0);

    // A step of the design back, or forth again; nothing where there is none. The focus stays where
    // it is, if that is still there.
    void Undo();
    void Redo();

    // Whether a question is shown, on whatever screen the user is.
    bool picQPropertiesVisible() const;
    void CommitText(); // as picQProperties tells
    // The same for what is not committed yet: the letter whose key is still down, a number of rows
    // that was chosen. Leaves a text alone that would only be written otherwise.
    void CommitEdits();

    // SurveyViews. An unknown key does nothing.
    void ShowTree(const std::vector<Node>& questions) override;
    void SelectNode(const QString& key) override;
    void tvTreeView_NodeClick(const QString& key) override;
    std::optional<QString> SelectedKey() const override;
    QString EditorText() const override;
    void ClearEditors() override;
    void LoadMatrixResponses() override;

  protected:
    // What no text box has taken: Ctrl+Z, Ctrl+Y and Ctrl+Shift+Z are steps of the design.
    void keyPressEvent(QKeyEvent* event) override;

  private:
    // EditorScreen
    std::vector<NodeLabel> NodeLabels() const override;
    QString SelectedQuestionKey() const override;
    void ShowState(const DesignState& state) override;

    bool IsStepKey(QKeyEvent& event);
    void AddQuestion(std::int32_t qType, std::int16_t ResponseMatrixGroupID);
    void ShowAdded(const QString& key, const QString& label);
    void AddLibraryText(const QString& name);
    int BodyTop() const;

    ApplicationState& state_;
    SurveyEditor editor_;
    QLabel* picTitle_;
    QWidget* picTitles_;
    QLabel* lblInstructions_;
    picTreeView* picTreeView_;
    TreeView& tvTreeView_;
    picLibraryView* picLibraryView_;
    picQProperties* picQProperties_;
};

} // namespace pollarix
