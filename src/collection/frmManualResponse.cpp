#include "collection/frmManualResponse.h"

#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include <utility>

#include "collection/ChoicePage.h"
#include "collection/MatrixPage.h"
#include "collection/TextPage.h"
#include "document/SurveyBatch.h"
#include "platform/base/Handlers.h"
#include "platform/base/ShownText.h"
#include "platform/controls/PageButton.h"
#include "platform/controls/ScreenTitle.h"
#include "platform/richtext/RichText.h"

namespace pollarix {

namespace {

constexpr qsizetype LongestQuestion = 10000; // characters that are shown of it

// The question.pos of a page, asked for with how many of the questions that are numbered come up to
// it, itself included, and how many there are.
constexpr const char* PageAt =
    "SELECT id, question, questionno, qtype, (SELECT count(*) FROM question AS earlier WHERE "
    "earlier.qtype IS NOT 4 AND earlier.pos <= page.pos) AS through, (SELECT count(*) FROM "
    "question WHERE qtype IS NOT 4) AS questions FROM question AS page WHERE pos = ?";

// 0 for all keys but 1 to 9. Some keyboards have the digits on Shift.
int DigitOf(const QKeyEvent& key) {
    const auto without = ~(Qt::KeypadModifier | Qt::ShiftModifier);
    const bool digit = key.key() >= Qt::Key_1 && key.key() <= Qt::Key_9;
    return digit && (key.modifiers() & without) == Qt::NoModifier ? key.key() - Qt::Key_0 : 0;
}

} // namespace

frmManualResponse::frmManualResponse(ApplicationState& state, ManualEntryState& entry,
                                     QWidget* parent)
    : QDialog(parent), state_(state), entry_(entry) {
    setObjectName("frmManualResponse");
    setWindowTitle("Survey Response");
    auto* page = new QVBoxLayout(this);
    page->setSpacing(10);
    page->addWidget(NewInstructions(
        "Instructions - You are currently entering the responses to the survey. Select the answer "
        "then press Next. For more help press F1.",
        this));
    BuildQuestion();
    BuildAnswers();
    BuildFooter();
    // The question takes the Tab key only where it has to be scrolled, and then as the last.
    setTabOrder(cmdDCAnswersCancel_, scrollDCQuestion_);
    resize(QSize(900, 620).boundedTo(screen()->availableSize() * 9 / 10));
    cmdDCAnswersNext_->setFocus(); // unless the first page takes it
    RunHandler([this] { Form_Load(); });
}

void frmManualResponse::BuildQuestion() {
    lblDCQuestion_ = NewHeading({}, this);
    lblDCQuestion_->setObjectName("lblDCQuestion");
    lblDCQuestion_->setWordWrap(true);
    lblDCQuestion_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    lblDCQuestion_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    scrollDCQuestion_ = new QScrollArea(this);
    scrollDCQuestion_->setObjectName("scrollDCQuestion");
    scrollDCQuestion_->setAccessibleName("Question");
    scrollDCQuestion_->setFrameShape(QFrame::NoFrame);
    scrollDCQuestion_->setWidgetResizable(true);
    scrollDCQuestion_->setWidget(lblDCQuestion_);
    layout()->addWidget(scrollDCQuestion_);
}

void frmManualResponse::BuildAnswers() {
    picDCAnswers_ = new QWidget(this);
    picDCAnswers_->setObjectName("picDCAnswers");
    static_cast<QVBoxLayout*>(layout())->addWidget(picDCAnswers_, 1);
    auto* answers = new QVBoxLayout(picDCAnswers_);
    answers->setContentsMargins(0, 0, 0, 0);
    auto* matrix = new MatrixPage(picDCAnswers_);
    matrix->EnterTurnsPage = [this] { return cmdDCAnswersNext_->isDefault(); };
    matrix->AnsweredLast = [this] { cmdDCAnswersNext_->setFocus(Qt::TabFocusReason); };
    PageOf(Shape::Text) = new TextPage(picDCAnswers_);
    PageOf(Shape::Many) =
        new ChoicePage(AnswerList::Kind::Check, "picDCResponseCheck", "chkDCCheck", picDCAnswers_);
    PageOf(Shape::One) =
        new ChoicePage(AnswerList::Kind::Radio, "picDCResponseRadio", "optDCRadio", picDCAnswers_);
    PageOf(Shape::Grid) = matrix;
    for (AnswerPage* page : pages_)
        if (page)
            answers->addWidget(page, 1);
}

void frmManualResponse::BuildFooter() {
    auto* picDCFooter = new QWidget(this);
    picDCFooter->setObjectName("picDCFooter");
    layout()->addWidget(picDCFooter);
    auto* footer = new QHBoxLayout(picDCFooter);
    footer->setContentsMargins(0, 0, 0, 0);
    lblPlace_ = new QLabel(picDCFooter);
    lblPlace_->setObjectName("lblPlace");
    // In a narrow window it is cut off before it widens the window.
    lblPlace_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    footer->addWidget(lblPlace_, 1);
    const auto button = [&](const char* name, const QString& caption) {
        auto* made = new PageButton(caption, picDCFooter);
        made->setObjectName(name);
        made->setAutoDefault(false); // Enter is only what the page says it is
        footer->addWidget(made);
        return made;
    };
    cmdDCAnswersPrevious_ = button("cmdDCAnswersPrevious", "&Previous");
    cmdDCAnswersNext_ = button("cmdDCAnswersNext", "&Next");
    cmdDCAnswersCancel_ = button("cmdDCAnswersCancel", "&Cancel");
    connect(cmdDCAnswersPrevious_, &QPushButton::clicked, this,
            [this] { RunHandler([this] { cmdDCAnswersPrevious_Click(); }); });
    connect(cmdDCAnswersNext_, &QPushButton::clicked, this,
            [this] { RunHandler([this] { cmdDCAnswersNext_Click(); }); });
    // The page shown is not stored; pages stored before stay.
    connect(cmdDCAnswersCancel_, &QPushButton::clicked, this, &QDialog::reject);
}

void frmManualResponse::Form_Load() {
    entry_.CurrentPosition = entry_.FirstPosition;
    isRead_ = false;
    RespondentAnswers_ShowQuestion();
}

// When the page can't be read, the one before is still on the screen, and so is the position: its
// answer must not be stored as that of another question.
bool frmManualResponse::MoveTo(std::int32_t position) {
    const std::int32_t before = std::exchange(entry_.CurrentPosition, position);
    isRead_ = false;
    try {
        return RespondentAnswers_ShowQuestion();
    } catch (...) {
        if (!isRead_)
            entry_.CurrentPosition = before;
        isRead_ = true;
        throw;
    }
}

// The question has the height that its text needs, but leaves most of the window to the answers. An
// instruction text has none.
void frmManualResponse::FitQuestion() {
    const QMargins margins = layout()->contentsMargins();
    const int width = this->width() - margins.left() - margins.right();
    const int wanted = qMax(0, lblDCQuestion_->heightForWidth(width));
    const int most = height() * (entry_.CurrentQType == kind::Text ? 10 : 6) / 15;
    scrollDCQuestion_->setFixedHeight(qMin(wanted, most));
    scrollDCQuestion_->setFocusPolicy(wanted > most ? Qt::TabFocus : Qt::NoFocus);
}

void frmManualResponse::resizeEvent(QResizeEvent* event) {
    QDialog::resizeEvent(event);
    FitQuestion();
}

void frmManualResponse::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter) {
        const int digit = DigitOf(*event);
        AnswerPage* const page = Page();
        if (digit > 0 && page && !event->isAutoRepeat() && page->ChooseByDigit(digit)) {
            event->accept();
            setAttribute(Qt::WA_KeyboardFocusChange); // the focus has moved by key, and is shown
        } else
            QDialog::keyPressEvent(event);
        return;
    }
    if (event->isAutoRepeat())
        return; // a key held down would run through the survey
    if (auto* focused = qobject_cast<QPushButton*>(focusWidget()))
        focused->click();
    else if (cmdDCAnswersNext_->isDefault())
        cmdDCAnswersNext_->click();
}

