// Menus and toolbars of the main window: what they read and where they lead.
#include <QAction>
#include <QApplication>
#include <QFrame>
#include <QMenu>
#include <QMenuBar>
#include <QShortcut>
#include <QToolBar>
#include <QToolButton>

#include "analysis/picAnalyse.h"
#include "design/picDesign.h"
#include "explore/frmExplore.h"
#include "platform/base/Handlers.h"
#include "shell/EditKeys.h"
#include "shell/frmMain.h"
#include "shell/modDetectWindows.h"

namespace pollarix {

namespace {

// The pictures of a toolbar, in the order of its image list.
std::vector<QIcon> ImageList(std::initializer_list<const char*> names) {
    std::vector<QIcon> list;
    for (const char* name : names)
        list.emplace_back(QString(":/icons/%1.svg").arg(QLatin1String(name)));
    return list;
}

} // namespace

// One entry of a menu. No caption means a line.
struct frmMain::Entry {
    const char* name;
    QString caption;
    QKeySequence shortcut;
    std::function<void()> handler;
};

void frmMain::AddMenu(const char* name, const QString& caption, const std::vector<Entry>& entries) {
    QMenu* menu = menuBar()->addMenu(caption);
    menu->setObjectName(name);
    for (const Entry& entry : entries) {
        QAction* action =
            entry.caption.isEmpty() ? menu->addSeparator() : menu->addAction(entry.caption);
        action->setObjectName(entry.name);
        action->setShortcut(entry.shortcut);
        if (entry.handler)
            connect(action, &QAction::triggered, this,
                    [this, handler = entry.handler] { RunCommand(handler); });
    }
}

// A menu that the desktop shows in its own panel can be used at any time.
void frmMain::RunCommand(const std::function<void()>& command) {
    if (!work_.IsRunning() && !QApplication::activeModalWidget())
        RunHandler(command);
}

void frmMain::BuildMenus() {
    const auto Separator = [](const char* name) { return Entry{name, {}, {}, {}}; };

    // Hidden: for those who work on the document that goes to servers. The one that reads does
    // nothing.
    for (const char* name : {"mnuTextWriteXML", "mnuTextReadXML"}) {
        auto* action = new QAction(QString(name).mid(3), this);
        action->setObjectName(name);
    }
    connect(findChild<QAction*>("mnuTextWriteXML"), &QAction::triggered, this,
            [this] { RunCommand([this] { mnuTextWriteXML_Click(); }); });

    AddMenu(
        "mnuFile", "&File",
        {{"mnuNew", "&New...", QKeySequence("Ctrl+N"),
          [this] {
              picDesign_->CommitEdits();
              files_.mnuNew_Click();
          }},
         {"mnuFileOpen", "&Open...", QKeySequence("Ctrl+O"),
          [this] {
              picDesign_->CommitEdits();
              files_.mnuFileOpen_Click();
          }},
         {"mnuFileClose",
          "&Close",
          {},
          [this] {
              picDesign_->CommitEdits();
              files_.mnuNew_Click();
          }},
         Separator("mnuFileSep1"),
         {"mnuFileSave", "&Save", QKeySequence("Ctrl+S"),
          [this] { RunSave([this] { document_.mnuFileSave_Click(); }); }},
         {"mnuFileSaveAs",
          "Save &As...",
          {},
          [this] { RunSave([this] { document_.mnuFileSaveAs_Click(); }); }},
         {"mnuFileExport", "&Export...", {}, [this] { export_.mnuFileExport_Click(); }},
         Separator("mnuFileSep2"),
         {"mnuFilePageSetup", "Page Set&up...", {}, [this] { print_.mnuFilePageSetup_Click(); }},
         {"mnuFilePrint", "&Print...", QKeySequence("Ctrl+P"),
          [this] { print_.mnuFilePrint_Click(); }},
         Separator("mnuFileSep3"),
         {"mnuFileExit", "E&xit", {}, [this] { close(); }}});

    AddMenu(
        "mnuEdit", "&Edit",
        {{"mnuEditUndo", "&Undo", {}, [] { SendKeys(Qt::CTRL | Qt::Key_Z); }},
         Separator("mnuEditBar0"),
         {"mnuEditCut", "Cu&t", QKeySequence("Ctrl+X"), [] { SendKeys(Qt::CTRL | Qt::Key_X); }},
         {"mnuEditCopy", "&Copy", QKeySequence("Ctrl+C"), [] { SendKeys(Qt::CTRL | Qt::Key_C); }},
         {"mnuEditPaste", "&Paste", QKeySequence("Ctrl+V"), [] { SendKeys(Qt::CTRL | Qt::Key_V); }},
         {"mnuEditDelete", "&Delete", QKeySequence("Del"),
          [] { SendKeys(QKeyCombination(Qt::Key_Delete)); }},
         Separator("mnuEditBar1"),
         {"mnuEditSelectAll", "Select &All", {}, [] { SendKeys(Qt::CTRL | Qt::Key_A); }}});

    AddMenu(
        "mnuView", "&View",
        {{"mnuViewDesign", "Design", QKeySequence("Shift+F1"), [this] { mnuViewDesign_Click(); }},
         {"mnuViewDataCollection", "Data Collection", QKeySequence("Shift+F2"),
          [this] { mnuViewDataCollection_Click(); }},
         {"mnuViewAnalyse", "Analyze", QKeySequence("Shift+F3"),
          [this] { mnuViewAnalyse_Click(); }}});
    screenItems_ = {findChild<QAction*>("mnuViewDesign"),
                    findChild<QAction*>("mnuViewDataCollection"),
                    findChild<QAction*>("mnuViewAnalyse")};
    for (QAction* view : screenItems_) {
        view->setCheckable(true);
        // The check shows the screen; a click that leads nowhere must not change it.
        connect(view, &QAction::triggered, this, [this] { ShowChecks(); });
    }

    AddMenu("mnuDesign", "&Design",
            {{"mnuDesignAddOpenEndedQuestion",
              "Add &Open Ended Question",
              {},
              [this] { picDesign_->mnuDesignAddOpenEndedQuestion_Click(); }},
             {"mnuDesignAddCheckQuestion",
              "Add &Check Type Question",
              {},
              [this] { picDesign_->mnuDesignAddCheckQuestion_Click(); }},
             {"mnuDesignAddRadioQuestion",
              "Add &Radio Type Question",
              {},
              [this] { picDesign_->mnuDesignAddRadioQuestion_Click(); }},
             {"mnuDesignAddMatrixQuestion",
              "Add &Matrix Question",
              {},
              [this] { picDesign_->mnuDesignAddMatrixQuestion_Click(); }},
             Separator("mnuDesignSep1"),
             {"mnuDesignAddText",
              "Add &Instruction Text",
              {},
              [this] { picDesign_->mnuDesignAddText_Click(); }},
             Separator("mnuDesignSep2"),
             {"mnuDesignDuplicate", "&Duplicate Question", QKeySequence("Ctrl+Shift+D"),
              [this] { picDesign_->mnuDesignDuplicate_Click(); }},
             {"mnuDesignPreview", "&Preview...", QKeySequence("F5"),
              [this] { tools_.mnuDesignPreview_Click(); }},
             {"mnuDesignPreviewFromHere", "Preview from &Here...", QKeySequence("Shift+F5"),
              [this] { tools_.mnuDesignPreviewFromHere_Click(); }},
             {"mnuDesignCheck", "Check &Survey...", QKeySequence("F7"),
              [this] { tools_.mnuDesignCheck_Click(); }}});

    AddMenu("mnuDataCollection", "Data &Collection",
            {{"mnuDataPublishWeb",
              "&Publish Web Survey...",
              {},
              [this] {
                  if (tools_.MayPublish())
                      publish_.mnuDataPublishWeb_Click(this);
              }},
             {"mnuDataCollectWeb",
              "&Collect Web Survey Responses...",
              {},
              [this] { collect_.mnuDataCollectWeb_Click(this); }},
             Separator("mnuDCSep1"),
             {"mnuDataCollectionPaperSurvey",
              "Create &Paper Based Survey...",
              {},
              [this] { paperSurvey_.mnuDataCollectionPaperSurvey_Click(); }},
             Separator("mnuDCSep2"),
             {"mnuDataCollectionImport", "&Import Answers...", {}, [this] {
                  mnuDataCollectionImport_Click();
              }}});

    AddMenu("mnuAnalyse", "&Analyze",
            {{"mnuAnalyseSummary", "Summary Report", QKeySequence("Ctrl+R"),
              [this] { mnuViewAnalyse_Click(); }},
             {"mnuAnalyseDetail", "Detailed Report", QKeySequence("Ctrl+D"),
              [this] { detailedReport_.mnuAnalyseDetail_Click(); }},
             Separator("mnuAnalyseSep1"),
             {"mnuAnalyseTotRespondents", "Total Respondents", QKeySequence("Ctrl+T"),
              [this] { picAnalyse_->mnuAnalyseTotRespondents_Click(); }},
             Separator("mnuAnalyseSep2"),
             {"mnuAnalyseExplore", "E&xplore...", {}, [this] {
                  explore_->mnuAnalyseExplore_Click();
              }}});

    AddMenu("mnuHelp", "&Help",
            {{"mnuHelpContents", "&Contents...", {}, [this] { helpMenu_.mnuHelpContents_Click(); }},
             {"mnuHelpTipOfTheDay",
              "Tip of the &Day...",
              {},
              [this] { helpMenu_.mnuHelpTipOfTheDay_Click(); }},
             {"mnuHelpIndex", "&Index...", {}, [this] { helpMenu_.mnuHelpIndex_Click(); }},
             {"mnuHelpSearch", "&Search...", {}, [this] { helpMenu_.mnuHelpSearch_Click(); }},
             Separator("break2"),
             Separator("break5"),
             {"mnuHelpOnlineSupport",
              "&Online Support",
              {},
              [this] { helpMenu_.mnuHelpOnlineSupport_Click(); }},
             {"mnuHelpSendFeedback",
              "Send &Feedback",
              {},
              [this] { helpMenu_.mnuHelpSendFeedback_Click(); }},
             Separator("break"),
             {"mnuAbout", "&About...", {}, [this] { helpMenu_.mnuAbout_Click(); }}});
    findChild<QAction*>("break2")->setVisible(false);
}

// F10 opens the first menu, as on most desktops. Find has no menu, which are what they are.
void frmMain::BuildMenuKey() {
    const auto command = [this](const QKeySequence& keys, void (DesignTools::*what)()) {
        auto* const shortcut = new QShortcut(keys, this);
        connect(shortcut, &QShortcut::activated, this,
                [this, what] { RunCommand([this, what] { (tools_.*what)(); }); });
    };
    command(QKeySequence("Ctrl+F"), &DesignTools::Find);
    command(QKeySequence("F3"), &DesignTools::FindNext);
    auto* key = new QShortcut(Qt::Key_F10, this);
    connect(key, &QShortcut::activated, this,
            [this] { menuBar()->setActiveAction(menuBar()->actions().constFirst()); });
}

void frmMain::BuildToolbars() {
    const auto bar = [this](const char* name) {
        auto* toolbar = new QToolBar(picToolbar_);
        toolbar->setObjectName(name);
        toolbar->setIconSize({24, 24});
        toolbar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
        return toolbar;
    };
    const auto add = [this](QToolBar* toolbar, const QString& key, const QString& caption) {
        QAction* button = toolbar->addAction(caption);
        button->setObjectName(key);
        button->setToolTip(key);
        connect(button, &QAction::triggered, this, [this, key] {
            ShowChecks(); // before as well: the click may lead to a question first
            RunCommand([&] { Toolbar_ButtonClick(key); });
            ShowChecks();
        });
        return button;
    };
    Toolbar_ = bar("Toolbar");
    add(Toolbar_, "Design", "Design")->setCheckable(true);
    add(Toolbar_, "Data Collection", "Data Collection")->setCheckable(true);
    // The key and tool tip are spelled otherwise than the caption, and stay so.
    add(Toolbar_, "Analyse", "Analyze")->setCheckable(true);
    ToolbarDesign_ = bar("ToolbarDesign");
    add(ToolbarDesign_, "Add Question", "Add Question");
    add(ToolbarDesign_, "Add Text", "Add Text");
}

void frmMain::SetupToolbar() {
    // An image list, and for each button its place in it, from 1.
    const bool xp = IsWindowsXP();
    const auto imToolbar = xp ? ImageList({"analyze", "data-collection", "design"})
                              : ImageList({"analyze", "design", "data-collection"});
    const std::vector<int> places = xp ? std::vector<int>{3, 2, 1} : std::vector<int>{2, 3, 1};
    const auto imDesignToolbar = ImageList({"add-question", "add-text"});
    for (int i = 0; i < 3; ++i)
        Toolbar_->actions()[i]->setIcon(imToolbar[places[i] - 1]);
    for (int i = 0; i < 2; ++i)
        ToolbarDesign_->actions()[i]->setIcon(imDesignToolbar[i]);
}

void frmMain::Toolbar_ButtonClick(const QString& key) {
    if (picDesign_->picQPropertiesVisible())
        picDesign_->CommitText();
    if (key == "Design")
        mnuViewDesign_Click();
    else if (key == "Data Collection")
        mnuViewDataCollection_Click();
    else if (key == "Analyse")
        mnuViewAnalyse_Click();
    else if (key == "Add Question")
        picDesign_->mnuDesignAddOpenEndedQuestion_Click();
    else if (key == "Add Text")
        picDesign_->mnuDesignAddText_Click();
}

} // namespace pollarix
