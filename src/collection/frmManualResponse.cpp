#include "collection/frmManualResponse.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QStackedLayout>
#include <QTextLayout>
#include <QVBoxLayout>

#include <cmath>

#include "platform/Grid.h"
#include "platform/Handlers.h"
#include "platform/RichText.h"
#include "platform/ScreenTitle.h"
#include "platform/Twips.h"

namespace pollarix {

namespace {

constexpr const char* Yes = "Yes";

// A button's text is one line unless it holds line ends, so long answers are broken to the width by
// hand. An "&" is text here, not a mnemonic.
QString Wrapped(const QString& text, const QFont& font, int width) {
    QStringList lines;
    for (const QString& paragraph : text.split('\n')) {
        QTextLayout layout(paragraph, font);
        layout.beginLayout();
        for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
            line.setLineWidth(width);
            lines << paragraph.mid(line.textStart(), line.textLength());
        }
        layout.endLayout();
        if (paragraph.isEmpty())
            lines << QString();
    }
    return lines.join('\n').replace('&', "&&");
}

} // namespace

frmManualResponse::frmManualResponse(ApplicationState& state, ManualEntryState& entry,
                                     QWidget* parent)
    : QDialog(parent), state_(state), entry_(entry) {
    setObjectName("frmManualResponse");
    setWindowTitle("Survey Response");
    BuildPanels();
    resize(680, 520);

    entry_.CurrentPosition = 1;
    RespondentAnswers_ShowQuestion();
}

void frmManualResponse::BuildPanels() {
    auto* page = new QVBoxLayout(this);
    page->addWidget(NewInstructions(
        "Instructions - You are currently entering the responses to the survey. Select the answer "
        "then press Next. For more help press F1.",
        this));

    lblDCQuestion_ = NewHeading({}, this);
    lblDCQuestion_->setObjectName("lblDCQuestion");
    lblDCQuestion_->setWordWrap(true);
    lblDCQuestion_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    lblDCQuestion_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* question = new QScrollArea(this);
    question->setObjectName("scrollDCQuestion");
    question->setFrameShape(QFrame::NoFrame);
    question->setWidgetResizable(true);
    question->setFocusPolicy(Qt::NoFocus);
    question->setWidget(lblDCQuestion_);
    page->addWidget(question, 1);

    picDCAnswers_ = new QWidget(this);
    picDCAnswers_->setObjectName("picDCAnswers");
    auto* answers = new QVBoxLayout(picDCAnswers_);
    answers->setContentsMargins(0, 0, 0, 0);
    page->addWidget(picDCAnswers_, 3);

    txtDCSimpleResponse_ = new QPlainTextEdit;
    txtDCSimpleResponse_->setObjectName("txtDCSimpleResponse");
    txtDCSimpleResponse_->setAccessibleName("Answer");
    txtDCSimpleResponse_->setTabChangesFocus(true);
    auto* simple = new QWidget;
    simple->setObjectName("picDCResponseSimple");
    auto* simpleLayout = new QVBoxLayout(simple);
    simpleLayout->setContentsMargins(0, 0, 0, 0);
    simpleLayout->addWidget(txtDCSimpleResponse_);

    radioGroup_ = new QButtonGroup(this);
    const auto buttons = [](AnswerButtons& list, const char* name) {
        auto* content = new QWidget;
        list.column = new QVBoxLayout(content);
        list.column->setSpacing(2);
        list.column->addStretch();
        list.panel = content;
        content->setObjectName(name);
    };
    buttons(chkDCCheck_, "columnDCCheck");
    buttons(optDCRadio_, "columnDCRadio");
    QWidget* check = NewScrolledPanel("picDCResponseCheck", chkDCCheck_.panel);
    QWidget* radio = NewScrolledPanel("picDCResponseRadio", optDCRadio_.panel);
    NewButton(chkDCCheck_, false)->hide();
    NewButton(optDCRadio_, true)->hide();

    gMatrix_ = new Grid;
    gMatrix_->setObjectName("gMatrix");
    gMatrix_->setAccessibleName("Answers");
    gMatrix_->SetFixedCols(1);
    gMatrix_->Click = [this] { gMatrix_Click(); };
    gMatrix_->KeyDown = [this](QKeyEvent& event) {
        if (event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter ||
            event.key() == Qt::Key_Space)
            gMatrix_Click();
    };
    auto* matrix = new QWidget;
    matrix->setObjectName("picDCResponseMatrix");
    auto* matrixLayout = new QVBoxLayout(matrix);
    matrixLayout->setContentsMargins(0, 0, 0, 0);
    matrixLayout->addWidget(gMatrix_);

    panels_ = {simple, check, radio, matrix};
    for (QWidget* panel : panels_) {
        answers->addWidget(panel, 1);
        panel->hide();
    }

    auto* picDCFooter = new QWidget(this);
    picDCFooter->setObjectName("picDCFooter");
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
    page->addWidget(picDCFooter);

    connect(cmdDCAnswersPrevious_, &QPushButton::clicked, this,
            [this] { RunHandler([this] { cmdDCAnswersPrevious_Click(); }); });
    connect(cmdDCAnswersNext_, &QPushButton::clicked, this,
            [this] { RunHandler([this] { cmdDCAnswersNext_Click(); }); });
    // The page shown is not stored; pages stored before stay.
    connect(cmdDCAnswersCancel_, &QPushButton::clicked, this, &QDialog::reject);
}

