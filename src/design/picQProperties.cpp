#include "design/picQProperties.h"

#include <QApplication>
#include <QGridLayout>
#include <QLabel>
#include <QMenu>
#include <QRadioButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>

#include "design/EditInPlace.h"
#include "design/FormattingBar.h"
#include "design/SelectedQuestion.h"
#include "design/picCheck.h"
#include "design/picMatrix.h"
#include "design/picOpenEnded.h"
#include "document/QuestionLabels.h"
#include "document/SurveyViews.h"
#include "platform/base/Handlers.h"
#include "platform/controls/ScreenTitle.h"
#include "platform/controls/Twips.h"

namespace pollarix {

namespace {

constexpr int Options = 5;
// In the Tab key's order: by columns, as the eye goes.
constexpr std::array<int, Options> OptionsAsSeen = {0, 3, 1, 2, 4};
constexpr std::array Captions = {"&Open Ended", "Multiple choice - &many Responses",
                                 "Multiple choice - &single Response", "Instruction &Text",
                                 "Question &Matrix"};
// The last two options stand the other way round than the codes of their kinds.
constexpr std::array<std::int32_t, Options> KindOfOption = {kind::OpenEnded, kind::Check,
                                                            kind::Radio, kind::Text, kind::Matrix};

// An option that an arrow key leaves gives the focus to the one that it turns on, after that one's
// click. What the click did with the focus is to be done again then.
class KindOption : public QRadioButton {
  public:
    using QRadioButton::QRadioButton;
    std::function<void()> LeftByKey;

