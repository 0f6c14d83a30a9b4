// The one main window: composes the three screens under the toolbars and over the status bar, and
// forwards menus and toolbar buttons to whoever does the work. No place for logic.
#pragma once

#include <QMainWindow>
#include <QPointer>

#include <array>
#include <functional>
#include <vector>

#include "analysis/DetailedReport.h"
#include "analysis/PaperSurvey.h"
#include "analysis/PrintWindow.h"
#include "analysis/SurveyExport.h"
#include "document/SurveyDocument.h"
#include "platform/desktop/LongWork.h"
#include "platform/desktop/ProgressDisplay.h"
#include "platform/network/Internet.h"
#include "shell/DesignTools.h"
#include "shell/FileCommands.h"
#include "shell/HelpMenu.h"
#include "shell/help/HelpFile.h"
#include "shell/help/HelpKey.h"
#include "web/WebCollectWizard.h"
#include "web/WebPublishWizard.h"

class QAction;
class QFrame;
class QMenu;
class QSessionManager;
class QToolBar;

namespace pollarix {

class picAnalyse;
class picCollect;
class picDesign;
class frmExplore;
class PathLabel;

class frmMain : public QMainWindow, private ProgressDisplay {
    Q_OBJECT
  public:
    explicit frmMain(ApplicationState& state);
    ~frmMain() override;

    // Loads everything in its fixed order, up to the first survey. `commandLine` is the whole
    // command line: a survey to open, or "". A failure is shown with the step that was reached; the
    // window then stays as far as it got.
    void Form_Load(const QString& commandLine);

    // Shows a screen: "Design", "Data Collection", "Analyse", "Respondent" or "Respondent Answers".
    // Any other name changes nothing.
    void ShowScreen(const QString& name);

    void AddBlankOpenEndedQuestion();
    void OfferRecovery() { document_.OfferRecovery({}); } // of any survey
    void RemoveLeftSurveys() const { document_.RemoveLeftSurveys(); }

    // The help that the menu and F1 open, set by Form_Load.
    HelpFile& Help() { return help_; }

  protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    struct Entry; // of a menu

    void BuildPanels();
    void BuildMenus();
    void AddMenu(const char* name, const QString& caption, const std::vector<Entry>& entries);
    void BuildMenuKey();
    void BuildToolbars();
    void SetupToolbar();
    void Form_Resize();
    bool Form_Unload(); // false keeps the window open
    void EndOfSession(QSessionManager& session);

    void mnuViewDesign_Click();
    void mnuViewDataCollection_Click();
    void mnuViewAnalyse_Click();
    void mnuDataCollectionImport_Click();
    void Toolbar_ButtonClick(const QString& key);
    void RunCommand(const std::function<void()>& command);
    void RunSave(const std::function<void()>& save);
    void ShowChecks(); // of menu and toolbar, by the screen that shows
    enum class Screen { Design, DataCollection, Analyse, Respondent, RespondentAnswers };
    void Show(Screen screen);
    // The panels that the screens are on, in the toolbar's order.
    static constexpr std::size_t Panels = 3;
    std::array<QWidget*, Panels> ScreenPanels() const;
    void MoveFocusTo(std::size_t place); // of its panel
    void mnuTextWriteXML_Click();

    DesignTools::Screens ScreensForTools();
    void RefreshRespondeSummaryReportList(); // row 1, no response
    void RefreshRespondentList();            // row 1, no respondent

    // ProgressDisplay
    void ShowProgress(const QString& text) override;
    void ClearProgress() override;

    ApplicationState& state_;
    QWidget* canvas_;
    picDesign* picDesign_;
    SurveyDocument document_;
    FileCommands files_;
    DesignTools tools_;
    LongWork work_;
    DetailedReport detailedReport_;
    PaperSurvey paperSurvey_;
    SurveyExport export_;
    PrintWindow print_;
    Internet internet_;
    wininet transfer_;
    modWebServer server_;
    WebPublishWizard publish_;
    WebCollectWizard collect_;
    HelpFile help_;
    HelpKey helpKey_;
    HelpMenu helpMenu_;

    QFrame* picToolbar_ = nullptr;
    QToolBar* Toolbar_ = nullptr;
    QToolBar* ToolbarDesign_ = nullptr;
    QFrame* ToolBarTopLine_ = nullptr;
    QFrame* ToolBarBottomLine_ = nullptr;
    picCollect* picCollect_ = nullptr;
    picAnalyse* picAnalyse_ = nullptr;
    frmExplore* explore_ = nullptr;
    PathLabel* statusPath_ = nullptr;
    std::array<QAction*, Panels> screenItems_{};          // of the View menu
    std::array<QPointer<QWidget>, Panels> screenFocus_{}; // each panel's control used last
};

} // namespace pollarix