QWidget* frmManualResponse::NewScrolledPanel(const char* name, QWidget* content) {
    auto* area = new QScrollArea;
    area->setObjectName(name);
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidget(content);
    return area;
}

QAbstractButton* frmManualResponse::NewButton(AnswerButtons& list, bool radio) {
    QAbstractButton* button = nullptr;
    if (radio) {
        button = new QRadioButton(list.panel);
        radioGroup_->addButton(button);
    } else {
        button = new QCheckBox(list.panel);
    }
    button->setObjectName(
        QString(radio ? "optDCRadio(%1)" : "chkDCCheck(%1)").arg(list.buttons.size()));
    // Each stands below the one before; the stretch stays last.
    list.column->insertWidget(list.column->count() - 1, button);
    list.buttons.push_back(button);
    list.texts.emplace_back();
    list.tags.push_back(0);
    return button;
}

void frmManualResponse::ShowPanel(QWidget* shown) {
    for (QWidget* panel : panels_)
        panel->setVisible(panel == shown);
}

void frmManualResponse::WrapTexts(AnswerButtons& list) {
    const int width = list.panel->parentWidget()->width() - 60;
    for (std::size_t i = 0; i < list.buttons.size(); ++i)
        list.buttons[i]->setText(Wrapped(list.texts[i], list.buttons[i]->font(), qMax(width, 120)));
}

void frmManualResponse::resizeEvent(QResizeEvent* event) {
    QDialog::resizeEvent(event);
    WrapTexts(chkDCCheck_);
    WrapTexts(optDCRadio_);
}

bool frmManualResponse::RespondentAnswers_ShowQuestion() {
    const Recordset row = state_.SurveyConnection.Execute(
        "SELECT id, question, questionno, qtype FROM question WHERE pos = ?",
        {entry_.CurrentPosition});
    if (row.AtEnd())
        return false;
    const std::int64_t id = row.Integer("id");
    const std::int32_t qtype = Narrow32(row.Integer("qtype"));
    QString text = PlainTextOf(row.NullToString("question"));
    const QString number = row.NullToString("questionno");
    if (qtype != 4 && !number.isEmpty())
        text.prepend(number + ". ");
    lblDCQuestion_->setText(text);
    entry_.CurrentQType = qtype;
    switch (qtype) {
    case 0:
        ShowOpenEnded(id);
        break;
    case 1:
        ShowCheck(id);
        break;
    case 2:
        ShowRadio(id);
        break;
    case 3:
        ShowMatrix(id);
        break;
    case 4:
        ShowPanel(nullptr);
        cmdDCAnswersNext_->setDefault(true);
        break;
    default:
        break; // a kind from elsewhere: the panels stay as they are
    }
    return true;
}

