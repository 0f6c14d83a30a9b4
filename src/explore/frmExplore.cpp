#include "explore/frmExplore.h"

#include <QApplication>
#include <QClipboard>
#include <QEvent>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QScrollArea>

#include <algorithm>

#include "platform/base/Handlers.h"
#include "platform/controls/OnClick.h"
#include "platform/controls/Twips.h"

namespace pollarix {

using statistics::Answers;
using statistics::Filter;

namespace {

constexpr int Nothing = -1;
// Conditions on any answer; those on one answer have its code.
constexpr int IsAnswered = -2;
constexpr int IsLeftEmpty = -3;
constexpr int IsNotAsked = -4;
constexpr std::size_t MostAnswersOffered = 1000; // by a combo box
constexpr int WidthOfText = 3000;                // twips
constexpr int WidthOfNumber = 1400;

struct CellEntry {
    const char* text;
    ExploreCell cell;
};
constexpr CellEntry CellEntries[] = {
    {"Count", ExploreCell::Count},
    {"Percent of row", ExploreCell::OfRow},
    {"Percent of column", ExploreCell::OfColumn},
    {"Percent of all", ExploreCell::OfAll},
    {"Expected count", ExploreCell::Expected},
};

void AddEntry(ComboBox& box, const QString& text, std::int64_t data) {
    box.AddItem(text);
    box.SetItemData(box.NewIndex(), data);
}

} // namespace

frmExplore::frmExplore(ApplicationState& state, LongWork& work, QWidget* parent)
    : QWidget(parent, Qt::Window), state_(state), work_(work) {
    setObjectName("frmExplore");
    setWindowTitle("Explore");
    BuildControls();
    resize(1000, 680);
}

void frmExplore::BuildControls() {
    const auto combo = [this](const char* name, const QString& readOut) {
        auto* const box = new ComboBox(this);
        box->setObjectName(name);
        box->setAccessibleName(readOut);
        // Questions are longer than any window is wide.
        box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        box->setMinimumContentsLength(12);
        return box;
    };
    const auto button = [this](const char* name, const QString& text) {
        auto* const made = new QPushButton(text, this);
        made->setObjectName(name);
        return made;
    };
    txtSearch_ = new QLineEdit(this);
    txtSearch_->setObjectName("txtSearch");
    txtSearch_->setAccessibleName("Search questions");
    txtSearch_->setPlaceholderText("Search");
    txtSearch_->setClearButtonEnabled(true);
    lstVariables_ = new ListBox(this);
    lstVariables_->setObjectName("lstVariables");
    lstVariables_->setAccessibleName("Questions");
    cboColumns_ = combo("cboColumns", "By");
    cboCells_ = combo("cboCells", "Cells show");
    for (const CellEntry& entry : CellEntries)
        cboCells_->AddItem(entry.text);
    cboCells_->SetListIndex(0);
    cboFilterVariable_ = combo("cboFilterVariable", "Only who answered");
    cboFilterAnswer_ = combo("cboFilterAnswer", "with");
    cboFilterJoin_ = combo("cboFilterJoin", "Conditions are joined");
    cboFilterJoin_->AddItem("All conditions");
    cboFilterJoin_->AddItem("Any condition");
    cboFilterJoin_->SetListIndex(0);
    auto* const cmdFilterAdd = button("cmdFilterAdd", "&Add condition");
    auto* const cmdFilterClear = button("cmdFilterClear", "&Remove all");
    lblFilter_ = new QLabel(this);
    lblFilter_->setObjectName("lblFilter");
    lblFilter_->setTextFormat(Qt::PlainText);
    lblFilter_->setWordWrap(true);
    gTable_ = new Grid(this);
    gTable_->setObjectName("gTable");
    gTable_->setAccessibleName("Table");
    gTable_->SetFixedCols(1);
    lblNotes_ = new QLabel(this);
    lblNotes_->setObjectName("lblNotes");
    lblNotes_->setTextFormat(Qt::PlainText);
    lblNotes_->setWordWrap(true);
    lblNotes_->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    auto* const notes = new QScrollArea(this);
    notes->setObjectName("picNotes");
    notes->setAccessibleName("Tests and notes");
    notes->setWidgetResizable(true);
    notes->setFrameShape(QFrame::NoFrame);
    notes->setWidget(lblNotes_);
    auto* const cmdCopy = button("cmdCopy", "&Copy as table");
    auto* const cmdRefresh = button("cmdRefresh", "Read answers a&new");
    auto* const cmdClose = button("cmdClose", "C&lose");

    auto* const layout = new QGridLayout(this);
    layout->setColumnStretch(0, 2);
    layout->setColumnStretch(1, 2);
    layout->setColumnStretch(2, 2);
    layout->setRowStretch(4, 3);
    layout->setRowStretch(5, 1);
    layout->addWidget(txtSearch_, 0, 0);
    layout->addWidget(lstVariables_, 1, 0, 6, 1);
    layout->addWidget(cboColumns_, 0, 1, 1, 2);
    layout->addWidget(cboCells_, 0, 3);
    layout->addWidget(cboFilterVariable_, 1, 1);
    layout->addWidget(cboFilterAnswer_, 1, 2);
    layout->addWidget(cmdFilterAdd, 1, 3);
    layout->addWidget(cboFilterJoin_, 2, 1);
    layout->addWidget(cmdFilterClear, 2, 3);
    layout->addWidget(lblFilter_, 3, 1, 1, 3);
    layout->addWidget(gTable_, 4, 1, 1, 3);
    layout->addWidget(notes, 5, 1, 1, 3);
    layout->addWidget(cmdCopy, 6, 1);
    layout->addWidget(cmdRefresh, 6, 2);
    layout->addWidget(cmdClose, 6, 3);
    QWidget* last = txtSearch_;
    for (QWidget* next : std::initializer_list<QWidget*>{
             lstVariables_, cboColumns_, cboCells_, cboFilterVariable_, cboFilterAnswer_,
             cmdFilterAdd, cboFilterJoin_, cmdFilterClear, gTable_, notes, cmdCopy, cmdRefresh,
             cmdClose}) {
        setTabOrder(last, next);
        last = next;
    }

    connect(txtSearch_, &QLineEdit::textChanged, this,
            [this] { RunHandler([this] { txtSearch_Change(); }); });
    lstVariables_->Click = [this] { RefreshTable(); };
    cboColumns_->Click = [this] { RefreshTable(); };
    cboCells_->Click = [this] { RefreshTable(); };
    cboFilterVariable_->Click = [this] { cboFilterVariable_Click(); };
    cboFilterJoin_->Click = [this] { RefreshFilter(); };
    OnClick(cmdFilterAdd, this, &frmExplore::cmdFilterAdd_Click);
    OnClick(cmdFilterClear, this, &frmExplore::cmdFilterClear_Click);
    OnClick(cmdCopy, this, &frmExplore::cmdCopy_Click);
    OnClick(cmdRefresh, this, &frmExplore::mnuAnalyseExplore_Click);
    connect(cmdClose, &QPushButton::clicked, this, &QWidget::close);
}

void frmExplore::mnuAnalyseExplore_Click() {
    if (work_.IsRunning())
        return;
    Load();
    show();
    raise();
    activateWindow();
}

// Filters are of the survey for which they were made: those of the same one stay.
void frmExplore::Load() {
    work_.Do("Explore: respondent", [this](const ProgressStep& step) {
        answers_ = std::make_unique<Answers>(state_.SurveyConnection, step);
    });
    const bool same = loadedFrom_ == state_.SurveyConnection.Path();
    loadedFrom_ = state_.SurveyConnection.Path();
    const int variable = same ? lstVariables_->ListIndex() : Nothing;
    const int columns = same ? cboColumns_->ListIndex() : Nothing;
    if (!same)
        txtSearch_->clear();
    setWindowTitle("Explore - " + QFileInfo(loadedFrom_).completeBaseName());
    items_ = ExploreItems(answers_->Survey());
    FillCombos();
    filter_ = {}; // its codes were those of the answers before
    txtSearch_Change();
    if (columns > 0 && columns < cboColumns_->ListCount())
        cboColumns_->SetListIndex(columns);
    if (variable >= 0 && variable < lstVariables_->ListCount())
        lstVariables_->SetListIndex(variable);
    RefreshFilter();
}

void frmExplore::FillCombos() {
    cboColumns_->Clear();
    AddEntry(*cboColumns_, "(frequencies alone)", Nothing);
    cboFilterVariable_->Clear();
    for (std::size_t i = 0; i < items_.size(); ++i) {
        const auto place = static_cast<std::int64_t>(i);
        if (!items_[i].isMatrix)
            AddEntry(*cboColumns_, "by " + items_[i].label, place);
        if (items_[i].axis.kind == statistics::Axis::Kind::Variable)
            AddEntry(*cboFilterVariable_, items_[i].label,
                     static_cast<std::int64_t>(items_[i].axis.place));
    }
    cboColumns_->SetListIndex(0);
    // The first question, which is more often filtered by than date and source.
    cboFilterVariable_->SetListIndex(std::min(2, cboFilterVariable_->ListCount() - 1));
}

void frmExplore::txtSearch_Change() {
    const QString sought = txtSearch_->text().simplified();
    lstVariables_->Clear();
    for (std::size_t i = 0; i < items_.size(); ++i) {
        if (!items_[i].label.contains(sought, Qt::CaseInsensitive))
            continue;
        lstVariables_->AddItem(items_[i].label);
        lstVariables_->SetItemData(lstVariables_->NewIndex(), static_cast<std::int64_t>(i));
    }
    if (lstVariables_->ListCount() > 0)
        lstVariables_->SetListIndex(0);
    else
        RefreshTable();
}

void frmExplore::cboFilterVariable_Click() {
    cboFilterAnswer_->Clear();
    if (!answers_ || cboFilterVariable_->ListIndex() < 0)
        return;
    const auto place =
        static_cast<std::size_t>(cboFilterVariable_->ItemData(cboFilterVariable_->ListIndex()));
    const std::vector<QString>& categories = answers_->At(place).categories;
    for (std::size_t code = 0; code < std::min(categories.size(), MostAnswersOffered); ++code)
        AddEntry(*cboFilterAnswer_, "is " + categories[code], static_cast<std::int64_t>(code));
    AddEntry(*cboFilterAnswer_, "is answered", IsAnswered);
    AddEntry(*cboFilterAnswer_, "was left empty", IsLeftEmpty);
    AddEntry(*cboFilterAnswer_, "was not asked", IsNotAsked);
    cboFilterAnswer_->SetListIndex(0);
}

// Two answers to one question are both let in: who is added does not have to give both.
void frmExplore::cmdFilterAdd_Click() {
    if (!answers_ || cboFilterAnswer_->ListIndex() < 0)
        return;
    Filter condition;
    condition.variable =
        static_cast<std::size_t>(cboFilterVariable_->ItemData(cboFilterVariable_->ListIndex()));
    const std::int64_t chosen = cboFilterAnswer_->ItemData(cboFilterAnswer_->ListIndex());
    condition.kind = chosen == IsAnswered    ? Filter::Kind::Answered
                     : chosen == IsLeftEmpty ? Filter::Kind::LeftEmpty
                     : chosen == IsNotAsked  ? Filter::Kind::NotAsked
                                             : Filter::Kind::IsOneOf;
    if (condition.kind == Filter::Kind::IsOneOf) {
        const auto code = static_cast<statistics::Code>(chosen);
        for (Filter& part : filter_.parts)
            if (part.kind == condition.kind && part.variable == condition.variable) {
                if (std::find(part.codes.begin(), part.codes.end(), code) == part.codes.end())
                    part.codes.push_back(code);
                RefreshFilter();
                return;
            }
        condition.codes = {code};
    }
    filter_.parts.push_back(std::move(condition));
    RefreshFilter();
}

void frmExplore::cmdFilterClear_Click() {
    filter_.parts.clear();
    RefreshFilter();
}

void frmExplore::RefreshFilter() {
    if (!answers_)
        return;
    const bool any = cboFilterJoin_->ListIndex() == 1 && !filter_.parts.empty();
    filter_.kind = any ? Filter::Kind::Any : Filter::Kind::All;
    sample_.chosen = Choose(*answers_, filter_);
    lblFilter_->setText(Caption());
    RefreshTable();
}

QString frmExplore::Caption() const {
    return QString("Only: %1 (%2 of %3)")
        .arg(Sentence(answers_->Survey(), filter_))
        .arg(statistics::CountChosen(sample_.chosen))
        .arg(answers_->Respondents());
}

void frmExplore::RefreshTable() {
    if (!answers_ || sample_.chosen.size() != answers_->Respondents())
        return;
    table_ = {};
    if (lstVariables_->ListIndex() >= 0) {
        const ExploreItem& rows = items_[lstVariables_->ItemData(lstVariables_->ListIndex())];
        const std::int64_t by = cboColumns_->ListIndex() < 0
                                    ? Nothing
                                    : cboColumns_->ItemData(cboColumns_->ListIndex());
        const ExploreCell cell = CellEntries[std::max(0, cboCells_->ListIndex())].cell;
        try {
            table_ = MakeExploreTable(*answers_, rows,
                                      by == Nothing ? std::nullopt : std::optional(items_[by]),
                                      cell, sample_);
        } catch (const Failure& failure) { // too many cells, say
            table_.notes << failure.Description();
        }
    }
    gTable_->SetRedraw(false);
    gTable_->SetProvider({});
    gTable_->SetRows(1);
    gTable_->SetCols(std::max(1, static_cast<int>(table_.head.size())));
    gTable_->SetRows(static_cast<int>(table_.rows.size()) + 1);
    for (int column = 0; column < gTable_->Cols(); ++column) {
        gTable_->SetTextMatrix(0, column, table_.head.value(column));
        gTable_->SetColWidth(column, column == 0 ? WidthOfText : WidthOfNumber);
        gTable_->SetColAlignment(column, column == 0 ? 1 : 7);
    }
    for (std::size_t row = 0; row < table_.rows.size(); ++row)
        gTable_->SetTextMatrix(static_cast<int>(row) + 1, 0, table_.rows[row].front());
    gTable_->SetProvider([this](int row, int column) {
        return table_.rows[static_cast<std::size_t>(row) - 1].value(column);
    });
    gTable_->SetRedraw(true);
    lblNotes_->setText(table_.notes.join('\n'));
}

void frmExplore::cmdCopy_Click() {
    if (!answers_ || lstVariables_->ListIndex() < 0)
        return;
    const QString by = cboColumns_->ListIndex() > 0 ? ", " + cboColumns_->Text() : QString();
    const QString caption = lstVariables_->List(lstVariables_->ListIndex()) + by + ". " + Caption();
    auto* const copied = new QMimeData;
    copied->setText(ExploreAsText(table_, caption));
    copied->setHtml(ExploreAsHtml(table_, caption));
    QApplication::clipboard()->setMimeData(copied);
}

// Another survey may have been opened meanwhile: what is shown is then of no use.
void frmExplore::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow() && answers_ &&
        loadedFrom_ != state_.SurveyConnection.Path() && state_.SurveyConnection.IsOpen() &&
        !work_.IsRunning())
        RunHandler([this] { Load(); });
}

} // namespace pollarix
