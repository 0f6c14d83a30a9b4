#include "design/picDesign.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QScrollBar>

#include <algorithm>
#include <iterator>
#include <map>
#include <optional>
#include <utility>

#include "design/picLibraryView.h"
#include "design/picMatrix.h"
#include "design/picQProperties.h"
#include "design/picTreeView.h"
#include "document/QuestionLabels.h"
#include "document/SurveyViews.h"
#include "platform/base/Failure.h"
#include "platform/base/Handlers.h"
#include "platform/controls/Focus.h"
#include "platform/controls/RedrawOff.h"
#include "platform/controls/ScreenTitle.h"
#include "platform/controls/Twips.h"
#include "platform/richtext/RichText.h"

namespace pollarix {

namespace {

// In pixels, where the rules of the window leave it open.
constexpr int Margin = 8;
constexpr int Gap = 10; // between the columns
constexpr int NarrowestLeft = 260;
constexpr int WidestLeft = 560;
constexpr int LowestLibrary = 120;

// What a question that is no matrix carries, and starts with if it becomes one.
constexpr std::int16_t FirstScale = 2;

void Place(QWidget& control, int left, int top, int width, int height) {
    if (width > 0 && height > 0)
        control.setGeometry(left, top, width, height);
}

} // namespace

picDesign::picDesign(ApplicationState& state, QWidget* parent)
    : QWidget(parent), state_(state), editor_(state, *this),
      picTitle_(NewScreenTitle("picTitle", "Design", this)), picTitles_(new QWidget(this)),
      lblInstructions_(NewInstructions(
          "Instructions - You are currently designing your survey. To add a question press the "
          "'Add Question' button above, enter your Question Text and select the Question Type. "
          "For more help press F1.",
          picTitles_)),
      picTreeView_(new pollarix::picTreeView(state, editor_, this)),
      tvTreeView_(picTreeView_->Tree()),
      picLibraryView_(new pollarix::picLibraryView(
          state, [this](const QString& name) { AddLibraryText(name); }, this)),
      picQProperties_(new pollarix::picQProperties(state, editor_, tvTreeView_, this)) {
    setObjectName("picDesign");
    picTitles_->setObjectName("picTitles");
    picQProperties_->setVisible(false);
    picTreeView_->Renumbered = [this] { picQProperties_->ShowJumps(); };
    tvTreeView_.NodeClick = [this](TreeNode& Node) { picQProperties_->tvTreeView_NodeClick(Node); };
}

// Below the titles, and as low as the room that the tree's rule leaves below it for its buttons
// asks for.
int picDesign::BodyTop() const {
    const int instructions =
        lblInstructions_->y() + lblInstructions_->heightForWidth(lblInstructions_->width());
    return std::max(ScreenTitleHeight + instructions + Margin,
                    ToPixels(500) + picTreeView_->ButtonRowHeight());
}

void picDesign::LayOut(int statusBarHeight) {
    Place(*picTitle_, 0, 0, width(), ScreenTitleHeight);
    const int textLeft = ToPixels(120);
    const int textTop = ToPixels(60);
    Place(*lblInstructions_, textLeft, textTop, width() - textLeft - ToPixels(150),
          lblInstructions_->height());
    const int top = BodyTop();
    Place(*picTitles_, 0, ScreenTitleHeight, width(), top - ScreenTitleHeight);
    Place(*lblInstructions_, textLeft, textTop, lblInstructions_->width(),
          picTitles_->height() - textTop);

    const int left = std::clamp(width() * 30 / 100, NarrowestLeft, WidestLeft);
    const int libraryHeight = std::max(LowestLibrary, (height() - top) * 40 / 100);
    Place(*picLibraryView_, Margin, height() - libraryHeight, left, libraryHeight);
    Place(*picTreeView_, Margin, top, left, picLibraryView_->y() - top - ToPixels(150));
    picTreeView_->LayOutTree();

    const int panelLeft = Margin + left + Gap;
    Place(*picQProperties_, panelLeft, top, width() - panelLeft - ToPixels(150),
          height() - top - statusBarHeight + ToPixels(300));
    // With a low status bar the panel reaches beyond the screen's edge; its frame does not.
    picQProperties_->setFrameRect(picQProperties_->rect() &
                                  rect().adjusted(0, 0, 0, -1).translated(-picQProperties_->pos()));
}

void picDesign::LoadLibrary() {
    picLibraryView_->LoadLibrary();
}

void picDesign::LoadMatrixResponses() {
    picQProperties_->Matrix().LoadMatrixResponses();
}

void picDesign::AddQuestion(std::int32_t qType, std::int16_t ResponseMatrixGroupID) {
    picQProperties_->CommitNoOfRows();
    ShowAdded(editor_.AddQuestion(qType, ResponseMatrixGroupID), NoTextYet);
}

void picDesign::ShowAdded(const QString& key, const QString& label) {
    TreeNode& node = tvTreeView_.Add(RootKey, TreeView::tvwChild, key, label);
    node.SetSelected();
    picQProperties_->tvTreeView_NodeClick(node);
}

void picDesign::mnuDesignDuplicate_Click() {
    CommitEdits();
    const QString original = SelectedQuestionKey();
    if (!editor_.Survey().GetQ(original)) {
        state_.dialogs.MsgBox("Please select a question to duplicate.", MsgIcon::Critical);
        return;
    }
    const QString key = editor_.DuplicateQuestion(original);
    const std::shared_ptr<clsQ> copy = editor_.Survey().GetQ(key);
    const QString text = PlainTextOf(copy->Question);
    ShowAdded(key, PrefixOf(copy->qType, copy->QuestionNo) +
                       (text.isEmpty() ? QString(NoTextYet) : text));
}

void picDesign::mnuDesignAddOpenEndedQuestion_Click() {
    AddQuestion(kind::OpenEnded, FirstScale);
}

void picDesign::mnuDesignAddCheckQuestion_Click() {
    AddQuestion(kind::Check, FirstScale);
}

void picDesign::mnuDesignAddRadioQuestion_Click() {
    AddQuestion(kind::Radio, FirstScale);
}

void picDesign::mnuDesignAddMatrixQuestion_Click() {
    AddQuestion(kind::Matrix, Narrow16(picQProperties_->Matrix().SelectedScale()));
}

void picDesign::mnuDesignAddText_Click() {
    AddQuestion(kind::Text, FirstScale);
}

// The text fills the empty question on screen, which is not marked as changed by it, or else a new
// one.
void picDesign::AddLibraryText(const QString& name) {
    editor_.AsOneStep([&] {
        if (!EditorText().isEmpty())
            mnuDesignAddOpenEndedQuestion_Click();
        picQProperties_->EnterText(name);
    });
}

void picDesign::AddBlankOpenEndedQuestion() {
    mnuDesignAddOpenEndedQuestion_Click();
    state_.History.Forget();
}

void picDesign::GoToQuestion(const QString& key, int response) {
    TreeNode* const node = tvTreeView_.Find(key);
    if (!node)
        return;
    CommitEdits();
    node->SetSelected();
    picQProperties_->tvTreeView_NodeClick(*node);
    if (response > 0)
        picQProperties_->ShowResponse(response);
}

void picDesign::Undo() {
    CommitEdits();
    editor_.Undo();
}

void picDesign::Redo() {
    CommitEdits();
    editor_.Redo();
}

DesignPlace picDesign::WhereOneIs() const {
    DesignPlace place;
    QWidget* const focus = QApplication::focusWidget();
    if (focus && isAncestorOf(focus))
        place.focus = focus;
    place.key = SelectedQuestionKey();
    place.position = editor_.Survey().GetQIndexFromKey(place.key);
    place.caret = picQProperties_->Editor().textCursor().position();
    return place;
}

void picDesign::GoBackTo(const DesignPlace& place) {
    const QString key = SelectedQuestionKey();
    if (key == place.key)
        return;
    RichTextBox& txtQ = picQProperties_->Editor();
    QTextCursor cursor(txtQ.document());
    if (editor_.Survey().GetQIndexFromKey(key) == place.position)
        cursor.setPosition(std::min(place.caret, txtQ.document()->characterCount() - 1));
    txtQ.setTextCursor(cursor);
    if (place.focus)
        MoveFocusQuietly(*place.focus);
}

bool picDesign::IsStepKey(QKeyEvent& event) {
    const Qt::KeyboardModifiers modifiers = event.modifiers();
    const bool undo = event.key() == Qt::Key_Z && modifiers == Qt::ControlModifier;
    const bool redo =
        (event.key() == Qt::Key_Y && modifiers == Qt::ControlModifier) ||
        (event.key() == Qt::Key_Z && modifiers == (Qt::ControlModifier | Qt::ShiftModifier));
    if (undo)
        RunHandler([this] { Undo(); });
    else if (redo)
        RunHandler([this] { Redo(); });
    return undo || redo;
}

void picDesign::keyPressEvent(QKeyEvent* event) {
    event->setAccepted(IsStepKey(*event));
}

std::vector<NodeLabel> picDesign::NodeLabels() const {
    std::vector<NodeLabel> labels;
    for (int i = 1; i <= tvTreeView_.Count(); ++i)
        if (const TreeNode& node = tvTreeView_.Item(i); node.Key() != RootKey)
            labels.push_back({node.Key(), node.Text()});
    return labels;
}

QString picDesign::SelectedQuestionKey() const {
    const std::optional<QString> key = SelectedKey();
    return key && *key != RootKey ? *key : QString();
}

void picDesign::ShowState(const DesignState& state) {
    const QPointer<QWidget> focus = QApplication::focusWidget();
    const int scrolled = tvTreeView_.verticalScrollBar()->value();
    ShowTree({});
    std::optional<RedrawOff> redrawOff(std::in_place, *this);
    // The nodes come back in the order in which they were added, each beside one that is there.
    std::map<int, QString> added; // by place in the survey
    for (const NodeLabel& node : state.nodes) {
        const int place = state_.CurrentSurvey.GetQIndexFromKey(node.key);
        const auto next = added.lower_bound(place);
        if (next != added.begin())
            tvTreeView_.Add(std::prev(next)->second, TreeView::tvwNext, node.key, node.text);
        else if (next != added.end())
            tvTreeView_.Add(next->second, TreeView::tvwPrevious, node.key, node.text);
        else
            tvTreeView_.Add(RootKey, TreeView::tvwChild, node.key, node.text);
        added.emplace(place, node.key);
    }
    const QString selected = state.selectedKey.isEmpty() ? QString(RootKey) : state.selectedKey;
    SelectNode(selected);
    tvTreeView_NodeClick(selected);
    tvTreeView_.verticalScrollBar()->setValue(scrolled);
    redrawOff.reset();
    if (const TreeNode* const node = tvTreeView_.SelectedItem())
        tvTreeView_.scrollToItem(node);
    const bool stays = focus && isAncestorOf(focus) && focus->isVisible() && focus->isEnabled();
    MoveFocusQuietly(stays ? *focus : static_cast<QWidget&>(tvTreeView_));
}

bool picDesign::picQPropertiesVisible() const {
    return !picQProperties_->isHidden();
}

void picDesign::CommitText() {
    picQProperties_->CommitText();
}

void picDesign::CommitEdits() {
    picQProperties_->CommitEdits();
}

void picDesign::ShowTree(const std::vector<Node>& questions) {
    // A tree that heard of each node in turn would lay out all of them each time.
    const RedrawOff redrawOff(*this);
    tvTreeView_.Clear();
    tvTreeView_.Add("", TreeView::Root, RootKey, "Survey").SetExpanded(true);
    for (const Node& question : questions)
        tvTreeView_.Add(RootKey, TreeView::tvwChild, question.key, question.text);
}

void picDesign::SelectNode(const QString& key) {
    if (TreeNode* const node = tvTreeView_.Find(key))
        node->SetSelected();
}

void picDesign::tvTreeView_NodeClick(const QString& key) {
    if (TreeNode* const node = tvTreeView_.Find(key))
        picQProperties_->tvTreeView_NodeClick(*node);
}

std::optional<QString> picDesign::SelectedKey() const {
    const TreeNode* const node = tvTreeView_.SelectedItem();
    return node ? std::optional(node->Key()) : std::nullopt;
}

QString picDesign::EditorText() const {
    return picQProperties_->Editor().Text();
}

void picDesign::ClearEditors() {
    picQProperties_->Editor().SetText("");
    picQProperties_->ClearCheckResponses();
}

} // namespace pollarix
