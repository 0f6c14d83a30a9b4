#include "collection/frmImportAnswers.h"

#include <QCheckBox>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QTabWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

#include "document/SurveyReader.h"
#include "platform/base/Handlers.h"
#include "platform/base/ShownText.h"
#include "platform/controls/ComboBox.h"
#include "platform/controls/Grid.h"
#include "platform/controls/OnClick.h"
#include "platform/controls/ScreenTitle.h"
#include "platform/controls/Twips.h"
#include "platform/desktop/HourGlass.h"

namespace pollarix {

using tables::CheckedTable;
using tables::Problem;
using tables::Target;
using tables::TextShape;

namespace {

constexpr std::size_t RowsOfPreview = 10;
constexpr qsizetype LongestShown = 200; // characters of a cell or a question
constexpr qint64 ShowEveryMs = 50;
constexpr int StepsOfBar = 1000;
constexpr qsizetype MostMissingNamed = 3;
// Twips.
constexpr int WidthOfColumn = 3000;
constexpr int WidthOfPreview = 1800;
constexpr int WidthOfNumber = 900;

template <typename Value> struct Choice {
    const char* text;
    Value value;
};
constexpr std::array Encodings = {
    Choice<TextShape::Encoding>{"UTF-8", TextShape::Encoding::Utf8},
    Choice<TextShape::Encoding>{"Windows-1252", TextShape::Encoding::Windows1252},
    Choice<TextShape::Encoding>{"UTF-16", TextShape::Encoding::Utf16}};
constexpr std::array Separators = {
    Choice<char16_t>{"Comma ,", u','}, Choice<char16_t>{"Semicolon ;", u';'},
    Choice<char16_t>{"Tab", u'\t'}, Choice<char16_t>{"Vertical bar |", u'|'}};
constexpr std::array Quotes = {Choice<char16_t>{"Double \"", u'"'},
                               Choice<char16_t>{"Single '", u'\''}, Choice<char16_t>{"None", 0}};

template <typename Choices, typename Value>
void ShowChoice(ComboBox& box, const Choices& choices, const Value& value) {
    for (std::size_t i = 0; i < choices.size(); ++i)
        if (choices[i].value == value)
            box.SetListIndex(static_cast<int>(i));
}

QString OneLine(const QString& text) {
    return Shortened(text.simplified(), LongestShown);
}

QString Count(std::int64_t count, const char* one, const char* many) {
    return QLocale().toString(static_cast<qlonglong>(count)) + ' ' + (count == 1 ? one : many);
}

} // namespace

frmImportAnswers::frmImportAnswers(ApplicationState& state, const QString& path, QWidget* parent)
    : QDialog(parent), state_(state), path_(path), survey_(state.SurveyConnection),
      designDigest_(DigestOfDesign(state.SurveyConnection)),
      allTargets_(tables::AllTargets(survey_)) {
    setObjectName("frmImportAnswers");
    setWindowTitle("Import Answers");
    auto* const page = new QVBoxLayout(this);
    page->addWidget(NewInstructions(
        "Instructions - Check which question each column of the table goes to. Nothing is written "
        "before you press Import. For more help press F1.",
        this));
    picBody_ = new QWidget(this);
    picBody_->setObjectName("picBody");
    page->addWidget(picBody_, 1);
    (new QVBoxLayout(picBody_))->setContentsMargins(0, 0, 0, 0);
    BuildShape();
    BuildColumns();
    BuildBelow();
    BuildFooter();
    OrderTabs();
    resize(QSize(900, 680).boundedTo(screen()->availableSize() * 9 / 10));
    Open(std::nullopt);
    gColumns_->setFocus();
}

void frmImportAnswers::BuildShape() {
    auto* const lblFile = NewHeading(QFileInfo(path_).fileName(), picBody_);
    lblFile->setObjectName("lblFile");
    lblFile->setTextFormat(Qt::PlainText);
    lblFile->setText(Breakable(Shortened(QFileInfo(path_).fileName(), LongestShown)));
    lblFile->setWordWrap(true);
    picBody_->layout()->addWidget(lblFile);
    auto* const line = new QHBoxLayout;
    static_cast<QVBoxLayout*>(picBody_->layout())->addLayout(line);
    const auto group = [&](const char* name) {
        auto* const made = new QWidget(picBody_);
        made->setObjectName(name);
        auto* const layout = new QHBoxLayout(made);
        layout->setContentsMargins(0, 0, 0, 0);
        line->addWidget(made);
        return made;
    };
    const auto combo = [this](QWidget* in, const char* name, const QString& caption) {
        auto* const box = new ComboBox(in);
        box->setObjectName(name);
        box->setAccessibleName(QString(caption).remove('&').remove(':'));
        box->Click = [this] { Shape_Click(); };
        auto* const label = new QLabel(caption, in);
        label->setBuddy(box);
        in->layout()->addWidget(label);
        in->layout()->addWidget(box);
        return box;
    };
    isShowing_ = true;
    picText_ = group("picText");
    cboEncoding_ = combo(picText_, "cboEncoding", "&Encoding:");
    for (const auto& choice : Encodings)
        cboEncoding_->AddItem(choice.text);
    cboSeparator_ = combo(picText_, "cboSeparator", "&Separator:");
    for (const auto& choice : Separators)
        cboSeparator_->AddItem(choice.text);
    cboSeparator_->setMinimumContentsLength(13);
    cboQuote_ = combo(picText_, "cboQuote", "&Quotes:");
    for (const auto& choice : Quotes)
        cboQuote_->AddItem(choice.text);
    picSheet_ = group("picSheet");
    cboSheet_ = combo(picSheet_, "cboSheet", "&Sheet:");
    cboSheet_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    cboSheet_->setMinimumContentsLength(20);
    chkNames_ = new QCheckBox("First row holds &names", picBody_);
    chkNames_->setObjectName("chkNames");
    connect(chkNames_, &QCheckBox::clicked, this,
            [this] { RunHandler([this] { Shape_Click(); }); });
    line->addWidget(chkNames_);
    chkNeighbours_ = new QCheckBox("&All answer files in its directory", picBody_);
    chkNeighbours_->setObjectName("chkNeighbours");
    connect(chkNeighbours_, &QCheckBox::clicked, this,
            [this] { RunHandler([this] { Shape_Click(); }); });
    line->addWidget(chkNeighbours_);
    line->addStretch(1);
    isShowing_ = false;
}

void frmImportAnswers::BuildColumns() {
    auto* const body = static_cast<QVBoxLayout*>(picBody_->layout());
    gColumns_ = new Grid(picBody_);
    gColumns_->setObjectName("gColumns");
    gColumns_->setAccessibleName("Columns of the table");
    gColumns_->SetCols(3);
    gColumns_->SetTextMatrix(0, 0, "Column");
    gColumns_->SetTextMatrix(0, 1, "First value");
    gColumns_->SetTextMatrix(0, 2, "Goes to");
    gColumns_->SetSelectRows(true);
    gColumns_->SetStretchCol(2);
    gColumns_->SetColWidth(0, WidthOfColumn);
    gColumns_->SetColWidth(1, WidthOfColumn);
    gColumns_->setMinimumHeight(80);
    body->addWidget(gColumns_, 3);
    connect(gColumns_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this] { RunHandler([this] { gColumns_Click(); }); });
    auto* const line = new QHBoxLayout;
    body->addLayout(line);
    cboTarget_ = new ComboBox(picBody_);
    cboTarget_->setObjectName("cboTarget");
    cboTarget_->setAccessibleName("The selected column goes to");
    cboTarget_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    cboTarget_->setMinimumContentsLength(20);
    for (std::size_t i = 0; i < allTargets_.size(); ++i) {
        cboTarget_->AddItem(OneLine(allTargets_[i].text));
        cboTarget_->SetItemData(cboTarget_->NewIndex(), static_cast<std::int64_t>(i));
    }
    cboTarget_->Click = [this] { cboTarget_Click(); };
    auto* const label = new QLabel("The selected column &goes to:", picBody_);
    label->setBuddy(cboTarget_);
    line->addWidget(label);
    line->addWidget(cboTarget_, 1);
    lblMissing_ = new QLabel(picBody_);
    lblMissing_->setObjectName("lblMissing");
    lblMissing_->setTextFormat(Qt::PlainText);
    lblMissing_->setWordWrap(true);
    body->addWidget(lblMissing_);
}

