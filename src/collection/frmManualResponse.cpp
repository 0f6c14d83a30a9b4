#include "collection/frmManualResponse.h"

#include <QKeyEvent>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QTextDocument>
#include <QVBoxLayout>

#include <utility>

#include "collection/AnswerList.h"
#include "collection/MatrixDelegate.h"
#include "collection/MatrixHead.h"
#include "document/clsQ.h"
#include "platform/base/Handlers.h"
#include "platform/controls/Grid.h"
#include "platform/controls/RedrawOff.h"
#include "platform/controls/ScreenTitle.h"
#include "platform/controls/Twips.h"
#include "platform/richtext/RichText.h"

namespace pollarix {

namespace {

// Widening of a matrix column beyond its text, in twips.
constexpr int LeastBesideText = 150;
constexpr int RoomBesideText = 200;

bool IsEnter(const QKeyEvent& event) {
    return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

// As it was typed: the editor's own way out would turn no-break spaces into plain ones.
QString TypedText(const QPlainTextEdit& editor) {
    QString text = editor.document()->toRawText();
    text.replace(QChar::ParagraphSeparator, "\r\n").replace(QChar::LineSeparator, "\r\n");
    return text;
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
    RunHandler([this] { Form_Load(); });
    if (!HasAnswers())
        cmdDCAnswersNext_->setFocus(); // else the first answer is where the keys start
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
    const auto panel = [&](const char* name, QWidget* control) {
        auto* made = new QWidget(picDCAnswers_);
        made->setObjectName(name);
        auto* inside = new QVBoxLayout(made);
        inside->setContentsMargins(0, 0, 0, 0);
        inside->addWidget(control);
        answers->addWidget(made, 1);
        made->hide();
        return made;
    };

    txtDCSimpleResponse_ = new QPlainTextEdit;
    txtDCSimpleResponse_->setObjectName("txtDCSimpleResponse");
    txtDCSimpleResponse_->setAccessibleName("Answer");
    txtDCSimpleResponse_->setTabChangesFocus(true);
    picDCResponseSimple_ = panel("picDCResponseSimple", txtDCSimpleResponse_);

    const auto list = [&](AnswerList::Kind kind, const char* buttons, const char* name) {
        auto* made = new AnswerList(kind, buttons, picDCAnswers_);
        made->setObjectName(name);
        made->Enter = [this] {
            if (cmdDCAnswersNext_->isDefault())
                cmdDCAnswersNext_->click();
        };
        answers->addWidget(made, 1);
        made->hide();
        return made;
    };
    chkDCCheck_ = list(AnswerList::Kind::Check, "chkDCCheck", "picDCResponseCheck");
    optDCRadio_ = list(AnswerList::Kind::Radio, "optDCRadio", "picDCResponseRadio");

    gMatrix_ = new Grid;
    gMatrix_->setObjectName("gMatrix");
    gMatrix_->setAccessibleName("Answers");
    auto* head = new MatrixHead(gMatrix_);
    head->Click = [this] { gMatrix_Click(); };
    gMatrix_->setVerticalHeader(head);
    gMatrix_->SetFixedCols(1);
    gMatrix_->setItemDelegate(new MatrixDelegate(gMatrix_));
    gMatrix_->Click = [this] { gMatrix_Click(); };
    gMatrix_->KeyDown = [this](QKeyEvent& event) { gMatrix_KeyDown(event); };
    picDCResponseMatrix_ = panel("picDCResponseMatrix", gMatrix_);
}

void frmManualResponse::BuildFooter() {
    auto* picDCFooter = new QWidget(this);
    picDCFooter->setObjectName("picDCFooter");
    layout()->addWidget(picDCFooter);
    auto* footer = new QHBoxLayout(picDCFooter);
    footer->setContentsMargins(0, 0, 0, 0);
    footer->addStretch();
    const auto button = [&](const char* name, const QString& caption) {
        auto* made = new QPushButton(caption, picDCFooter);
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
    entry_.CurrentPosition = 1;
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
    if (!IsEnter(*event)) {
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

void frmManualResponse::ShowPanel(QWidget* panel) {
    for (QWidget* other : {picDCResponseSimple_, static_cast<QWidget*>(chkDCCheck_),
                           static_cast<QWidget*>(optDCRadio_), picDCResponseMatrix_})
        other->setVisible(other == panel);
}

bool frmManualResponse::RespondentAnswers_ShowQuestion() {
    const Recordset row = state_.SurveyConnection.Execute(
        "SELECT id, question, questionno, qtype FROM question WHERE pos = ?",
        {entry_.CurrentPosition});
    isRead_ = true;
    if (row.AtEnd())
        return false;
    const std::int64_t id = row.Integer("id");
    const std::int32_t qtype = Narrow32(row.Integer("qtype"));
    QString text = PlainTextOf(row.NullToString("question"));
    const QString number = row.NullToString("questionno");
    if (qtype != kind::Text && !number.isEmpty())
        text.prepend(number + ". ");
    lblDCQuestion_->setText(text);
    scrollDCQuestion_->verticalScrollBar()->setValue(0);
    entry_.CurrentQType = qtype;
    FitQuestion();

    // The control that the user was in goes with the page before.
    const bool focusGoes =
        isVisible() && focusWidget() && picDCAnswers_->isAncestorOf(focusWidget());
    switch (qtype) {
    case kind::OpenEnded:
        ShowOpenEnded(id);
        break;
    case kind::Check:
        ShowCheck(id);
        break;
    case kind::Radio:
        ShowRadio(id);
        break;
    case kind::Matrix:
        ShowMatrix(id);
        break;
    case kind::Text:
        ShowPanel(nullptr);
        cmdDCAnswersNext_->setDefault(true);
        break;
    default:
        return true; // a kind from elsewhere: the panels stay as they are
    }
    // Where a page takes no focus by itself, keys go on working on what it shows.
    if (focusGoes && !HasAnswers())
        cmdDCAnswersNext_->setFocus();
    else if (focusGoes && qtype == kind::Radio)
        optDCRadio_->FocusButton(optDCRadio_->EntryButton());
    return true;
}

bool frmManualResponse::HasAnswers() const {
    switch (entry_.CurrentQType) {
    case kind::OpenEnded:
        return true;
    case kind::Check:
        return chkDCCheck_->IsButtonVisible(0);
    case kind::Radio:
        return optDCRadio_->IsButtonVisible(0);
    case kind::Matrix:
        return !gMatrix_->isHidden();
    default:
        return false;
    }
}

void frmManualResponse::ShowOpenEnded(std::int64_t question) {
    txtDCSimpleResponse_->setPlainText({});
    ShowPanel(picDCResponseSimple_);
    const Recordset answer = state_.SurveyConnection.Execute(
        "SELECT simpleresponse FROM Respondent_Responses WHERE questionid = ? AND respondentid = ? "
        "ORDER BY id",
        {question, entry_.CurrentRespondentID});
    if (!answer.AtEnd())
        txtDCSimpleResponse_->setPlainText(answer.Text(0));
    cmdDCAnswersNext_->setDefault(false); // Enter makes a new line
    if (isVisible())
        txtDCSimpleResponse_->setFocus();
}

int frmManualResponse::LoadAnswers(AnswerList& list, std::int64_t question) {
    list.Clear();
    int count = 0;
    for (Recordset row = state_.SurveyConnection.Execute(
             "SELECT id, name FROM response WHERE questionid = ? ORDER BY pos", {question});
         !row.AtEnd(); row.MoveNext(), ++count)
        list.Add(row.NullToString("name"), row.Integer("id"));
    return count;
}

bool frmManualResponse::IsAnswered(std::int64_t response, std::int64_t question) {
    return !state_.SurveyConnection
                .Execute("SELECT id FROM Respondent_Responses WHERE responseid = ? AND "
                         "questionid = ? AND respondentid = ?",
                         {response, question, entry_.CurrentRespondentID})
                .AtEnd();
}

void frmManualResponse::ShowCheck(std::int64_t question) {
    ShowPanel(chkDCCheck_);
    const int count = LoadAnswers(*chkDCCheck_, question);
    for (int i = 0; i < count; ++i)
        chkDCCheck_->SetValue(i, IsAnswered(chkDCCheck_->Tag(i), question));
    if (isVisible() && count > 0)
        chkDCCheck_->FocusButton(0);
    cmdDCAnswersNext_->setDefault(true);
}

void frmManualResponse::ShowRadio(std::int64_t question) {
    ShowPanel(optDCRadio_);
    const int count = LoadAnswers(*optDCRadio_, question);
    for (int i = 0; i < count; ++i)
        if (IsAnswered(optDCRadio_->Tag(i), question))
            optDCRadio_->SetValue(i, true);
    cmdDCAnswersNext_->setDefault(true);
}

// Which button Enter stands for is left alone: it is what the page before has made it.
void frmManualResponse::ShowMatrix(std::int64_t question) {
    ShowPanel(picDCResponseMatrix_);
    const RedrawOff redrawOff(*gMatrix_);
    std::int16_t group = -1;
    const bool rows = LoadMatrixRows(question, group);
    const bool points = LoadMatrixPoints(group);
    if (rows && points) {
        LoadMatrixAnswers(question);
        if (isVisible())
            gMatrix_->setFocus();
    }
    // Every sub question starts answered with the scale's first point, on purpose. On a scale
    // without points the grid has no column 1, and choosing it fails.
    for (int row = 1; row < gMatrix_->Rows(); ++row) {
        if (ChosenCol(row) > 0)
            continue;
        gMatrix_->SetRow(row);
        gMatrix_->SetCol(1);
        gMatrix_->SetText(MatrixDelegate::Chosen);
        gMatrix_->SetCellAlignment(row, 1, 4);
    }
    if (gMatrix_->Rows() > 1) { // the keys start at the top
        gMatrix_->SetRow(1);
        gMatrix_->SetCol(ChosenCol(1));
    }
}

bool frmManualResponse::LoadMatrixRows(std::int64_t question, std::int16_t& group) {
    Recordset row = state_.SurveyConnection.Execute(
        "SELECT id, name, responsematrixgroupid FROM response WHERE questionid = ? ORDER BY pos",
        {question});
    const bool any = !row.AtEnd();
    // A scale that can't be read leaves the grid as the page before had it.
    if (any)
        group = Narrow16(row.Integer("responsematrixgroupid"));
    gMatrix_->setVisible(any);
    gMatrix_->SetRows(1);
    gMatrix_->SetCols(1);
    for (; !row.AtEnd(); row.MoveNext()) {
        const int at = gMatrix_->Rows();
        gMatrix_->SetRows(at + 1);
        AddMatrixHead(at, 0, row.NullToString("name") + ' ');
        gMatrix_->SetRowData(at, row.Integer("id"));
        gMatrix_->SetCellAlignment(at, 0, 7);
    }
    return any;
}

bool frmManualResponse::LoadMatrixPoints(std::int16_t group) {
    Recordset point = state_.SurveyConnection.Execute(
        "SELECT id, name FROM responsematrix WHERE responsematrixgroupid = ? ORDER BY pos",
        {group});
    gMatrix_->setVisible(!point.AtEnd());
    if (point.AtEnd())
        return false;
    for (; !point.AtEnd(); point.MoveNext()) {
        const int at = gMatrix_->Cols();
        gMatrix_->SetCols(at + 1);
        AddMatrixHead(0, at, point.NullToString("name"));
        gMatrix_->SetColData(at, point.Integer("id"));
        gMatrix_->SetCellAlignment(0, at, 3);
    }
    return true;
}

void frmManualResponse::LoadMatrixAnswers(std::int64_t question) {
    for (int row = 1; row < gMatrix_->Rows(); ++row) {
        const Recordset answer = state_.SurveyConnection.Execute(
            "SELECT id, ResponseMatrixID FROM Respondent_Responses WHERE questionid = ? AND "
            "responseid = ? AND respondentid = ? ORDER BY id",
            {question, gMatrix_->RowData(row), entry_.CurrentRespondentID});
        if (answer.AtEnd())
            continue;
        for (int col = 1; col < gMatrix_->Cols(); ++col) {
            const bool chosen = !answer.IsNull(1) && answer.Integer(1) == gMatrix_->ColData(col);
            gMatrix_->SetTextMatrix(row, col, chosen ? MatrixDelegate::Chosen : "");
            gMatrix_->SetCellAlignment(row, col, 4);
        }
    }
}

void frmManualResponse::AddMatrixHead(int row, int col, const QString& text) {
    gMatrix_->SetTextMatrix(row, col, text);
    const int width = ToTwips(fontMetrics().horizontalAdvance(text));
    if (width + LeastBesideText > gMatrix_->ColWidth(col))
        gMatrix_->SetColWidth(col, width + RoomBesideText);
}

int frmManualResponse::ChosenCol(int row) const {
    for (int col = 1; col < gMatrix_->Cols(); ++col)
        if (gMatrix_->TextMatrix(row, col) == MatrixDelegate::Chosen)
            return col;
    return 0;
}

void frmManualResponse::gMatrix_Click() {
    const int row = gMatrix_->Row();
    const int chosen = gMatrix_->Col();
    if (row < 1 || chosen < 1)
        return;
    for (int col = 1; col < gMatrix_->Cols(); ++col)
        gMatrix_->SetTextMatrix(row, col, {});
    gMatrix_->SetTextMatrix(row, chosen, MatrixDelegate::Chosen);
    gMatrix_->SetCellAlignment(row, chosen, 4);
}

void frmManualResponse::gMatrix_KeyDown(QKeyEvent& event) {
    // A default button takes Enter before any control sees it.
    if (event.key() != Qt::Key_Space && (!IsEnter(event) || cmdDCAnswersNext_->isDefault()))
        return;
    gMatrix_Click();
    event.accept();
}

void frmManualResponse::StoreOpenEnded(std::int64_t question) {
    TableInsert insert(state_.SurveyConnection, "Respondent_Responses",
                       {"QuestionID", "RespondentID", "ResponseID", "SimpleResponse"});
    // 1 refers to nothing: an open ended question has no responses.
    insert.Add({question, entry_.CurrentRespondentID, 1, TypedText(*txtDCSimpleResponse_)});
}

void frmManualResponse::StoreChecked(const AnswerList& list, std::int64_t question) {
    TableInsert insert(state_.SurveyConnection, "Respondent_Responses",
                       {"QuestionID", "RespondentID", "ResponseID", "SimpleResponse"});
    for (int i = 0; i <= list.UBound(); ++i) {
        if (!list.Value(i))
            continue;
        if (&list == optDCRadio_) { // only a radio answer leads anywhere
            const Recordset jump = state_.SurveyConnection.Execute(
                "SELECT logicjumptoquestionid FROM response WHERE id = ?", {list.Tag(i)});
            if (!jump.AtEnd() && !jump.IsNull(0))
                JumpTarget = Narrow16(jump.Integer(0));
        }
        insert.Add({question, entry_.CurrentRespondentID, list.Tag(i), ""});
    }
}

void frmManualResponse::StoreMatrix(std::int64_t question) {
    TableInsert insert(
        state_.SurveyConnection, "Respondent_Responses",
        {"QuestionID", "RespondentID", "ResponseID", "SimpleResponse", "ResponseMatrixID"});
    for (int col = 1; col < gMatrix_->Cols(); ++col)
        for (int row = 1; row < gMatrix_->Rows(); ++row)
            if (gMatrix_->TextMatrix(row, col) == MatrixDelegate::Chosen)
                insert.Add({question, entry_.CurrentRespondentID, gMatrix_->RowData(row), "",
                            gMatrix_->ColData(col)});
}

void frmManualResponse::ShowDCAnswer() {
    JumpTarget = -1;
    Connection& file = state_.SurveyConnection;
    std::int64_t question = 0;
    {
        const Recordset row =
            file.Execute("SELECT ID FROM question WHERE pos = ?", {entry_.CurrentPosition});
        if (row.AtEnd()) {
            state_.dialogs.MsgBox("Error cmdDCAnswersNext_Click", MsgIcon::Critical);
            return;
        }
        question = row.Integer(0);
    }
    WriteBatch batch(file);
    file.Run("DELETE FROM Respondent_Responses WHERE RespondentID = ? AND questionid = ?",
             {entry_.CurrentRespondentID, question});
    switch (HasAnswers() ? entry_.CurrentQType : kind::Text) {
    case kind::OpenEnded:
        StoreOpenEnded(question);
        break;
    case kind::Check:
        StoreChecked(*chkDCCheck_, question);
        break;
    case kind::Radio:
        StoreChecked(*optDCRadio_, question);
        break;
    case kind::Matrix:
        StoreMatrix(question);
        break;
    default:
        break;
    }
    batch.Commit();
}

void frmManualResponse::cmdDCAnswersNext_Click() {
    if (!isRead_) { // no page is on the screen that could be stored
        Form_Load();
        return;
    }
    ShowDCAnswer();
    std::int32_t next = entry_.CurrentPosition;
    if (JumpTarget == -1) {
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
    ShowDCAnswer();
    // The position before, which after a jump need not be the page the user came from.
    MoveTo(entry_.CurrentPosition - 1);
}

} // namespace pollarix
