#include "shell/frmMain.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QFrame>
#include <QGuiApplication>
#include <QIcon>
#include <QSessionManager>
#include <QStatusBar>
#include <QToolBar>

#include <algorithm>
#include <utility>

#include "analysis/picAnalyse.h"
#include "collection/frmImportAnswers.h"
#include "collection/picCollect.h"
#include "collection/picRespondentList.h"
#include "design/picDesign.h"
#include "explore/frmExplore.h"
#include "platform/base/Handlers.h"
#include "platform/controls/Focus.h"
#include "platform/controls/Twips.h"
#include "shell/Addresses.h"
#include "shell/EditKeys.h"
#include "shell/PathLabel.h"
#include "shell/frmSplash.h"
#include "web/SurveyXmlWriter.h"

namespace pollarix {

namespace {

// The rules of resizing count with the window's outer size. Frame and menu differ from desktop to
// desktop, so they count as one nominal height: what the rules leave free for them.
constexpr int FrameAndMenu = ToPixels(900 - 20);

} // namespace

frmMain::frmMain(ApplicationState& state)
    : state_(state), canvas_(new QWidget(this)), picDesign_(new picDesign(state, canvas_)),
      document_(state, *picDesign_), files_(state, document_),
      tools_(state, *picDesign_, ScreensForTools(), *this), work_(*this),
      detailedReport_(state, work_), paperSurvey_(state, work_), export_(state, work_),
      print_(state.dialogs, *this), transfer_(internet_), server_(transfer_, state.directories),
      publish_({state, *picDesign_, transfer_, server_}),
      collect_({state, *picDesign_, transfer_, server_}), helpKey_(help_),
      helpMenu_(state, help_, *this) {
    setObjectName("frmMain");
    setWindowTitle("Pollarix v1.12");
    setWindowIcon(QIcon(":/icons/pollarix.svg"));
    state_.dialogs.SetDefaultParent(this);
    BuildPanels();
    document_.ShowPath = [this](const QString& text) { statusPath_->setText(text); };
    document_.Opened = [this] {
        RefreshRespondeSummaryReportList();
        RefreshRespondentList();
    };
    BuildMenus();
    BuildMenuKey();
    BuildToolbars();
    // Also where the first opening fails, questions can be added below it.
    picDesign_->ShowTree({});
    Show(Screen::Design);
    resize(1024, 740);
    connect(qApp, &QGuiApplication::commitDataRequest, this, &frmMain::EndOfSession);
    qApp->installEventFilter(new SelectionKeeper(this));
    qApp->installEventFilter(new EnterPresses(this));
}

frmMain::~frmMain() {
    state_.dialogs.SetDefaultParent(nullptr);
}

void frmMain::BuildPanels() {
    setCentralWidget(canvas_);
    picToolbar_ = new QFrame(canvas_);
    picToolbar_->setObjectName("picToolbar");
    picCollect_ = new picCollect(state_, canvas_);
    picCollect_->RespondentList().ShowRespondentScreen = [this] { Show(Screen::Respondent); };
    picAnalyse_ = new picAnalyse(state_, work_, canvas_);
    explore_ = new frmExplore(state_, work_, this);
    picAnalyse_->Form_Resize = [this] { Form_Resize(); };
    ToolBarTopLine_ = new QFrame(canvas_);
    ToolBarTopLine_->setObjectName("ToolBarTopLine");
    ToolBarBottomLine_ = new QFrame(canvas_);
    ToolBarBottomLine_->setObjectName("ToolBarBottomLine");
    for (QFrame* line : {ToolBarTopLine_, ToolBarBottomLine_}) {
        line->setFrameShape(QFrame::HLine);
        line->setFrameShadow(QFrame::Plain);
        line->setForegroundRole(QPalette::Mid);
    }

    statusPath_ = new PathLabel(this);
    statusPath_->setObjectName("StatusBar");
    statusPath_->setAccessibleName("Path of the survey");
    // Not as a permanent widget: the progress of long work takes its place meanwhile.
    statusBar()->addWidget(statusPath_, 1);
    statusBar()->setSizeGripEnabled(false);
    // The question panel reaches down by as much as the rules take for a status bar.
    statusBar()->setMinimumHeight(std::max(ToPixels(300), statusBar()->sizeHint().height()));
}

void frmMain::Form_Load(const QString& commandLine) {
    int LoadState = 0;
    try {
        picRespondentList& respondents = picCollect_->RespondentList();
        respondents.ExampleQuestionEventsOn = true;
        picAnalyse_->AddFirstSummaryEntry();
        LoadState = 1;
        state_.LibraryConnection.Open(state_.directories.InProgram("Library.mdb"),
                                      Connection::Mode::ReadOnly);
        LoadState = 2;
        SetupToolbar();
        LoadState = 3;
        setWindowState(windowState() | Qt::WindowMaximized);
        LoadState = 4;
        frmSplash().exec();
        LoadState = 5;
        help_.SetPath(state_.directories.InProgram("bhelp.qch"));
        LoadState = 6;
        state_.MarkFileUnchanged();
        if (!commandLine.isEmpty())
            document_.DoOpen(commandLine, true, 1);
        else
            files_.mnuNew_Click();
        LoadState = 9; // 7 and 8 have nothing to do: the panels never had a border
        picAnalyse_->WriteHeads();
        LoadState = 10;
        picAnalyse_->WidenGrid();
        LoadState = 11;
        respondents.PrepareGrid();
        LoadState = 12;
        respondents.WriteHeads();
        LoadState = 13;
        respondents.WidenGrid();
        LoadState = 14;
        RefreshRespondentList();
        LoadState = 15;
        picAnalyse_->SelectFirstGraphStyle();
        LoadState = 16;
        picDesign_->LoadLibrary();
        LoadState = 17;
        picDesign_->LoadMatrixResponses();
    } catch (const std::exception&) {
        const Failure failure = CaughtFailure();
        state_.dialogs.MsgBox(
            QString("An error has occured loading please contact support at %1 for assitance. \n")
                    .arg(SupportAddress) +
                failure.Description() + " " + QString::number(failure.Number()) + " " +
                failure.Source() + " LoadState " + QString::number(LoadState),
            MsgIcon::Critical);
    }
}

bool frmMain::Form_Unload() {
    // A survey that long work is reading must not close under it.
    if (work_.IsRunning())
        return false;
    picDesign_->CommitEdits();
    if (!document_.AskToSave(Qt::CaseInsensitive))
        return false;
    document_.End();
    return true;
}

void frmMain::EndOfSession(QSessionManager& session) {
    bool save = true;
    if (session.allowsInteraction()) {
        RunHandler([&] {
            save = false;
            // A dialog may stand in the middle of something that writes.
            if (work_.IsRunning() || QApplication::activeModalWidget())
                return;
            picDesign_->CommitEdits();
            save = document_.AskToSave(Qt::CaseInsensitive);
        });
        session.release();
    }
    if (!save)
        session.cancel();
}

void frmMain::closeEvent(QCloseEvent* event) {
    bool unload = false;
    RunHandler([&] { unload = Form_Unload(); });
    event->setAccepted(unload);
}

void frmMain::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    Form_Resize();
}