// Counts as the numbers before the questions do: an instruction text lies between two of them.
void frmManualResponse::ShowPlace(std::int64_t through, std::int64_t questions) {
    QStringList says;
    if (entry_.CurrentQType != kind::Text)
        says << QString("Question %1 of %2").arg(through).arg(questions);
    else if (through < questions)
        says << QString("Before question %1 of %2").arg(through + 1).arg(questions);
    else if (questions > 0)
        says << QString("After question %1 of %1").arg(questions);
    if (entry_.Respondents > 0)
        says << QString(entry_.Respondents == 1 ? "%1 respondent" : "%1 respondents")
                    .arg(entry_.Respondents);
    lblPlace_->setText(says.join(QString(" \u00b7 ")));
    lblPlace_->setAccessibleName(says.join(", "));
}

bool frmManualResponse::RespondentAnswers_ShowQuestion() {
    const Recordset row = state_.SurveyConnection.Execute(PageAt, {entry_.CurrentPosition});
    isRead_ = row.AtEnd();
    if (isRead_)
        return false;
    const std::int64_t id = row.Integer("id");
    const std::int32_t qtype = Narrow32(row.Integer("qtype"));
    QString text = PlainTextOf(row.NullToString("question"));
    const QString number = row.NullToString("questionno");
    if (qtype != kind::Text && !number.isEmpty())
        text.prepend(number + ". ");
    // From here on this page is the one on the screen, however far it gets.
    isRead_ = true;
    shown_ = id;
    lblDCQuestion_->setText(Shortened(text, LongestQuestion));
    scrollDCQuestion_->verticalScrollBar()->setValue(0);
    entry_.CurrentQType = qtype;
    unread_.reset();
    FitQuestion();
    ShowPlace(row.Integer("through"), row.Integer("questions"));

    if (qtype < kind::OpenEnded || qtype > kind::Text)
        return true; // a kind from elsewhere: the panels stay as they are
    // The control that the user was in goes with the page before.
    const bool isLost =
        !isVisible() || (focusWidget() && picDCAnswers_->isAncestorOf(focusWidget()));
    try {
        ReadPage({state_.SurveyConnection, id, entry_.CurrentRespondentID});
    } catch (...) {
        PlaceFocus(isLost);
        throw;
    }
    PlaceFocus(isLost);
    return true;
}