void frmManualResponse::ShowOpenEnded(std::int64_t question) {
    txtDCSimpleResponse_->setPlainText({});
    ShowPanel(panels_[0]);
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

int frmManualResponse::LoadButtons(AnswerButtons& list, bool radio, std::int64_t question) {
    while (list.buttons.size() > 1) {
        delete list.buttons.back();
        list.buttons.pop_back();
        list.texts.pop_back();
        list.tags.pop_back();
    }
    // An exclusive group keeps one button on; at first none may be.
    radioGroup_->setExclusive(false);
    int i = 0;
    for (Recordset row = state_.SurveyConnection.Execute(
             "SELECT id, name FROM response WHERE questionid = ? ORDER BY pos", {question});
         !row.AtEnd(); row.MoveNext(), ++i) {
        QAbstractButton* button = i == 0 ? list.buttons[0] : NewButton(list, radio);
        if (!radio)
            static_cast<QCheckBox*>(button)->setTristate(false);
        list.texts[i] = row.NullToString("name");
        list.tags[i] = row.Integer("id");
        button->setAccessibleName(list.texts[i]);
        button->setCheckable(true);
        button->setChecked(false);
        button->setVisible(true);
    }
    if (i == 0)
        list.buttons[0]->setVisible(false);
    radioGroup_->setExclusive(true);
    WrapTexts(list);
    return i;
}

bool frmManualResponse::IsAnswered(std::int64_t response, std::int64_t question) {
    return !state_.SurveyConnection
                .Execute("SELECT id FROM Respondent_Responses WHERE responseid = ? AND "
                         "questionid = ? AND respondentid = ?",
                         {response, question, entry_.CurrentRespondentID})
                .AtEnd();
}

void frmManualResponse::ShowCheck(std::int64_t question) {
    ShowPanel(panels_[1]);
    const int count = LoadButtons(chkDCCheck_, false, question);
    for (int i = 0; i < count; ++i)
        chkDCCheck_.buttons[i]->setChecked(IsAnswered(chkDCCheck_.tags[i], question));
    if (isVisible() && count > 0)
        chkDCCheck_.buttons[0]->setFocus();
    cmdDCAnswersNext_->setDefault(true);
}

void frmManualResponse::ShowRadio(std::int64_t question) {
    ShowPanel(panels_[2]);
    const int count = LoadButtons(optDCRadio_, true, question);
    for (int i = 0; i < count; ++i)
        if (IsAnswered(optDCRadio_.tags[i], question))
            optDCRadio_.buttons[i]->setChecked(true);
    cmdDCAnswersNext_->setDefault(true);
}

void frmManualResponse::AddMatrixHead(int row, int col, const QString& text) {
    gMatrix_->SetTextMatrix(row, col, text);
    const int width = ToTwips(fontMetrics().horizontalAdvance(text));
    if (width + 150 > gMatrix_->ColWidth(col))
        gMatrix_->SetColWidth(col, width + 200);
}

void frmManualResponse::ShowMatrix(std::int64_t question) {
    ShowPanel(panels_[3]);
    Connection& file = state_.SurveyConnection;
    std::int16_t group = -1;
    bool rows = false;
    bool points = false;
    {
        Recordset row = file.Execute(
            "SELECT id, name, responsematrixgroupid FROM response WHERE questionid = ? ORDER BY "
            "pos",
            {question});
        rows = !row.AtEnd();
        gMatrix_->setVisible(rows);
        if (rows)
            group = Narrow16(row.Integer("responsematrixgroupid"));
        gMatrix_->SetRows(1);
        gMatrix_->SetCols(1);
        for (; !row.AtEnd(); row.MoveNext()) {
            const int at = gMatrix_->Rows();
            gMatrix_->SetRows(at + 1);
            AddMatrixHead(at, 0, row.NullToString("name") + ' ');
            gMatrix_->SetRowData(at, row.Integer("id"));
            gMatrix_->SetCellAlignment(at, 0, 7);
        }
    }
    {
        Recordset point = file.Execute(
            "SELECT id, name FROM responsematrix WHERE responsematrixgroupid = ? ORDER BY pos",
            {group});
        points = !point.AtEnd();
        gMatrix_->setVisible(points);
        for (; !point.AtEnd(); point.MoveNext()) {
            const int at = gMatrix_->Cols();
            gMatrix_->SetCols(at + 1);
            AddMatrixHead(0, at, point.NullToString("name"));
            gMatrix_->SetColData(at, point.Integer("id"));
            gMatrix_->SetCellAlignment(0, at, 3);
        }
    }
    if (rows && points) {
        for (int row = 1; row < gMatrix_->Rows(); ++row) {
            const Recordset answer = file.Execute(
                "SELECT id, ResponseMatrixID FROM Respondent_Responses WHERE questionid = ? AND "
                "responseid = ? AND respondentid = ? ORDER BY id",
                {question, gMatrix_->RowData(row), entry_.CurrentRespondentID});
            if (answer.AtEnd())
                continue;
            for (int col = 1; col < gMatrix_->Cols(); ++col) {
                const bool chosen =
                    !answer.IsNull(1) && answer.Integer(1) == gMatrix_->ColData(col);
                gMatrix_->SetTextMatrix(row, col, chosen ? Yes : "");
                gMatrix_->SetCellAlignment(row, col, 4);
            }
        }
        if (isVisible())
            gMatrix_->setFocus();
    }
    // Every sub question starts answered with the scale's first point, on purpose. On a scale
    // without points the grid has no column 1, and choosing it fails.
    for (int row = 1; row < gMatrix_->Rows(); ++row) {
        bool answered = false;
        for (int col = 1; col < gMatrix_->Cols(); ++col)
            answered = answered || gMatrix_->TextMatrix(row, col) == Yes;
        if (answered)
            continue;
        gMatrix_->SetRow(row);
        gMatrix_->SetCol(1);
        gMatrix_->SetText(Yes);
        gMatrix_->SetCellAlignment(row, 1, 4);
    }
}

void frmManualResponse::gMatrix_Click() {
    const int row = gMatrix_->Row();
    const int chosen = gMatrix_->Col();
    if (row < 1 || chosen < 1)
        return;
    for (int col = 1; col < gMatrix_->Cols(); ++col)
        gMatrix_->SetTextMatrix(row, col, {});
    gMatrix_->SetTextMatrix(row, chosen, Yes);
    gMatrix_->SetCellAlignment(row, chosen, 4);
}

void frmManualResponse::StoreButtons(const AnswerButtons& list, bool radio, std::int64_t question) {
    if (list.buttons[0]->isHidden())
        return;
    TableInsert insert(state_.SurveyConnection, "Respondent_Responses",
                       {"QuestionID", "RespondentID", "ResponseID", "SimpleResponse"});
    for (std::size_t i = 0; i < list.buttons.size(); ++i) {
        if (!list.buttons[i]->isChecked())
            continue;
        if (radio) {
            const Recordset jump = state_.SurveyConnection.Execute(
                "SELECT logicjumptoquestionid FROM response WHERE id = ?", {list.tags[i]});
            if (!jump.AtEnd() && !jump.IsNull(0))
                JumpTarget = Narrow16(jump.Integer(0));
        }
        insert.Add({question, entry_.CurrentRespondentID, list.tags[i], ""});
    }
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
    switch (entry_.CurrentQType) {
    case 0: {
        // 1 refers to nothing: an open ended question has no responses.
        TableInsert insert(file, "Respondent_Responses",
                           {"QuestionID", "RespondentID", "ResponseID", "SimpleResponse"});
        QString answer = txtDCSimpleResponse_->toPlainText();
        answer.replace('\n', "\r\n");
        insert.Add({question, entry_.CurrentRespondentID, 1, answer});
        break;
    }
    case 1:
        StoreButtons(chkDCCheck_, false, question);
        break;
    case 2:
        StoreButtons(optDCRadio_, true, question);
        break;
    case 3: {
        if (gMatrix_->isHidden())
            break;
        TableInsert insert(
            file, "Respondent_Responses",
            {"QuestionID", "RespondentID", "ResponseID", "SimpleResponse", "ResponseMatrixID"});
        for (int col = 1; col < gMatrix_->Cols(); ++col)
            for (int row = 1; row < gMatrix_->Rows(); ++row)
                if (gMatrix_->TextMatrix(row, col) == Yes)
                    insert.Add({question, entry_.CurrentRespondentID, gMatrix_->RowData(row), "",
                                gMatrix_->ColData(col)});
        break;
    }
    default:
        break;
    }
    batch.Commit();
}

void frmManualResponse::cmdDCAnswersNext_Click() {
    ShowDCAnswer();
    if (JumpTarget == -1) {
        ++entry_.CurrentPosition;
    } else {
        // A target that is gone, or the page itself, shows this page again.
        const Recordset target =
            state_.SurveyConnection.Execute("SELECT pos FROM question WHERE id = ?", {JumpTarget});
        if (!target.AtEnd())
            entry_.CurrentPosition = Narrow32(target.Integer(0));
    }
    if (!RespondentAnswers_ShowQuestion()) {
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
    --entry_.CurrentPosition;
    RespondentAnswers_ShowQuestion();
}

} // namespace pollarix
