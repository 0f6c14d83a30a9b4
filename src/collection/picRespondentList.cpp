#include "collection/picRespondentList.h"

#include <QIcon>
#include <QLabel>
#include <QPushButton>

#include "collection/frmManualResponse.h"
#include "platform/ComboBox.h"
#include "platform/Formats.h"
#include "platform/Grid.h"
#include "platform/Handlers.h"
#include "platform/RichText.h"
#include "platform/Twips.h"

namespace pollarix {

namespace {

constexpr const char* NoneSelected =
    "No Respondent has been selected. Please select a Respondent from the list to continue.";

constexpr int Margin = ToPixels(120);
constexpr int Gap = ToPixels(90);

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
    gRespondents_->SetCols(3);
    gRespondents_->SetRows(1);
}

void picRespondentList::WriteHeads() {
    constexpr const char* heads[] = {"Date and Time", "Sample Response", "Originated From"};
    constexpr int widths[] = {3500, 1600, 1600};
    for (int col = 0; col < 3; ++col) {
        gRespondents_->SetTextMatrix(0, col, heads[col]);
        gRespondents_->SetColAlignment(col, 1);
        gRespondents_->SetColWidth(col, widths[col]);
    }
}

void picRespondentList::WidenGrid() {
    int sum = 0;
    for (int col = 0; col < gRespondents_->Cols(); ++col)
        sum += gRespondents_->ColWidth(col);
    const int width = ToTwips(gRespondents_->width());
    if (width > sum)
        gRespondents_->SetColWidth(1, gRespondents_->ColWidth(1) + width - sum - 100);
}

void picRespondentList::LayOut(int windowWidth, int windowHeight) {
    const int comboHeight = cboDCExampleQuestion_->sizeHint().height();
    const int labelWidth = lblSample_->sizeHint().width();
    lblSample_->setGeometry(Margin, 0, labelWidth, comboHeight);
    cboDCExampleQuestion_->setGeometry(Margin + labelWidth + Gap, 0,
                                       qMax(200, qMin(640, width() / 2)), comboHeight);

    const int gridTop = comboHeight + Gap;
    const int gridWidth = windowWidth - ToPixels(500);
    const int gridHeight = windowHeight - gridTop - ToPixels(3500);
    if (gridWidth > 0 && gridHeight > 0)
        gRespondents_->setGeometry(Margin, gridTop, gridWidth, gridHeight);
    int sum = 0;
    for (int col = 0; col < gRespondents_->Cols(); ++col)
        sum += gRespondents_->ColWidth(col);
    if (gRespondents_->Cols() == 3 && sum < ToTwips(gRespondents_->width())) {
        const int rest = ToTwips(gRespondents_->width()) - gRespondents_->ColWidth(0) -
                         gRespondents_->ColWidth(2) - 400;
        if (rest > 0)
            gRespondents_->SetColWidth(1, rest);
    }

    int left = Margin;
    const int top = gRespondents_->geometry().bottom() + 1 + Gap;
    for (QPushButton* button : {cmdCreateResponse_, cmdEditResponse_, cmdDeleteResponse_}) {
        button->setGeometry(QRect({left, top}, button->sizeHint()));
        left += button->width() + Gap;
    }
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
    if (any) {
        ExampleQuestionEventsOn = false;
        // By position and not by question; fewer questions than before are a failure here.
        cboDCExampleQuestion_->SetListIndex(remembered);
        if (cboDCExampleQuestion_->ListIndex() == -1) {
            cboDCExampleQuestion_->SetListIndex(0);
            cboDCExampleQuestion_->setVisible(true);
        }
        ExampleQuestionEventsOn = true;
    } else {
        cboDCExampleQuestion_->setVisible(false);
    }
    lblSample_->setVisible(any);
}

void picRespondentList::RefreshRespondentList(std::int64_t Row, std::int64_t RespondentID) {
    FillExampleQuestions();

    gRespondents_->SetRedraw(false);
    // Only the ids are read for every row. What a row shows is read when it comes on the screen.
    listedFile_ = state_.SurveyConnection.Path();
    gRespondents_->SetProvider([this](int row, int col) { return CellText(row, col); });
    int last = 0;
    for (Recordset row = state_.SurveyConnection.Execute(
             "SELECT id FROM respondent ORDER BY submitteddate DESC, id DESC");
         !row.AtEnd(); row.MoveNext()) {
        const std::int64_t id = row.Integer(0);
        ++last;
        if (last >= gRespondents_->Rows())
            gRespondents_->SetRows(last + 1);
        gRespondents_->SetRowData(last, id);
        if (id == RespondentID)
            Row = last;
    }
    gRespondents_->SetRows(last + 1);
    if (Row >= gRespondents_->Rows())
        Row = gRespondents_->Rows() - 1;
    gRespondents_->SetRow(static_cast<int>(Row));
    gRespondents_->SetCol(0);
    gRespondents_->SetColSel(2);
    gRespondents_->SetRedraw(true);
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
    return col == 0 ? LongDateAndTime(StoredDate(respondent.Text(0))) : respondent.NullToString(1);
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

void picRespondentList::EnterAnswers() {
    {
        frmManualResponse form(state_, entry_, window());
        form.exec();
    }
    if (ShowScreen)
        ShowScreen("Respondent");
    RefreshRespondentList(1, 0);
}

void picRespondentList::cmdCreateResponse_Click() {
    TableInsert insert(state_.SurveyConnection, "Respondent", {"Source"});
    entry_.CurrentRespondentID = Narrow32(insert.Add({"Manual Entry"}));
    EnterAnswers();
}

void picRespondentList::gRespondents_DblClick() {
    if (gRespondents_->Row() == 0) {
        state_.dialogs.MsgBox(NoneSelected, MsgIcon::Critical);
        return;
    }
    entry_.CurrentRespondentID = Narrow32(gRespondents_->RowData(gRespondents_->Row()));
    EnterAnswers();
}

void picRespondentList::cmdDeleteResponse_Click() {
    if (gRespondents_->Row() == 0) {
        state_.dialogs.MsgBox(NoneSelected, MsgIcon::Critical);
        return;
    }
    const MsgAnswer answer = state_.dialogs.MsgBox(
        "Delete Respondent? This will delete all responses provided by this Respondent.",
        MsgIcon::Question, MsgButtons::YesNo);
    if (answer != MsgAnswer::Yes)
        return;
    const std::int64_t id = gRespondents_->RowData(gRespondents_->Row());
    WriteBatch batch(state_.SurveyConnection);
    state_.SurveyConnection.Run("DELETE FROM respondent_responses WHERE respondentid = ?", {id});
    state_.SurveyConnection.Run("DELETE FROM respondent WHERE id = ?", {id});
    batch.Commit();
    RefreshRespondentList(1, 0);
}

} // namespace pollarix