void frmImportAnswers::BuildBelow() {
    tabBelow_ = new QTabWidget(picBody_);
    tabBelow_->setObjectName("tabBelow");
    tabBelow_->tabBar()->setAccessibleName("Preview and what can't be matched");
    gPreview_ = new Grid(tabBelow_);
    gPreview_->setObjectName("gPreview");
    gPreview_->setAccessibleName("First rows of the table");
    gPreview_->SetFixedCols(1);
    gProblems_ = new Grid(tabBelow_);
    gProblems_->setObjectName("gProblems");
    gProblems_->setAccessibleName("What can't be matched");
    gProblems_->SetCols(4);
    constexpr const char* heads[] = {"Row", "Column", "Value", "Why it can't be matched"};
    constexpr int widths[] = {WidthOfNumber, WidthOfColumn, WidthOfColumn, WidthOfColumn};
    for (int col = 0; col < 4; ++col) {
        gProblems_->SetTextMatrix(0, col, heads[col]);
        gProblems_->SetColWidth(col, widths[col]);
    }
    gProblems_->SetStretchCol(3);
    gProblems_->SetSelectRows(true);
    for (Grid* grid : {gPreview_, gProblems_})
        grid->setMinimumHeight(80);
    tabBelow_->addTab(gPreview_, "&Preview");
    tabBelow_->addTab(gProblems_, {});
    static_cast<QVBoxLayout*>(picBody_->layout())->addWidget(tabBelow_, 3);
}

