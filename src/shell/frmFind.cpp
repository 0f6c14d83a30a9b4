#include "shell/frmFind.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>

#include "platform/base/Handlers.h"
#include "platform/controls/Grid.h"
#include "platform/controls/OnClick.h"
#include "platform/controls/RedrawOff.h"
#include "platform/controls/Twips.h"
#include "platform/desktop/HourGlass.h"

namespace pollarix {

namespace {

constexpr std::size_t MostPlaces = 1000;
constexpr int LongestSought = 200; // characters
constexpr int RoomBesideText = 16; // pixels
constexpr int LettersOfQuestion = 26;

QString KindText(FoundText::Kind kind) {
    switch (kind) {
    case FoundText::Kind::Question:
        return "Question";
    case FoundText::Kind::Response:
        return "Response";
    default:
        return "Answer";
    }
}

} // namespace

frmFind::frmFind(ApplicationState& state, QWidget* parent)
    : QWidget(parent, Qt::Window), state_(state), txtFind_(new QLineEdit(this)),
      chkAnswers_(new QCheckBox("In &answers, too", this)), lblFound_(new QLabel(this)),
      gFound_(new Grid(this)) {
    setObjectName("frmFind");
    setWindowTitle("Find");
    BuildControls();
    resize(640, 380);
}

void frmFind::BuildControls() {
    auto* const lblFind = new QLabel("&Text:", this);
    lblFind->setBuddy(txtFind_);
    txtFind_->setObjectName("txtFind");
    txtFind_->setAccessibleName("Text to find");
    txtFind_->setMaxLength(LongestSought);
    txtFind_->setClearButtonEnabled(true);
    chkAnswers_->setObjectName("chkAnswers");
    chkAnswers_->setToolTip("Look through what respondents have typed as well");
    const auto button = [this](const char* name, const char* text, const char* tip) {
        auto* const made = new QPushButton(text, this);
        made->setObjectName(name);
        made->setToolTip(tip);
        return made;
    };
    auto* const cmdFindNext = button("cmdFindNext", "Find &Next", "Show the next place (F3)");
    auto* const cmdFindPrevious =
        button("cmdFindPrevious", "Find &Previous", "Show the place before");
    auto* const cmdClose = button("cmdClose", "C&lose", "Esc");
    lblFound_->setObjectName("lblFound");
    lblFound_->setTextFormat(Qt::PlainText);
    lblFound_->setWordWrap(true);
    gFound_->setObjectName("gFound");
    gFound_->setAccessibleName("Places");
    gFound_->SetSelectRows(true);
    gFound_->SetCols(3);
    gFound_->SetTextMatrix(0, 0, "Where");
    gFound_->SetTextMatrix(0, 1, "Question");
    gFound_->SetTextMatrix(0, 2, "Text");
    const QFontMetrics font = gFound_->fontMetrics();
    gFound_->SetColWidth(0, ToTwips(font.horizontalAdvance("Response ") + RoomBesideText));
    gFound_->SetColWidth(1, ToTwips(font.averageCharWidth() * LettersOfQuestion));
    gFound_->SetColWidth(2, ToTwips(font.averageCharWidth() * LettersOfQuestion));
    gFound_->SetStretchCol(2);

    auto* const layout = new QGridLayout(this);
    layout->setColumnStretch(1, 1);
    layout->setRowStretch(3, 1);
    layout->addWidget(lblFind, 0, 0);
    layout->addWidget(txtFind_, 0, 1);
    layout->addWidget(cmdFindNext, 0, 2);
    layout->addWidget(chkAnswers_, 1, 1);
    layout->addWidget(cmdFindPrevious, 1, 2);
    layout->addWidget(lblFound_, 2, 0, 1, 3);
    layout->addWidget(gFound_, 3, 0, 1, 3);
    layout->addWidget(cmdClose, 4, 2);
    setTabOrder(txtFind_, chkAnswers_);
    setTabOrder(chkAnswers_, cmdFindNext);
    setTabOrder(cmdFindNext, cmdFindPrevious);
    setTabOrder(cmdFindPrevious, gFound_);
    setTabOrder(gFound_, cmdClose);

    gFound_->Click = [this] { Go(false); };
    gFound_->DblClick = [this] { Go(true); };
    gFound_->KeyDown = [this](QKeyEvent& event) {
        if (event.key() != Qt::Key_Return && event.key() != Qt::Key_Enter)
            return;
        Go(true);
        event.accept();
    };
    connect(txtFind_, &QLineEdit::returnPressed, this,
            [this] { RunHandler([this] { cmdFindNext_Click(); }); });
    OnClick(cmdFindNext, this, &frmFind::cmdFindNext_Click);
    OnClick(cmdFindPrevious, this, &frmFind::cmdFindPrevious_Click);
    connect(cmdClose, &QPushButton::clicked, this, &QWidget::close);
    const auto* const next = new QShortcut(Qt::Key_F3, this);
    connect(next, &QShortcut::activated, this,
            [this] { RunHandler([this] { cmdFindNext_Click(); }); });
}

void frmFind::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}

