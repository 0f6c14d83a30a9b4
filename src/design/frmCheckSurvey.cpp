#include "design/frmCheckSurvey.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

#include "platform/base/Failure.h"
#include "platform/base/Handlers.h"
#include "platform/base/ShownText.h"
#include "platform/controls/Grid.h"
#include "platform/controls/OnClick.h"
#include "platform/controls/RedrawOff.h"
#include "platform/controls/Twips.h"
#include "platform/desktop/HourGlass.h"

namespace pollarix {

namespace {

constexpr int RoomBesideText = 16; // pixels
constexpr int LettersOfQuestion = 34;
constexpr int LinesOfFinding = 3;

QString GravityText(Finding::Gravity gravity) {
    return gravity == Finding::Gravity::Problem ? "Problem" : "Note";
}

QString CountText(std::size_t problems, std::size_t notes) {
    const auto count = [](std::size_t number, const char* what) {
        return QString("%1 %2%3").arg(number).arg(what, number == 1 ? "" : "s");
    };
    return count(problems, "problem") + ", " + count(notes, "note") + ". ";
}

} // namespace

std::vector<Finding> CheckOpenSurvey(ApplicationState& state) {
    std::optional<SurveyScales> scales;
    if (state.SurveyConnection.IsOpen())
        scales = ReadScales(state.SurveyConnection);
    return CheckSurvey(SurveySnapshot::Take(state.CurrentSurvey), scales);
}

frmCheckSurvey::frmCheckSurvey(ApplicationState& state, QWidget* parent)
    : QWidget(parent, Qt::Window), state_(state), lblCount_(new QLabel(this)),
      gFindings_(new Grid(this)), lblFinding_(new QLabel(this)),
      cmdGoTo_(new QPushButton("&Go to Question", this)) {
    setObjectName("frmCheckSurvey");
    setWindowTitle("Check Survey");
    BuildControls();
    resize(780, 440);
}

void frmCheckSurvey::BuildControls() {
    lblCount_->setObjectName("lblCount");
    lblCount_->setTextFormat(Qt::PlainText);
    lblCount_->setWordWrap(true);
    gFindings_->setObjectName("gFindings");
    gFindings_->setAccessibleName("Findings");
    gFindings_->SetSelectRows(true);
    gFindings_->SetCols(3);
    gFindings_->SetTextMatrix(0, 0, "Kind");
    gFindings_->SetTextMatrix(0, 1, "Question");
    gFindings_->SetTextMatrix(0, 2, "What was found");
    gFindings_->SetStretchCol(2);
    const QFontMetrics font = gFindings_->fontMetrics();
    gFindings_->SetColWidth(0, ToTwips(font.horizontalAdvance("Problem ") + RoomBesideText));
    gFindings_->SetColWidth(1, ToTwips(font.averageCharWidth() * LettersOfQuestion));
    gFindings_->SetColWidth(2, ToTwips(font.averageCharWidth() * LettersOfQuestion));
    lblFinding_->setObjectName("lblFinding");
    lblFinding_->setTextFormat(Qt::PlainText);
    lblFinding_->setWordWrap(true);
    lblFinding_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    lblFinding_->setMinimumHeight(LinesOfFinding * lblFinding_->fontMetrics().lineSpacing());

    const auto button = [](QPushButton* made, const char* name, const char* tip) {
        made->setObjectName(name);
        made->setToolTip(tip);
        return made;
    };
    button(cmdGoTo_, "cmdGoTo", "Show the question of the selected row (Enter)");
    auto* const cmdCheckAgain = button(new QPushButton("Check &Again", this), "cmdCheckAgain",
                                       "Look the survey through once more");
    auto* const cmdClose = button(new QPushButton("C&lose", this), "cmdClose", "Esc");

    auto* const buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(cmdGoTo_);
    buttons->addWidget(cmdCheckAgain);
    buttons->addWidget(cmdClose);
    auto* const rows = new QVBoxLayout(this);
    rows->addWidget(lblCount_);
    rows->addWidget(gFindings_, 1);
    rows->addWidget(lblFinding_);
    rows->addLayout(buttons);

    gFindings_->Click = [this] { Go(false); };
    gFindings_->DblClick = [this] { Go(true); };
    gFindings_->KeyDown = [this](QKeyEvent& event) {
        if (event.key() != Qt::Key_Return && event.key() != Qt::Key_Enter)
            return;
        Go(true);
        event.accept();
    };
    connect(gFindings_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            &frmCheckSurvey::ShowFinding);
    OnClick(cmdGoTo_, this, &frmCheckSurvey::cmdGoTo_Click);
    OnClick(cmdCheckAgain, this, &frmCheckSurvey::cmdCheckAgain_Click);
    connect(cmdClose, &QPushButton::clicked, this, &QWidget::close);
    auto* const escape = new QAction(this);
    escape->setShortcut(Qt::Key_Escape);
    connect(escape, &QAction::triggered, this, &QWidget::close);
    addAction(escape);
}

void frmCheckSurvey::ShowFindings() {
    Check();
    FillGrid();
    show();
    raise();
    activateWindow();
    gFindings_->setFocus();
}

void frmCheckSurvey::Check() {
    const HourGlass hourGlass;
    findings_ = CheckOpenSurvey(state_);
}

void frmCheckSurvey::FillGrid() {
    const int row = gFindings_->Row();
    const auto problems = static_cast<std::size_t>(CountProblems(findings_));
    if (findings_.empty())
        lblCount_->setText("Nothing was found that will trouble respondents or analysts.");
    else
        lblCount_->setText(CountText(problems, findings_.size() - problems) +
                           "Problems stop or mislead respondents, or lose what they say; notes "
                           "may well be meant.");
    {
        const RedrawOff redrawOff(*gFindings_);
        gFindings_->SetRows(1);
        gFindings_->SetProvider([this](int at, int column) {
            const Finding& finding = findings_[static_cast<std::size_t>(at) - 1];
            return column == 0   ? GravityText(finding.gravity)
                   : column == 1 ? finding.question
                                 : finding.words;
        });
        gFindings_->SetRows(static_cast<int>(findings_.size()) + 1);
        if (!findings_.empty()) {
            gFindings_->SetRow(std::clamp(row, 1, static_cast<int>(findings_.size())));
            gFindings_->SetCol(0);
            gFindings_->SetColSel(2);
        }
    }
    cmdGoTo_->setEnabled(!findings_.empty());
    ShowFinding();
}

const Finding* frmCheckSurvey::Current() const {
    const int row = gFindings_->Row();
    if (row < 1 || static_cast<std::size_t>(row) > findings_.size())
        return nullptr;
    return &findings_[static_cast<std::size_t>(row) - 1];
}

void frmCheckSurvey::ShowFinding() {
    const Finding* const finding = Current();
    lblFinding_->setText(finding ? Breakable(finding->question + '\n' + finding->words)
                                 : QString());
}

void frmCheckSurvey::Go(bool activate) {
    if (const Finding* const finding = Current(); finding && GoTo)
        GoTo(finding->key, finding->response, activate);
}

void frmCheckSurvey::cmdGoTo_Click() {
    Go(true);
}

void frmCheckSurvey::cmdCheckAgain_Click() {
    Check();
    FillGrid();
}

// What was found may have been mended meanwhile, or another survey opened, or this one saved, which
// gives its questions new keys.
void frmCheckSurvey::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() != QEvent::ActivationChange || !isActiveWindow() || !isVisible())
        return;
    try {
        const std::vector<Finding> before = findings_;
        Check();
        if (findings_ != before)
            FillGrid();
    } catch (const Failure&) {
        // Told by the button; here the box's closing would bring the user back, and the next box.
    }
}

} // namespace pollarix
