#include "collection/picRespondentList.h"

#include <QDateTime>
#include <QFontMetrics>
#include <QIcon>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>

#include <vector>

#include "collection/frmManualResponse.h"
#include "document/SurveyBatch.h"
#include "platform/base/Failure.h"
#include "platform/base/Formats.h"
#include "platform/base/Handlers.h"
#include "platform/controls/ComboBox.h"
#include "platform/controls/Grid.h"
#include "platform/controls/RedrawOff.h"
#include "platform/controls/Twips.h"
#include "platform/richtext/RichText.h"

namespace pollarix {

namespace {

constexpr const char* NoneSelected =
    "No Respondent has been selected. Please select a Respondent from the list to continue.";

constexpr const char* ListRespondents =
    "SELECT id FROM respondent ORDER BY submitteddate DESC, id DESC";

constexpr int Columns = 3;
// Of the columns at the start, twips.
constexpr int DateWidth = 3500;
constexpr int SampleWidth = 1600;
constexpr int SourceWidth = 1600;
constexpr int RoomBesideText = 12; // pixels
constexpr int Margin = ToPixels(120);
constexpr int Gap = ToPixels(90);

// A file that another program wrote may hold what is no date. It is shown as it stands, so that one
// such row does not raise a message at every look at the list.
QString DateText(const QString& stored) {
    try {
        return LongDateAndTime(StoredDate(stored.toUtf8()));
    } catch (const Failure&) {
        return stored;
    }
}

// Pixels of the longest date and time that the locale writes in a year.
int LongestDate(const QFontMetrics& font) {
    int longest = 0;
    // Late in the evening late in the month, when most numbers have two digits.
    QDateTime when(QDate(2024, 1, 22), QTime(22, 58, 58), Qt::UTC);
    for (int month = 0; month < 12; ++month)
        for (int day = 0; day < 7; ++day)
            longest =
                qMax(longest,
                     font.horizontalAdvance(LongDateAndTime(when.addMonths(month).addDays(day))));
    return longest;
}

} // namespace

picRespondentList::picRespondentList(ApplicationState& state, QWidget* parent)
    : QWidget(parent), state_(state) {
    setObjectName("picRespondentList");

    lblSample_ = new QLabel("Sample &question:", this);
    cboDCExampleQuestion_ = new ComboBox(this);
    cboDCExampleQuestion_->setObjectName("cboDCExampleQuestion");
    cboDCExampleQuestion_->setAccessibleName("Sample question");
    cboDCExampleQuestion_->Click = [this] { cboDCExampleQuestion_Click(); };
    lblSample_->setBuddy(cboDCExampleQuestion_);

    gRespondents_ = new Grid(this);
    gRespondents_->setObjectName("gRespondents");
    gRespondents_->setAccessibleName("Respondents");
    gRespondents_->SetSelectRows(true);
    // The first survey is opened, and its rows listed, before the start-up lays the grid out.
    PrepareGrid();
    gRespondents_->DblClick = [this] { gRespondents_DblClick(); };
    gRespondents_->KeyDown = [this](QKeyEvent& key) { gRespondents_KeyDown(key); };

    const auto button = [this](const char* name, const QString& caption, const QString& icon) {
        auto* made = new QPushButton(QIcon(":/icons/" + icon), caption, this);
        made->setObjectName(name);
        made->setAccessibleName(caption);
        return made;
    };
    cmdCreateResponse_ = button("cmdCreateResponse", "Add Respondent", "respondent-add.svg");
    cmdEditResponse_ = button("cmdEditResponse", "View/Edit Respondent", "respondent-edit.svg");
    cmdDeleteResponse_ = button("cmdDeleteResponse", "Delete Respondent", "respondent-delete.svg");
    connect(cmdCreateResponse_, &QPushButton::clicked, this,
            [this] { RunHandler([this] { cmdCreateResponse_Click(); }); });
    connect(cmdEditResponse_, &QPushButton::clicked, this,
            [this] { RunHandler([this] { gRespondents_DblClick(); }); });
    connect(cmdDeleteResponse_, &QPushButton::clicked, this,
            [this] { RunHandler([this] { cmdDeleteResponse_Click(); }); });
}

void picRespondentList::PrepareGrid() {
    gRespondents_->SetCols(Columns);
    gRespondents_->SetRows(1);
}

void picRespondentList::WriteHeads() {
    constexpr const char* heads[] = {"Date and Time", "Sample Response", "Originated From"};
    for (int col = 0; col < Columns; ++col) {
        gRespondents_->SetTextMatrix(0, col, heads[col]);
        gRespondents_->SetColAlignment(col, 1);
    }
    widths_.Start(*gRespondents_, {DateWidth, SampleWidth, SourceWidth});
}

void picRespondentList::WidenGrid() {
    widths_.Fill(*gRespondents_, 1, 100);
}

void picRespondentList::FitSample() {
    widths_.Fill(*gRespondents_, 1, 400);
}

// The start widths suit most locales in most fonts, but not all.
void picRespondentList::FitTexts() {
    const QFontMetrics font = gRespondents_->fontMetrics();
    const auto fit = [this](int col, int pixels) {
        widths_.Fit(*gRespondents_, col, ToTwips(pixels + RoomBesideText));
    };
    fit(0, LongestDate(font));
    fit(2, font.horizontalAdvance(gRespondents_->TextMatrix(0, 2)));
    FitSample();
}

void picRespondentList::LayOut(int windowWidth, int windowHeight, int visibleHeight) {
    const int comboHeight = cboDCExampleQuestion_->sizeHint().height();
    const int labelWidth = lblSample_->sizeHint().width();
    lblSample_->setGeometry(Margin, 0, labelWidth, comboHeight);
    cboDCExampleQuestion_->setGeometry(Margin + labelWidth + Gap, 0,
                                       qMax(200, qMin(640, width() / 2)), comboHeight);

    // In a large font the buttons take two lines and more.
    int left = Margin;
    int top = 0;
    int line = 0;
    for (QPushButton* placed : {cmdCreateResponse_, cmdEditResponse_, cmdDeleteResponse_}) {
        line = placed->sizeHint().height() + Gap;
        if (left > Margin && left + placed->sizeHint().width() > width()) {
            left = Margin;
            top += line;
        }
        placed->setGeometry(QRect({left, top}, placed->sizeHint()));
        left += placed->width() + Gap;
    }

    const int gridTop = comboHeight + Gap;
    const int gridWidth = windowWidth - ToPixels(500);
    // What is taken off leaves room for the buttons below, but in a large font not enough.
    const int gridHeight =
        qMin(windowHeight - gridTop - ToPixels(3500), visibleHeight - gridTop - top - line - Gap);
    if (gridWidth > 0 && gridHeight > 0)
        gRespondents_->setGeometry(Margin, gridTop, gridWidth, gridHeight);
    FitSample();
    const int below = gRespondents_->geometry().bottom() + 1 + Gap;
    for (QPushButton* placed : {cmdCreateResponse_, cmdEditResponse_, cmdDeleteResponse_})
        placed->move(placed->x(), placed->y() + below);
}

void picRespondentList::FillExampleQuestions() {
    const int remembered = cboDCExampleQuestion_->ListIndex();
    // Read before the box is cleared: a file that gives no questions leaves the box as it was.
    Recordset row = state_.SurveyConnection.Execute(
        "SELECT id, question, questionno FROM question WHERE qtype = 0 ORDER BY pos");
    cboDCExampleQuestion_->Clear();
    for (; !row.AtEnd(); row.MoveNext()) {
        cboDCExampleQuestion_->AddItem(row.NullToString("questionno") + ". " +
                                       PlainTextOf(row.NullToString("question")));
        cboDCExampleQuestion_->SetItemData(cboDCExampleQuestion_->NewIndex(), row.Integer("id"));
    }
    const bool any = cboDCExampleQuestion_->ListCount() > 0;
    lblSample_->setVisible(any);
    if (any) {
        ExampleQuestionEventsOn = false;
        // By position and not by question. Where there are fewer questions now, by none.
        cboDCExampleQuestion_->SetListIndex(
            remembered < cboDCExampleQuestion_->ListCount() ? remembered : -1);
        if (cboDCExampleQuestion_->ListIndex() == -1) {
            cboDCExampleQuestion_->SetListIndex(0);
            cboDCExampleQuestion_->setVisible(true);
        }
        ExampleQuestionEventsOn = true;
    } else {
        cboDCExampleQuestion_->setVisible(false);
    }
}

void picRespondentList::RefreshRespondentList(std::int64_t Row, std::int64_t RespondentID) {
    // Until they are read anew, no respondents are listed: the ones that were may be of another
    // file.
    if (!ListsAsItStands()) {
        gRespondents_->SetRows(1);
        listed_.reset();
    }
    waiting_.reset();
    FillExampleQuestions();
    if (isVisible()) {
        FillList(Row, RespondentID);
        return;
    }
    // A file that can't list them is told at once.
    state_.SurveyConnection.Execute(ListRespondents);
    waiting_ = Selection{Row, RespondentID};
}

void picRespondentList::ShowAnswer(std::int64_t RespondentID, std::int64_t QuestionID) {
    ExampleQuestionEventsOn = false;
    for (int i = 0; i < cboDCExampleQuestion_->ListCount(); ++i)
        if (cboDCExampleQuestion_->ItemData(i) == QuestionID)
            cboDCExampleQuestion_->SetListIndex(i);
    ExampleQuestionEventsOn = true;
    RefreshRespondentList(1, RespondentID);
}

void picRespondentList::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    // Whoever shows the list mostly refreshes it right after, and need not have it read twice.
    if (waiting_)
        QMetaObject::invokeMethod(
            this, [this] { RunHandler([this] { FillWaitingList(); }); }, Qt::QueuedConnection);
}