void frmFind::ShowWindow(bool answers) {
    if (!isVisible())
        chkAnswers_->setChecked(answers);
    show();
    raise();
    activateWindow();
    txtFind_->setFocus();
    txtFind_->selectAll();
}

void frmFind::Search() {
    const HourGlass hourGlass;
    sought_ = txtFind_->text();
    inAnswers_ = chkAnswers_->isChecked();
    opening_ = state_.Openings();
    const SurveySnapshot survey = SurveySnapshot::Take(state_.CurrentSurvey);
    FoundTexts found = FindInDesign(survey, sought_, MostPlaces);
    if (inAnswers_ && state_.SurveyConnection.IsOpen() && !found.more) {
        FoundTexts answers = FindInAnswers(state_.SurveyConnection, survey, sought_,
                                           MostPlaces - found.places.size());
        found.places.insert(found.places.end(), answers.places.begin(), answers.places.end());
        found.more = answers.more;
    }
    found_ = std::move(found.places);
    FillGrid(found.more);
}

void frmFind::FillGrid(bool more) {
    const QString count = QString::number(found_.size());
    lblFound_->setText(found_.empty()       ? QString("It was not found.")
                       : more               ? "More than " + count + " places; these are the first."
                       : found_.size() == 1 ? QString("1 place")
                                            : count + " places");
    const RedrawOff redrawOff(*gFound_);
    gFound_->SetRows(1);
    gFound_->SetProvider([this](int row, int column) {
        const FoundText& place = found_[static_cast<std::size_t>(row) - 1];
        return column == 0 ? KindText(place.kind) : column == 1 ? place.question : place.text;
    });
    gFound_->SetRows(static_cast<int>(found_.size()) + 1);
}

bool frmFind::FindNext() {
    if (txtFind_->text().isEmpty())
        return false;
    Step(1);
    return true;
}

// The survey may have been saved meanwhile, which gives its questions new keys, or another opened.
void frmFind::Step(int step) {
    const bool anew = sought_ != txtFind_->text() || inAnswers_ != chkAnswers_->isChecked();
    const int before = anew ? 0 : gFound_->Row();
    if (anew || opening_ != state_.Openings())
        Search();
    const int count = static_cast<int>(found_.size());
    if (count == 0)
        return;
    const int from = before == 0 && step < 0 ? count + 1 : before;
    gFound_->SetRow((from - 1 + step + count) % count + 1);
    gFound_->SetCol(0);
    gFound_->SetColSel(2);
    Go(false);
}

void frmFind::Go(bool activate) {
    const int row = gFound_->Row();
    if (row < 1 || static_cast<std::size_t>(row) > found_.size())
        return;
    if (opening_ != state_.Openings()) { // the rows are of the survey before
        Search();
        return;
    }
    const FoundText place = found_[static_cast<std::size_t>(row) - 1];
    if (!GoTo(place, activate))
        Search();
}

void frmFind::cmdFindNext_Click() {
    FindNext();
}

void frmFind::cmdFindPrevious_Click() {
    if (!txtFind_->text().isEmpty())
        Step(-1);
}

} // namespace pollarix