void frmImportAnswers::BuildFooter() {
    auto* const footer = new QHBoxLayout;
    static_cast<QVBoxLayout*>(layout())->addLayout(footer);
    lblProgress_ = new QLabel(this);
    lblProgress_->setObjectName("lblProgress");
    lblProgress_->setTextFormat(Qt::PlainText);
    prgImport_ = new QProgressBar(this);
    prgImport_->setObjectName("prgImport");
    prgImport_->setAccessibleName("Progress");
    prgImport_->setRange(0, StepsOfBar);
    prgImport_->setTextVisible(false);
    prgImport_->setMaximumWidth(160);
    prgImport_->hide();
    const auto button = [&](const char* name, const QString& caption) {
        auto* const made = new QPushButton(caption, this);
        made->setObjectName(name);
        made->setAutoDefault(false);
        return made;
    };
    cmdCheck_ = button("cmdCheck", "C&heck");
    cmdImport_ = button("cmdImport", "&Import");
    cmdCancel_ = button("cmdCancel", "&Cancel");
    cmdImport_->setDefault(true);
    OnClick(cmdCheck_, this, &frmImportAnswers::cmdCheck_Click);
    OnClick(cmdImport_, this, &frmImportAnswers::cmdImport_Click);
    connect(cmdCancel_, &QPushButton::clicked, this, &QDialog::reject);
    footer->addWidget(lblProgress_, 1);
    footer->addWidget(prgImport_);
    for (QPushButton* placed : {cmdCheck_, cmdImport_, cmdCancel_})
        footer->addWidget(placed);
}

void frmImportAnswers::OrderTabs() {
    QWidget* last = cboEncoding_;
    for (QWidget* next : std::initializer_list<QWidget*>{
             cboSeparator_, cboQuote_, cboSheet_, chkNames_, chkNeighbours_, gColumns_, cboTarget_,
             tabBelow_->tabBar(), gPreview_, gProblems_, cmdCheck_, cmdImport_, cmdCancel_}) {
        setTabOrder(last, next);
        last = next;
    }
}

bool frmImportAnswers::mnuDataCollectionImport_Click(ApplicationState& state, QWidget* parent) {
    // What can't be written is told before a file is looked for.
    RequireWritable(state.SurveyConnection);
    FileDialogRequest request;
    request.title = "Import Answers";
    request.filter = "Tables and answers (*.csv *.xlsx *.sav *.dta *.json)|*.csv;*.txt;*.tsv;*.tab;"
                     "*.xlsx;*.sav;*.dta;*.json|All files (*.*)|*.*";
    try {
        const FileDialogResult chosen = state.dialogs.ShowOpen(request);
        if (chosen.fileName.isEmpty())
            return false;
        frmImportAnswers form(state, chosen.fileName, parent);
        return form.exec() == QDialog::Accepted;
    } catch (const Failure& failure) {
        if (failure.Number() == failure::DialogCancelled)
            return false;
        state.dialogs.MsgBox(failure.Description(), MsgIcon::Critical);
        return false;
    }
}