void picRespondentList::FillWaitingList() {
    if (!waiting_ || !isVisible() || !state_.SurveyConnection.IsOpen())
        return;
    const Selection selection = *waiting_;
    waiting_.reset();
    FillList(selection.Row, selection.RespondentID);
}

// Whether the rows are those of the open file, in which nothing has changed since.
bool picRespondentList::ListsAsItStands() const {
    return listed_ && state_.SurveyConnection.IsOpen() && *listed_ == state_.SurveyConnection.Now();
}

// Only the ids are read for every row. What a row shows is read when it comes on the screen.
std::vector<std::int64_t> picRespondentList::ReadIds() {
    std::vector<std::int64_t> ids;
    ids.reserve(
        static_cast<std::size_t>(state_.SurveyConnection.Count("SELECT count(*) FROM respondent")));
    for (Recordset row = state_.SurveyConnection.Execute(ListRespondents); !row.AtEnd();
         row.MoveNext())
        ids.push_back(row.Integer(0));
    return ids;
}

void picRespondentList::FillList(std::int64_t Row, std::int64_t RespondentID) {
    const bool asItStands = ListsAsItStands();
    const Connection::Moment now = state_.SurveyConnection.Now();
    const std::vector<std::int64_t> ids = asItStands ? std::vector<std::int64_t>() : ReadIds();
    if (!ids.empty())
        FitTexts();
    const RedrawOff redrawOff(*gRespondents_);
    listedFile_ = state_.SurveyConnection.Path();
    gRespondents_->SetProvider([this](int row, int col) { return CellText(row, col); });
    if (!asItStands) {
        gRespondents_->SetRows(static_cast<int>(ids.size()) + 1);
        for (std::size_t i = 0; i < ids.size(); ++i)
            gRespondents_->SetRowData(static_cast<int>(i) + 1, ids[i]);
        listed_ = now;
    }
    const int rows = gRespondents_->Rows();
    for (int row = 1; RespondentID != 0 && row < rows; ++row)
        if (gRespondents_->RowData(row) == RespondentID)
            Row = row;
    gRespondents_->SetRow(static_cast<int>(Row >= rows ? rows - 1 : Row));
    gRespondents_->SetCol(0);
    gRespondents_->SetColSel(2);
}