void frmMain::ShowScreen(const QString& name) {
    static constexpr std::pair<const char*, Screen> Names[] = {
        {"Design", Screen::Design},
        {"Data Collection", Screen::DataCollection},
        {"Analyse", Screen::Analyse},
        {"Respondent", Screen::Respondent},
        {"Respondent Answers", Screen::RespondentAnswers},
    };
    for (const auto& [known, screen] : Names)
        if (name == known)
            Show(screen);
}

void frmMain::Show(Screen screen) {
    if (screen == Screen::Respondent || screen == Screen::RespondentAnswers)
        picCollect_->RespondentList().setVisible(screen == Screen::Respondent);
    const std::size_t shown = screen == Screen::Design ? 0 : screen == Screen::Analyse ? 2 : 1;
    const std::array<QWidget*, Panels> panels = ScreenPanels();
    panels[shown]->setVisible(true);
    MoveFocusTo(shown);
    for (std::size_t i = 0; i < Panels; ++i)
        panels[i]->setVisible(i == shown);
    ToolbarDesign_->setVisible(screen == Screen::Design);
    ShowChecks();
}

std::array<QWidget*, frmMain::Panels> frmMain::ScreenPanels() const {
    return {picDesign_, picCollect_, picAnalyse_};
}

// A control that is hidden with its screen would keep the focus, and what is typed on the next
// screen would change the question nobody sees.
void frmMain::MoveFocusTo(std::size_t place) {
    const std::array<QWidget*, Panels> panels = ScreenPanels();
    QWidget* const focus = focusWidget();
    for (std::size_t i = 0; i < Panels; ++i)
        if (i != place && focus && panels[i]->isAncestorOf(focus))
            screenFocus_[i] = focus;
    QWidget* const panel = panels[place];
    if (focus && panel->isAncestorOf(focus))
        return;
    const auto takesFocus = [panel](const QWidget* control) {
        return panel->isAncestorOf(control) && control->isVisible() && control->isEnabled() &&
               (control->focusPolicy() & Qt::TabFocus);
    };
    QWidget* next = screenFocus_[place];
    if (!next || !takesFocus(next)) {
        next = panel->nextInFocusChain();
        while (next != panel && !takesFocus(next))
            next = next->nextInFocusChain();
    }
    MoveFocusQuietly(*next);
}