// The table that shows stays where the new one can't be read.
void frmImportAnswers::Open(const std::optional<tables::TableShape>& shape) {
    std::unique_ptr<tables::Table> table = tables::OpenTable(path_, shape);
    table_.swap(table);
    try {
        ReadPreview();
    } catch (const Failure&) {
        table_.swap(table);
        throw;
    }
    targets_ = GuessTargets(table_->Columns(), survey_);
    checked_.reset();
    isShowing_ = true;
    ShowShape();
    ShowColumns();
    ShowProblems();
    isShowing_ = false;
    gColumns_Click();
}

void frmImportAnswers::ShowShape() {
    const tables::TableShape& shape = table_->Shape();
    picText_->setVisible(shape.text.has_value());
    if (shape.text) {
        ShowChoice(*cboEncoding_, Encodings, shape.text->encoding);
        ShowChoice(*cboSeparator_, Separators, shape.text->separator);
        ShowChoice(*cboQuote_, Quotes, shape.text->quote);
    }
    picSheet_->setVisible(shape.sheets.size() > 1);
    cboSheet_->Clear();
    for (const QString& sheet : shape.sheets)
        cboSheet_->AddItem(OneLine(sheet));
    if (!shape.sheets.isEmpty())
        cboSheet_->SetListIndex(shape.sheet);
    chkNames_->setVisible(shape.canLackNames);
    chkNames_->setChecked(shape.hasNames);
    chkNeighbours_->setVisible(shape.canTakeNeighbours);
    chkNeighbours_->setChecked(shape.takesNeighbours);
}

void frmImportAnswers::Shape_Click() {
    if (isShowing_ || isWorking_)
        return;
    tables::TableShape shape = table_->Shape();
    if (shape.text)
        shape.text = TextShape{
            Encodings[static_cast<std::size_t>(std::max(0, cboEncoding_->ListIndex()))].value,
            Separators[static_cast<std::size_t>(std::max(0, cboSeparator_->ListIndex()))].value,
            Quotes[static_cast<std::size_t>(std::max(0, cboQuote_->ListIndex()))].value};
    if (!shape.sheets.isEmpty())
        shape.sheet = std::max(0, cboSheet_->ListIndex());
    shape.hasNames = chkNames_->isChecked();
    shape.takesNeighbours = chkNeighbours_->isChecked();
    try {
        Open(shape);
    } catch (const Failure& failure) {
        isShowing_ = true;
        ShowShape();
        isShowing_ = false;
        Refuse(failure);
    }
}

void frmImportAnswers::Refuse(const Failure& failure) {
    state_.dialogs.MsgBox(failure.Description(), MsgIcon::Critical);
}

void frmImportAnswers::ReadPreview() {
    std::vector<tables::TableRow> rows;
    table_->Read([&](const tables::TableRow& row) {
        if (!tables::RowReading::IsBlank(row)) {
            rows.push_back(row);
            for (tables::Cell& cell : rows.back().cells)
                cell.text = OneLine(cell.text);
        }
        // A table that begins with a million empty rows is not looked through for this.
        return rows.size() < RowsOfPreview && row.number < 10000;
    });
    preview_ = std::move(rows);
}

void frmImportAnswers::ShowColumns() {
    const std::vector<tables::TableColumn>& columns = table_->Columns();
    gColumns_->SetRedraw(false);
    gColumns_->SetProvider({});
    gColumns_->SetRows(1);
    gColumns_->SetRows(static_cast<int>(columns.size()) + 1);
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const int row = static_cast<int>(i) + 1;
        gColumns_->SetTextMatrix(
            row, 0,
            OneLine(columns[i].name +
                    (columns[i].label.isEmpty() ? QString() : ": " + columns[i].label)));
        for (const tables::TableRow& shown : preview_)
            if (i < shown.cells.size() && !shown.cells[i].text.isEmpty()) {
                gColumns_->SetTextMatrix(row, 1, shown.cells[i].text);
                break;
            }
        ShowColumn(row);
    }
    gColumns_->SetRow(columns.empty() ? 0 : 1);
    gColumns_->SetCol(0);
    gColumns_->SetColSel(2);
    gColumns_->SetRedraw(true);

    gPreview_->SetRedraw(false);
    gPreview_->SetProvider({});
    gPreview_->SetRows(1);
    gPreview_->SetCols(static_cast<int>(columns.size()) + 1);
    gPreview_->SetRows(static_cast<int>(preview_.size()) + 1);
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const int col = static_cast<int>(i) + 1;
        gPreview_->SetTextMatrix(0, col, OneLine(columns[i].name));
        gPreview_->SetColWidth(col, WidthOfPreview);
    }
    gPreview_->SetColWidth(0, WidthOfNumber);
    for (std::size_t row = 0; row < preview_.size(); ++row)
        gPreview_->SetTextMatrix(static_cast<int>(row) + 1, 0,
                                 QString::number(preview_[row].number));
    gPreview_->SetProvider([this](int row, int col) {
        const std::vector<tables::Cell>& cells = preview_[static_cast<std::size_t>(row) - 1].cells;
        const auto place = static_cast<std::size_t>(col) - 1;
        return place < cells.size() ? cells[place].text : QString();
    });
    gPreview_->SetRedraw(true);
    ShowMissing();
}