QString picRespondentList::CellText(int row, int col) const {
    // Between the closing of a survey and the next refresh there is nothing to show.
    if (!state_.SurveyConnection.IsOpen() || state_.SurveyConnection.Path() != listedFile_)
        return {};
    const std::int64_t id = gRespondents_->RowData(row);
    Connection& file = state_.SurveyConnection;
    if (col == 1)
        return SampleAnswer(id);
    const Recordset respondent =
        file.Execute("SELECT submitteddate, source FROM respondent WHERE id = ?", {id});
    if (respondent.AtEnd())
        return {};
    return col == 0 ? DateText(respondent.NullToString(0)) : respondent.NullToString(1);
}

QString picRespondentList::SampleAnswer(std::int64_t respondent) const {
    const int selected = cboDCExampleQuestion_->ListIndex();
    QString answer;
    if (selected != -1) {
        const Recordset found = state_.SurveyConnection.Execute(
            "SELECT simpleresponse FROM Respondent_Responses WHERE respondentid = ? AND "
            "questionid = ? ORDER BY id LIMIT 1",
            {respondent, cboDCExampleQuestion_->ItemData(selected)});
        if (!found.AtEnd())
            answer = found.NullToString(0);
    }
    return answer.isEmpty() ? "No Answer" : answer;
}

