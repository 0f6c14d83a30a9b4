// The question panel: shows the question selected in the tree and writes its text and kind to the
// model as they are entered. It writes nothing to the survey file.
#pragma once

#include <QFrame>

#include <array>

#include "document/SurveyEditor.h"
#include "platform/controls/RichTextBox.h"
#include "platform/controls/TreeView.h"

class QGridLayout;
class QLabel;
class QRadioButton;
class QScrollArea;

namespace pollarix {

class FormattingBar;
class picCheck;
class picMatrix;
class picOpenEnded;

class picQProperties : public QFrame {
    Q_OBJECT
  public:
    picQProperties(ApplicationState& state, SurveyEditor& editor, TreeView& tvTreeView,
                   QWidget* parent);

    // Shows the node's question, or hides the panel for the root. Both the tree's event and called
    // with a node that code has just selected.
    void tvTreeView_NodeClick(TreeNode& Node);

    // Selects a response, or sub question, of the question that is shown, and gives the list the
    // focus; from 1. One that is not there does nothing.
    void ShowResponse(int response);

    // Puts a text into the box as if it had been typed, and commits it.
    void EnterText(const QString& rtf);

    // What the box shows becomes the selected question's text and, as far as its first line goes,
    // the node's; a number of rows that was chosen becomes the question's. With the root selected,
    // as after a delete, nothing happens.
    void CommitText();
    // The same, where something is not committed yet.
    void CommitEdits();
    void CommitNoOfRows();
    void txtQ_LostFocus() { CommitText(); }

    // Sets the question of the node to the kind of the option and shows its panel. An index outside
    // 0 to 4, or a node without a question, does nothing.
    void SelectQType(int Index, TreeNode& Node);

    void optQType_Click(int Index);

    RichTextBox& Editor() { return *txtQ_; }
    const RichTextBox& Editor() const { return *txtQ_; }
    picMatrix& Matrix() { return *picMatrix_; }
    void ClearCheckResponses();
    void ShowJumps(); // as picCheck tells

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    void BuildOptions();
    void LayOutRows();
    void ArrangeOptions(int width);
    void ShowFocus();
    void ShowKindPanel(QWidget& panel, std::initializer_list<QWidget*> hidden);
    void SetOption(int Index);
    void FocusBox(std::int32_t qType);
    void ShowContextMenu(const QPoint& position);
    void Load(const QString& rtf);
    bool IsEdited() const;
    void Commit(SurveyEditor::Edit edit);
    void TextChangedByMouse();

    ApplicationState& state_;
    SurveyEditor& editor_;
    TreeView& tvTreeView_;
    QScrollArea* scroll_; // for windows that are too small for the rows
    QWidget* body_;
    RichTextBox* txtQ_;
    FormattingBar* bar_;
    QString loaded_;    // the text of the question as it came into the box
    int committed_ = 0; // revision of the box's document that the question has
    std::array<QRadioButton*, 5> optQType_;
    int shownOption_ = 0; // of the question in the panel
    QGridLayout* options_;
    int optionColumns_ = 0;
    QLabel* lblResponses_; // Label1(4)
    picOpenEnded* picOpenEnded_;
    picCheck* picCheck_;
    picMatrix* picMatrix_;
};

} // namespace pollarix