void frmImportAnswers::ShowColumn(int row) {
    const Target& target = targets_[static_cast<std::size_t>(row) - 1];
    for (const tables::NamedTarget& named : allTargets_)
        if (named.target == target) {
            gColumns_->SetTextMatrix(row, 2, OneLine(named.text));
            return;
        }
}

void frmImportAnswers::ShowMissing() {
    const QStringList missing = WithoutColumn(targets_, survey_);
    QString text;
    if (missing.isEmpty()) {
        text = "Every question has a column.";
    } else {
        QStringList named;
        for (const QString& one : missing.mid(0, MostMissingNamed))
            named << Shortened(one, 60);
        text = QString("Without a column, and left empty (%1): ").arg(missing.size()) +
               named.join("; ") + (missing.size() > MostMissingNamed ? "; ..." : "");
    }
    lblMissing_->setText(Breakable(text));
}

void frmImportAnswers::ShowProblems() {
    gProblems_->SetProvider({});
    gProblems_->SetRows(1);
    if (!checked_) {
        tabBelow_->setTabText(1, "Can't be &matched");
        return;
    }
    const std::int64_t count = checked_->problemCount;
    tabBelow_->setTabText(
        1,
        QString("Can't be &matched (%1)").arg(QLocale().toString(static_cast<qlonglong>(count))));
    const auto kept = static_cast<std::int64_t>(checked_->problems.size());
    gProblems_->SetRows(static_cast<int>(kept) + (count > kept ? 2 : 1));
    gProblems_->SetProvider([this, kept, count](int row, int col) -> QString {
        if (row > kept)
            return col == 3 ? QString("... and %1 more")
                                  .arg(QLocale().toString(static_cast<qlonglong>(count - kept)))
                            : QString();
        const Problem& problem = checked_->problems[static_cast<std::size_t>(row) - 1];
        switch (col) {
        case 0:
            return QString::number(problem.row);
        case 1:
            return OneLine(problem.column);
        case 2:
            return problem.text;
        default:
            return problem.why;
        }
    });
}

void frmImportAnswers::gColumns_Click() {
    const int row = gColumns_->Row();
    if (isShowing_ || row < 1)
        return;
    const Target& target = targets_[static_cast<std::size_t>(row) - 1];
    isShowing_ = true;
    for (std::size_t i = 0; i < allTargets_.size(); ++i)
        if (allTargets_[i].target == target)
            cboTarget_->SetListIndex(static_cast<int>(i));
    isShowing_ = false;
}

void frmImportAnswers::cboTarget_Click() {
    const int row = gColumns_->Row();
    if (isShowing_ || isWorking_ || row < 1 || cboTarget_->ListIndex() < 0)
        return;
    targets_[static_cast<std::size_t>(row) - 1] =
        allTargets_[static_cast<std::size_t>(cboTarget_->ListIndex())].target;
    ShowColumn(row);
    ShowMissing();
    checked_.reset();
    ShowProblems();
}