void picRespondentList::cboDCExampleQuestion_Click() {
    if (ExampleQuestionEventsOn)
        RefreshRespondentList(gRespondents_->Row(), 0);
}

// A survey that could not be opened to its end leaves the rows of the one before in the list.
bool picRespondentList::IsOneSelected() const {
    return gRespondents_->Row() > 0 && state_.SurveyConnection.Path() == listedFile_;
}

void picRespondentList::EnterAnswers() {
    entry_.Respondents = state_.SurveyConnection.Count("SELECT count(*) FROM respondent");
    {
        frmManualResponse form(state_, entry_, window());
        form.exec();
    }
    if (ShowRespondentScreen)
        ShowRespondentScreen();
    RefreshRespondentList(1, 0);
}

// What can't be written is told before anything is typed. A file that is held just now may be free
// when the first page is.
void picRespondentList::RequireWritableForEntry() {
    try {
        RequireWritable(state_.SurveyConnection);
    } catch (const Failure& failure) {
        if (!IsBusy(failure))
            throw;
    }
}

void picRespondentList::cmdCreateResponse_Click() {
    {
        SurveyBatch batch(state_);
        if (!batch)
            return;
        RequireWritableForEntry();
        TableInsert insert(state_.SurveyConnection, "Respondent", {"Source"});
        entry_.CurrentRespondentID = Narrow32(insert.Add({"Manual Entry"}));
        batch.Commit();
    }
    EnterAnswers();
    // A pile of forms: Enter begins with the next.
    cmdCreateResponse_->setFocus(Qt::TabFocusReason);
}

// A key held down opens no window, and answers no question, a second time.
void picRespondentList::gRespondents_KeyDown(QKeyEvent& key) {
    if (key.isAutoRepeat() || (key.modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier)
        return;
    if (key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter) {
        key.accept();
        gRespondents_DblClick();
    } else if (key.key() == Qt::Key_Delete) {
        key.accept();
        cmdDeleteResponse_Click();
    }
}

void picRespondentList::gRespondents_DblClick() {
    if (!IsOneSelected()) {
        state_.dialogs.MsgBox(NoneSelected, MsgIcon::Critical);
        return;
    }
    RequireWritableForEntry();
    entry_.CurrentRespondentID = Narrow32(gRespondents_->RowData(gRespondents_->Row()));
    EnterAnswers();
}

void picRespondentList::cmdDeleteResponse_Click() {
    if (!IsOneSelected()) {
        state_.dialogs.MsgBox(NoneSelected, MsgIcon::Critical);
        return;
    }
    const MsgAnswer answer = state_.dialogs.MsgBox(
        "Delete Respondent? This will delete all responses provided by this Respondent.",
        MsgIcon::Question, MsgButtons::YesNo);
    const int opening = state_.Openings();
    if (answer != MsgAnswer::Yes)
        return;
    SurveyBatch batch(state_);
    if (!batch || state_.Openings() != opening)
        return; // another list is shown by now
    const std::int64_t id = gRespondents_->RowData(gRespondents_->Row());
    state_.SurveyConnection.Run("DELETE FROM respondent_responses WHERE respondentid = ?", {id});
    state_.SurveyConnection.Run("DELETE FROM respondent WHERE id = ?", {id});
    batch.Commit();
    RefreshRespondentList(1, 0);
}

} // namespace pollarix