  protected:
    void keyPressEvent(QKeyEvent* event) override {
        const bool wasOn = isChecked();
        QRadioButton::keyPressEvent(event);
        if (wasOn && !isChecked())
            LeftByKey();
    }
};

QLabel* NewLabel1(int index, const char* caption, QWidget* parent) {
    QLabel* const label = NewHeading(caption, parent);
    label->setObjectName(QString("Label1(%1)").arg(index));
    return label;
}

} // namespace

picQProperties::picQProperties(ApplicationState& state, SurveyEditor& editor, TreeView& tvTreeView,
                               QWidget* parent)
    : QFrame(parent), state_(state), editor_(editor), tvTreeView_(tvTreeView),
      scroll_(new QScrollArea(this)), body_(new QWidget(scroll_)), txtQ_(new RichTextBox(body_)),
      bar_(new FormattingBar(*txtQ_, body_)), options_(new QGridLayout),
      lblResponses_(NewLabel1(4, "Responses:", body_)),
      picOpenEnded_(new pollarix::picOpenEnded(state, editor, tvTreeView, body_)),
      picCheck_(new pollarix::picCheck(state, editor, tvTreeView, body_)),
      picMatrix_(new pollarix::picMatrix(state, editor, tvTreeView, body_)) {
    setObjectName("picQProperties");
    setFrameShape(StyledPanel);
    txtQ_->setObjectName("txtQ");
    txtQ_->setAccessibleName("Question Text");
    // Whatever the key: a press marks the survey, a release commits.
    txtQ_->KeyDown = [this](QKeyEvent&) { editor_.TextEdited(); };
    txtQ_->KeyUp = [this](QKeyEvent&) { CommitText(); };
    txtQ_->LostFocus = [this] { txtQ_LostFocus(); };
    txtQ_->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(txtQ_, &QWidget::customContextMenuRequested, this, &picQProperties::ShowContextMenu);
    txtQ_->ChangedByMouse = [this] { TextChangedByMouse(); };
    // A format counts as a key and its release, and must not be lost when the next thing is a menu.
    bar_->Changed = [this] {
        editor_.TextEdited();
        CommitText();
    };

    BuildOptions();
    LayOutRows();
    for (QWidget* const panel :
         {static_cast<QWidget*>(lblResponses_), static_cast<QWidget*>(picOpenEnded_),
          static_cast<QWidget*>(picCheck_), static_cast<QWidget*>(picMatrix_)})
        panel->setVisible(false);
}

void picQProperties::BuildOptions() {
    for (int i = 0; i < Options; ++i) {
        auto* const option = new KindOption(Captions[i], body_);
        option->setObjectName(QString("optQType(%1)").arg(i));
        option->LeftByKey = [this] {
            if (const std::shared_ptr<clsQ> q = SelectedQuestion(state_, tvTreeView_))
                FocusBox(q->qType);
        };
        connect(option, &QRadioButton::toggled, this, [this, i](bool on) {
            if (on)
                RunHandler([&] { optQType_Click(i); });
        });
        optQType_[i] = option;
    }
}

void picQProperties::LayOutRows() {
    options_->setHorizontalSpacing(20);
    options_->setVerticalSpacing(4);
    options_->setColumnStretch(3, 1);

    // All in one place: the panel that is shown comes to the front.
    auto* const panels = new QGridLayout;
    for (QWidget* const panel :
         {static_cast<QWidget*>(picOpenEnded_), static_cast<QWidget*>(picCheck_),
          static_cast<QWidget*>(picMatrix_)})
        panels->addWidget(panel, 0, 0);

    const int side = ToPixels(300) - frameWidth();
    auto* const rows = new QVBoxLayout(body_);
    rows->setContentsMargins(side, 10, side, 10);
    rows->setSpacing(6);
    rows->addWidget(NewLabel1(0, "Question Text:", body_));
    rows->addWidget(bar_);
    rows->addWidget(txtQ_, 2);
    rows->addSpacing(4);
    rows->addWidget(NewLabel1(2, "Question Type:", body_));
    rows->addLayout(options_);
    rows->addSpacing(4);
    rows->addWidget(lblResponses_);
    rows->addLayout(panels, 3);

    setTabOrder(bar_->LastControl(), txtQ_);
    QWidget* last = txtQ_;
    for (const int i : OptionsAsSeen) {
        setTabOrder(last, optQType_[i]);
        last = optQType_[i];
    }

    scroll_->setFrameShape(NoFrame);
    scroll_->setFocusPolicy(Qt::NoFocus);
    scroll_->setWidgetResizable(true);
    scroll_->setWidget(body_);
    auto* const whole = new QVBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->addWidget(scroll_);
    // Queued: the panel that takes the focus may have no place yet.
    connect(qApp, &QApplication::focusChanged, this, &picQProperties::ShowFocus,
            Qt::QueuedConnection);
}

void picQProperties::ShowFocus() {
    QWidget* const focus = QApplication::focusWidget();
    if (focus && body_->isAncestorOf(focus))
        scroll_->ensureWidgetVisible(focus, 0, options_->verticalSpacing());
}

void picQProperties::resizeEvent(QResizeEvent* event) {
    QFrame::resizeEvent(event);
    const QMargins margins = body_->layout()->contentsMargins();
    // As if the scroll bar were there, so that it does not come and go with the columns.
    ArrangeOptions(contentsRect().width() - scroll_->verticalScrollBar()->sizeHint().width() -
                   margins.left() - margins.right());
}

// In three columns; where they would be cut off, in two or in one.
void picQProperties::ArrangeOptions(int width) {
    const auto hint = [this](int i) { return optQType_[i]->sizeHint().width(); };
    const int gap = options_->horizontalSpacing();
    const int first = std::max(hint(0), hint(3));
    const int second = gap + std::max(hint(1), hint(2));
    const int columns = first + second + gap + hint(4) <= width      ? 3
                        : std::max(first, hint(4)) + second <= width ? 2
                                                                     : 1;
    if (std::exchange(optionColumns_, columns) == columns)
        return;
    for (int at = 0; at < Options; ++at) {
        const int rows = columns == 1 ? Options : 2;
        const bool below = columns == 2 && at == 4;
        options_->addWidget(optQType_[OptionsAsSeen[at]], below ? 2 : at % rows,
                            below ? 0 : at / rows);
    }
}

void picQProperties::tvTreeView_NodeClick(TreeNode& Node) {
    editor_.EndOfTyping();
    const std::shared_ptr<clsQ> q = state_.CurrentSurvey.GetQ(Node.Key());
    if (!q) {
        setVisible(false);
        return;
    }
    setVisible(true);
    raise();
    MoveFocusQuietly(*txtQ_);
    Load(q->Question);
    txtQ_->SetSelStart(0);
    txtQ_->SetSelLength(static_cast<int>(txtQ_->Text().size()));
    const auto option = std::find(KindOfOption.begin(), KindOfOption.end(), q->qType);
    if (option != KindOfOption.end()) {
        const int Index = static_cast<int>(option - KindOfOption.begin());
        SelectQType(Index, Node);
        SetOption(Index);
    }
    picOpenEnded_->ShowNoOfRows(*q);
}

// Putting on an option that was off raises its click, as the user's hand does. So a step to a
// question of another kind marks the survey as changed though nothing was edited: required.
void picQProperties::SetOption(int Index) {
    QRadioButton& option = *optQType_[Index];
    if (option.isChecked())
        return;
    {
        const QSignalBlocker noEvent(option);
        option.setChecked(true);
    }
    optQType_Click(Index);
}

void picQProperties::optQType_Click(int Index) {
    TreeNode* const node = tvTreeView_.SelectedItem();
    if (!node || node->Key() == RootKey) {
        // The panel of a deleted question: it goes on showing that one's kind.
        const QSignalBlocker noEvent(*optQType_[shownOption_]);
        optQType_[shownOption_]->setChecked(true);
        return;
    }
    SelectQType(Index, *node);
    editor_.KindClicked();
}

void picQProperties::SelectQType(int Index, TreeNode& Node) {
    const std::shared_ptr<clsQ> q = state_.CurrentSurvey.GetQ(Node.Key());
    if (!q || Index < 0 || Index >= Options)
        return;
    // The Tab key goes to the option that is on; the others are reached from there.
    for (int i = 0; i < Options; ++i)
        optQType_[i]->setFocusPolicy(i == Index ? Qt::StrongFocus : Qt::ClickFocus);
    shownOption_ = Index;
    const std::int32_t qType = KindOfOption[Index];
    switch (qType) {
    case kind::OpenEnded:
    case kind::Text:
        ShowKindPanel(*picOpenEnded_, {picCheck_, picMatrix_});
        break;
    case kind::Check:
        // picMatrix stays visible behind picCheck, which covers it.
        ShowKindPanel(*picCheck_, {picOpenEnded_});
        picCheck_->SetLogicVisible(false);
        break;
    case kind::Radio:
        ShowKindPanel(*picCheck_, {picOpenEnded_, picMatrix_});
        picCheck_->SetLogicVisible(true);
        break;
    case kind::Matrix:
        ShowKindPanel(*picMatrix_, {picOpenEnded_, picCheck_});
        break;
    }
    picMatrix_->SetCovered(qType == kind::Check);
    editor_.SetKind(*q, qType);
    lblResponses_->setVisible(HasResponses(qType));
    if (qType == kind::Matrix) {
        picMatrix_->Fill(*q);
        picMatrix_->SelectScale(q->ResponseMatrixGroupID);
    } else if (HasResponses(qType)) {
        picCheck_->Fill(*q);
    }
    FocusBox(qType);
}

void picQProperties::FocusBox(std::int32_t qType) {
    if (qType == kind::Matrix)
        picMatrix_->FocusBox();
    else if (HasResponses(qType))
        picCheck_->FocusBox();
}

void picQProperties::ShowResponse(int response) {
    const std::shared_ptr<clsQ> q = SelectedQuestion(state_, tvTreeView_);
    if (!q || !HasResponses(q->qType))
        return;
    if (q->qType == kind::Matrix)
        picMatrix_->ShowResponse(response);
    else
        picCheck_->ShowResponse(response);
}

void picQProperties::ShowKindPanel(QWidget& panel, std::initializer_list<QWidget*> hidden) {
    panel.setVisible(true);
    panel.raise();
    for (QWidget* const other : hidden)
        other->setVisible(false);
}

void picQProperties::ShowJumps() {
    picCheck_->ShowJumps();
}

void picQProperties::ClearCheckResponses() {
    picCheck_->ClearList();
}

void picQProperties::Load(const QString& rtf) {
    txtQ_->SetTextRTF(rtf);
    txtQ_->document()->setModified(false);
    loaded_ = rtf;
    committed_ = txtQ_->document()->revision();
}

bool picQProperties::IsEdited() const {
    return txtQ_->document()->revision() != committed_;
}

void picQProperties::CommitText() {
    FinishEditInPlace(*this);
    CommitNoOfRows();
    Commit(!IsEdited()                       ? SurveyEditor::Edit::None
           : txtQ_->document()->isModified() ? SurveyEditor::Edit::Typed
                                             : SurveyEditor::Edit::TakenBack);
}

void picQProperties::CommitEdits() {
    FinishEditInPlace(*this);
    CommitNoOfRows();
    if (IsEdited())
        CommitText();
}

void picQProperties::CommitNoOfRows() {
    picOpenEnded_->CommitChosen();
}

void picQProperties::Commit(SurveyEditor::Edit edit) {
    TreeNode* const node = tvTreeView_.SelectedItem();
    const std::shared_ptr<clsQ> q = SelectedQuestion(state_, tvTreeView_);
    if (!q)
        return;
    committed_ = txtQ_->document()->revision();
    // A text that is taken back is again what it was to the letter, however the box would write it.
    const QString rtf = edit == SurveyEditor::Edit::TakenBack ? loaded_ : txtQ_->TextRTF();
    if (!txtQ_->document()->isModified())
        loaded_ = rtf;
    editor_.SetText(*q, rtf, edit);
    const QString text = txtQ_->Text();
    node->SetText(PrefixOf(q->qType, q->QuestionNo) +
                  (text.isEmpty() ? QString(NoTextYet) : text.section("\r\n", 0, 0)));
}

void picQProperties::EnterText(const QString& rtf) {
    Load(rtf);
    Commit(SurveyEditor::Edit::Typed);
}

// What the mouse pastes, drops or takes away counts as a key does.
void picQProperties::TextChangedByMouse() {
    editor_.TextEdited();
    CommitText();
}

void picQProperties::ShowContextMenu(const QPoint& position) {
    const int revision = txtQ_->document()->revision();
    const std::unique_ptr<QMenu> menu(txtQ_->createStandardContextMenu(position));
    menu->exec(txtQ_->mapToGlobal(position));
    if (txtQ_->document()->revision() != revision)
        RunHandler([&] { TextChangedByMouse(); });
}

} // namespace pollarix