AnswerPage* frmManualResponse::Page() {
    return PageOf(KindOf(entry_.CurrentQType).shape);
}

void frmManualResponse::ShowPage(const AnswerPlace& place) {
    AnswerPage* const page = Page();
    for (AnswerPage* other : pages_)
        if (other)
            other->setVisible(other == page);
    if (page)
        page->ShowAnswer(place);
    const EnterKey enter = page ? page->Enter() : EnterKey::NextPage;
    if (enter != EnterKey::AsOnThePageBefore)
        cmdDCAnswersNext_->setDefault(enter == EnterKey::NextPage);
}

void frmManualResponse::ReadPage(const AnswerPlace& place) {
    try {
        ShowPage(place);
        unread_.reset();
    } catch (const std::exception&) {
        unread_ = CaughtFailure();
        throw;
    }
}

void frmManualResponse::RequireRead(const AnswerPlace& place) {
    if (!unread_ || place.file
                        .Execute("SELECT id FROM Respondent_Responses WHERE respondentid = ? AND "
                                 "questionid = ?",
                                 {place.respondent, place.question})
                        .AtEnd())
        return;
    const Failure failure = *unread_;
    try {
        ReadPage(place);
    } catch (const std::exception&) {
        // The same, or what came in its place, at the next try.
    }
    throw failure;
}

// Also of a page that could not be shown to its end: then Enter goes on, and never back.
void frmManualResponse::PlaceFocus(bool isLost) {
    AnswerPage* const page = Page();
    if (page && page->HasAnswers() && (isLost || page->TakesFocusFromButtons()))
        page->TakeFocus();
    else if (isLost)
        cmdDCAnswersNext_->setFocus();
}

bool frmManualResponse::ShowDCAnswer() {
    JumpTarget = AnswerPage::NoJump;
    Connection& file = state_.SurveyConnection;
    std::int64_t question = 0;
    {
        const Recordset row =
            file.Execute("SELECT ID FROM question WHERE pos = ?", {entry_.CurrentPosition});
        if (row.AtEnd())
            return false;
        question = row.Integer(0);
    }
    if (question != shown_)
        throw Failure(
            failure::PathOrFileAccess,
            "The survey's questions were changed meanwhile. What was entered on this page "
            "is not stored");
    const AnswerPlace place{file, question, entry_.CurrentRespondentID};
    RequireRead(place);
    file.Run("DELETE FROM Respondent_Responses WHERE RespondentID = ? AND questionid = ?",
             {place.respondent, question});
    if (AnswerPage* const page = Page(); page && page->HasAnswers())
        JumpTarget = page->Store(place);
    return true;
}

// Where the survey was left for another meanwhile, or another program has deleted the respondent,
// the page has nothing to go on with.
bool frmManualResponse::Store() {
    const int opening = state_.Openings();
    SurveyBatch batch(state_);
    if (!batch && state_.Openings() == opening)
        return false;
    if (batch &&
        !state_.SurveyConnection
             .Execute("SELECT id FROM respondent WHERE id = ?", {entry_.CurrentRespondentID})
             .AtEnd()) {
        const bool stored = ShowDCAnswer();
        batch.Commit();
        if (!stored)
            state_.dialogs.MsgBox("Error cmdDCAnswersNext_Click", MsgIcon::Critical);
        return true;
    }
    if (batch) {
        batch.TakeBack(); // nobody waits for the file while the box shows
        state_.dialogs.MsgBox("This respondent is not in the survey any more. What was entered on "
                              "this page is not stored.",
                              MsgIcon::Critical);
    }
    reject();
    return false;
}

void frmManualResponse::cmdDCAnswersNext_Click() {
    if (!isRead_) { // no page is on the screen that could be stored
        Form_Load();
        return;
    }
    if (!Store())
        return;
    std::int32_t next = entry_.CurrentPosition;
    if (JumpTarget == AnswerPage::NoJump) {
        ++next;
    } else {
        // A target that is gone, or the page itself, shows this page again.
        const Recordset target =
            state_.SurveyConnection.Execute("SELECT pos FROM question WHERE id = ?", {JumpTarget});
        if (!target.AtEnd())
            next = Narrow32(target.Integer(0));
    }
    if (!MoveTo(next)) {
        state_.dialogs.MsgBox("Survey completed.", MsgIcon::Information);
        entry_.CurrentPosition = 1;
        accept();
    }
}

void frmManualResponse::cmdDCAnswersPrevious_Click() {
    if (entry_.CurrentPosition == 1)
        return;
    if (!Store())
        return;
    // The position before, which after a jump need not be the page the user came from.
    MoveTo(entry_.CurrentPosition - 1);
}

} // namespace pollarix