void frmMain::ShowChecks() {
    const QList<QAction*> buttons = Toolbar_->actions();
    for (std::size_t i = 0; i < Panels; ++i) {
        const bool shown = !ScreenPanels()[i]->isHidden();
        screenItems_[i]->setChecked(shown);
        buttons[static_cast<qsizetype>(i)]->setChecked(shown);
    }
}

// Saving reads the survey back, which would put the caret elsewhere and select the whole text, for
// the next key to replace.
void frmMain::RunSave(const std::function<void()>& save) {
    picDesign_->CommitEdits();
    const DesignPlace place = picDesign_->WhereOneIs();
    save();
    picDesign_->GoBackTo(place);
}

void frmMain::mnuViewDesign_Click() {
    Show(Screen::Design);
}

void frmMain::mnuViewDataCollection_Click() {
    // The screen works on the file, so it is never reached with an unsaved design.
    if (document_.IsFileChanged()) {
        const MsgAnswer answer = state_.dialogs.MsgBox(
            "You must save the design before adding responses. Do you want to save the changes you "
            "made?",
            MsgIcon::Question, MsgButtons::YesNoCancel);
        if (answer != MsgAnswer::Yes)
            return;
        bool saved = false;
        RunSave([&] { saved = document_.mnuFileSave_Click(); });
        // Also a dialog that was cancelled, or a file that could not be written, leaves it unsaved.
        if (!saved)
            return;
    }
    Show(Screen::Respondent);
    RefreshRespondentList();
}

void frmMain::mnuViewAnalyse_Click() {
    Show(Screen::Analyse);
    RefreshRespondeSummaryReportList();
}

// What comes is shown where it belongs, and it belongs to the design that is in the file.
void frmMain::mnuDataCollectionImport_Click() {
    mnuViewDataCollection_Click();
    if (!picCollect_->isHidden() && frmImportAnswers::mnuDataCollectionImport_Click(state_, this))
        RefreshRespondentList();
}

void frmMain::AddBlankOpenEndedQuestion() {
    picDesign_->AddBlankOpenEndedQuestion();
}

void frmMain::mnuTextWriteXML_Click() {
    document_.DoClose();
    document_.DoOpen(state_.directories.InProgram("test5.plxs"), true, 1);
    DoSaveXML(state_, *picDesign_);
}

void frmMain::Form_Resize() {
    const int width = canvas_->width();
    const int height = canvas_->height() + statusBar()->height() + FrameAndMenu;
    const int barHeight = Toolbar_->sizeHint().height();
    picToolbar_->setGeometry(0, 0, width, barHeight);
    Toolbar_->setGeometry(0, 0, Toolbar_->sizeHint().width(), barHeight);
    ToolbarDesign_->setGeometry(Toolbar_->width() + ToPixels(300), 0,
                                ToolbarDesign_->sizeHint().width(), barHeight);
    const int below = barHeight + ToPixels(2);
    ToolBarTopLine_->setGeometry(0, below, width, 1);
    ToolBarBottomLine_->setGeometry(0, below, width, 1);

    const int screenHeight = height - statusBar()->height() - barHeight - ToPixels(900);
    if (width < 1 || screenHeight < 1)
        return; // too small for a value: the controls stay as they were
    const int top = barHeight + ToPixels(20);
    picDesign_->setGeometry(0, top, width, screenHeight);
    picCollect_->setGeometry(0, top, width, screenHeight);
    picAnalyse_->setGeometry(0, top, width, screenHeight);
    picDesign_->LayOut(statusBar()->height());
    picCollect_->LayOut(width, height);
    picAnalyse_->LayOut(width, height);
}

DesignTools::Screens frmMain::ScreensForTools() {
    DesignTools::Screens screens;
    screens.showDesign = [this] { Show(Screen::Design); };
    screens.showAnswers = [this] { return !picDesign_->isVisible(); };
    screens.showInSummary = [this](const FoundText& place) {
        const std::shared_ptr<clsQ> q = state_.CurrentSurvey.GetQ(place.key);
        return q && picAnalyse_->isVisible() &&
               picAnalyse_->ShowRow(place.response > 0 ? place.responseId : -1, *q);
    };
    screens.showRespondent = [this](std::int64_t respondent, std::int64_t question) {
        if (!picCollect_->isVisible())
            mnuViewDataCollection_Click();
        if (picCollect_->isVisible())
            picCollect_->RespondentList().ShowAnswer(respondent, question);
    };
    return screens;
}

void frmMain::RefreshRespondeSummaryReportList() {
    picAnalyse_->RefreshRespondeSummaryReportList(1, 0);
}
void frmMain::RefreshRespondentList() {
    picCollect_->RespondentList().RefreshRespondentList(1, 0);
}

// ---- ProgressDisplay

void frmMain::ShowProgress(const QString& text) {
    statusBar()->showMessage(text);
}
void frmMain::ClearProgress() {
    statusBar()->clearMessage();
}

} // namespace pollarix