bool frmImportAnswers::Work(const QString& what,
                            const std::function<bool(const tables::ImportStep&)>& work) {
    struct Working {
        explicit Working(frmImportAnswers& form_) : form(form_) {
            form.isWorking_ = true;
            form.isStopped_ = false;
            Enable(false);
            form.prgImport_->setValue(0);
            form.prgImport_->show();
            form.cmdCancel_->setFocus();
        }
        ~Working() {
            form.isWorking_ = false;
            form.prgImport_->hide();
            form.lblProgress_->clear();
            Enable(true);
        }
        void Enable(bool on) const {
            form.picBody_->setEnabled(on);
            form.cmdCheck_->setEnabled(on);
            form.cmdImport_->setEnabled(on);
        }
        frmImportAnswers& form;
        HourGlass hourGlass;
    };
    std::optional<Failure> failed;
    bool done = false;
    {
        const Working working(*this);
        QElapsedTimer sinceShown;
        const QLocale locale;
        try {
            done = work([&](std::int64_t respondents, double part) {
                if (!sinceShown.isValid() || sinceShown.elapsed() >= ShowEveryMs) {
                    lblProgress_->setText(
                        what.arg(locale.toString(static_cast<qlonglong>(respondents))));
                    prgImport_->setValue(static_cast<int>(part * StepsOfBar));
                    DoEvents();
                    sinceShown.start();
                }
                return !isStopped_;
            });
        } catch (const std::exception&) {
            failed = CaughtFailure();
        }
    }
    if (failed)
        state_.dialogs.MsgBox(failed->Description() + "\n\nNothing was imported.",
                              MsgIcon::Critical);
    return done;
}

bool frmImportAnswers::Check() {
    if (const QString conflict = Conflict(targets_, table_->Columns(), survey_);
        !conflict.isEmpty()) {
        state_.dialogs.MsgBox(conflict + " Please choose another place for one of them.",
                              MsgIcon::Critical);
        return false;
    }
    if (std::all_of(targets_.begin(), targets_.end(), [](const Target& target) {
            return target.kind == Target::Kind::Nothing || target.kind == Target::Kind::Date;
        })) {
        state_.dialogs.MsgBox("No column goes to a question. Please choose what the columns are.",
                              MsgIcon::Critical);
        return false;
    }
    if (!checked_) {
        std::optional<CheckedTable> found;
        if (!Work("Looking through the table: %1 respondents", [&](const tables::ImportStep& step) {
                found = tables::AnswerImport(survey_, *table_, targets_).Check(step);
                return found.has_value();
            }))
            return false;
        checked_ = std::move(found);
        ShowProblems();
    }
    if (checked_->respondents == 0) {
        state_.dialogs.MsgBox("The table holds no respondent: all of its rows are empty.",
                              MsgIcon::Critical);
        return false;
    }
    if (checked_->problemCount > 0)
        tabBelow_->setCurrentIndex(1);
    return true;
}

void frmImportAnswers::cmdCheck_Click() {
    if (isWorking_ || !Check())
        return;
    state_.dialogs.MsgBox(
        Count(checked_->respondents, "respondent", "respondents") + " with " +
            Count(checked_->answers, "answer", "answers") + " can be imported. " +
            (checked_->problemCount == 0
                 ? QString("Every value can be matched.")
                 : Count(checked_->problemCount, "value", "values") +
                       " can't be matched, and would be left empty; the list tells where."),
        MsgIcon::Information);
}

void frmImportAnswers::cmdImport_Click() {
    if (isWorking_ || !Check())
        return;
    if (checked_->problemCount > 0) {
        const Problem& first = checked_->problems.front();
        if (state_.dialogs.MsgBox(
                QString("%1 can't be matched. The first: row %2, column \"%3\": \"%4\" %5.\n\nDo "
                        "you want to import the rest, and leave these empty?")
                    .arg(Count(checked_->problemCount, "value", "values"))
                    .arg(first.row)
                    .arg(OneLine(first.column), first.text, first.why),
                MsgIcon::Question, MsgButtons::YesNo) != MsgAnswer::Yes)
            return;
    }
    std::optional<std::int64_t> imported;
    if (!Work("Importing: %1 respondents. Cancel takes them back.",
              [&](const tables::ImportStep& step) {
                  imported = tables::AnswerImport(survey_, *table_, targets_)
                                 .Write(state_, designDigest_, step);
                  return imported.has_value();
              }))
        return;
    state_.dialogs.MsgBox("Successfully imported " + Count(*imported, "respondent", "respondents") +
                              '.',
                          MsgIcon::Information);
    accept();
}

void frmImportAnswers::reject() {
    if (isWorking_)
        isStopped_ = true;
    else
        QDialog::reject();
}

} // namespace pollarix
