// The main window driven as a person would: menus, toolbar buttons, keys; the file read back past
// the program.
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QRegularExpression>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>

#include "platform/charts/Chart.h"
#include "platform/controls/Grid.h"
#include "platform/controls/RichTextBox.h"
#include "platform/controls/TreeView.h"
#include "platform/files/Files.h"
#include "platform/richtext/RichText.h"
#include "shell/MainWindow.h"

using namespace pollarix;
using namespace pollarix::test;

namespace {

class MainWindowTest : public MainWindow {
  protected:
    void Start(const QString& commandLine = {}) {
        MainWindow::Start(commandLine);
        window->AddBlankOpenEndedQuestion();
    }
    void Type(const QString& text) {
        auto* txtQ = Find<RichTextBox>("txtQ");
        txtQ->setFocus();
        QTest::keyClicks(txtQ, text);
    }
    QStringList TreeTexts() {
        auto* tree = Find<TreeView>("tvTreeView");
        QStringList texts;
        for (int i = 1; i <= tree->Count(); ++i)
            texts << tree->Item(i).Text();
        return texts;
    }
    QString Screen() {
        for (const char* name : {"picDesign", "picCollect", "picAnalyse"})
            if (Find<QWidget>(name)->isVisible())
                return name;
        return {};
    }
    QStringList TemporarySurveys() {
        return QDir(program.directory.path()).entryList({"HC*.tmp"}, QDir::Files);
    }
};

} // namespace

TEST_F(MainWindowTest, AnUntouchedNewSurveyComesAndGoesWithoutAQuestion) {
    Start();
    EXPECT_EQ(dialogs.TakeTexts(), QStringList());
    EXPECT_EQ(window->windowTitle(), "Pollarix v1.12");
    EXPECT_EQ(TreeTexts(), QStringList({"Survey", "<Text not yet entered>"}));
    EXPECT_EQ(Screen(), "picDesign");
    EXPECT_EQ(TemporarySurveys().size(), 1);
    Menu("mnuNew"); // asks nothing, and leaves the old file behind
    EXPECT_EQ(TemporarySurveys().size(), 2);
    EXPECT_EQ(TreeTexts(), QStringList("Survey"));
    EXPECT_TRUE(window->close());
    EXPECT_EQ(TemporarySurveys().size(), 1);
}

TEST_F(MainWindowTest, ASurveyIsDesignedSavedAndOpenedAgain) {
    Start();
    const QString path = program.Path("tea.plxs");
    Type("What's your tea?");
    QTest::mouseClick(
        Find<QToolBar>("ToolbarDesign")->widgetForAction(Find<QAction>("Add Question")),
        Qt::LeftButton);
    Type("And why?");
    Menu("mnuDesignAddText");
    Type("Thank you.");
    EXPECT_EQ(TreeTexts(),
              QStringList({"Survey", "1. What's your tea?", "2. And why?", "Thank you."}));
    dialogs.answers = {MsgAnswer::Cancel};
    Menu("mnuNew");
    EXPECT_EQ(dialogs.TakeTexts(), QStringList("Do you want to save the changes you made?"));
    dialogs.fileNames = {{path, 0}};
    Menu("mnuFileSave");
    EXPECT_EQ(Find<QLabel>("StatusBar")->text(), path);
    EXPECT_EQ(SqlRows(path, "SELECT id, questionno, qtype, pos FROM question ORDER BY pos", 4),
              QStringList({"1|1|0|1", "2|2|0|2", "3||4|3"}));

    Open(""); // cancelled
    EXPECT_EQ(TreeTexts().size(), 4);
    // Close is New; then the file comes back from the menu.
    Menu("mnuFileClose");
    EXPECT_EQ(TreeTexts(), QStringList("Survey"));
    EXPECT_EQ(Find<QLabel>("StatusBar")->text(), "");
    Open(path);
    EXPECT_EQ(TreeTexts(),
              QStringList({"Survey", "1. What's your tea?", "2. And why?", "Thank you."}));
    EXPECT_EQ(dialogs.TakeTexts(), QStringList());
    EXPECT_TRUE(failures.empty());
}

TEST_F(MainWindowTest, AFileOnTheCommandLineGainsABlankQuestionAndStartsChanged) {
    const QString path = program.BlankSurvey("my survey.plxs");
    RunSql(path,
           {"INSERT INTO question (question, questionno, qtype, pos) VALUES ('one', '1', 0, 1)"});
    Start(path);
    EXPECT_EQ(TreeTexts(), QStringList({"Survey", "1. one", "<Text not yet entered>"}));
    dialogs.answers = {MsgAnswer::Cancel, MsgAnswer::No};
    EXPECT_FALSE(window->close());
    EXPECT_TRUE(window->isVisible());
    EXPECT_TRUE(window->close());
    EXPECT_EQ(dialogs.TakeTexts(), QStringList(2, "Do you want to save the changes you made?"));
    EXPECT_EQ(SqlRows(path, "SELECT count(*) FROM question", 1), QStringList("1"));
}

// The question that the start adds is in no file: to come back to it is not to come back to that.
TEST_F(MainWindowTest, UndoDoesNotTakeTheMarkOfTheFirstQuestion) {
    Start(program.BlankSurvey("tea.plxs"));
    Menu("mnuDesignAddText");
    Find<TreeView>("tvTreeView")->setFocus();
    QTest::keyClick(Find<TreeView>("tvTreeView"), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(TreeTexts().size(), 2);
    EXPECT_TRUE(program.state.FileChanged());
    dialogs.answers = {MsgAnswer::No};
    window->close();
}

// What goes wrong with the survey that is left is not told as of the one to open.
TEST_F(MainWindowTest, OpenTellsTheFailureOfTheSaveQuestionAsItsOwn) {
    const QString path = program.BlankSurvey("tea.plxs");
    Start(path);
    Type("Tea?");
    Menu("mnuDesignAddText");
    program.state.SurveyConnection.Run("PRAGMA query_only = ON");
    dialogs.answers = {MsgAnswer::Yes};
    Menu("mnuFileOpen");
    EXPECT_EQ(dialogs.TakeTexts().size(), 1);
    EXPECT_EQ(failures, std::vector<int>{8});
    program.state.SurveyConnection.Run("PRAGMA query_only = OFF");
    dialogs.answers = {MsgAnswer::No};
    window->close();
}

TEST_F(MainWindowTest, StartUpFailuresSayTheStepAndTheProgramGoesOn) {
    // It ends like a temporary survey, but is somebody's letter.
    const QString letter = program.Path("letter.tmp");
    WriteWholeFile(letter, "This is a letter and no survey.");
    Start(letter);
    const QStringList shown = dialogs.TakeTexts();
    ASSERT_EQ(shown.size(), 2);
    EXPECT_TRUE(shown[0].startsWith("Unable to open " + letter));
    EXPECT_TRUE(shown[1].startsWith("An error has occured loading please contact support at "));
    EXPECT_TRUE(shown[1].endsWith(" LoadState 14")) << shown[1].toStdString();
    EXPECT_EQ(Find<TreeView>("tvTreeLibrary")->Count(), 0);
    EXPECT_TRUE(window->close());
    EXPECT_TRUE(QFile::exists(letter));
    window->show();

    Type("Still here?");
    EXPECT_EQ(TreeTexts(), QStringList({"Survey", "1. Still here?"}));
    Menu("mnuViewAnalyse");
    ASSERT_EQ(failures.size(), 1u); // no survey file is open
    const QString path = program.BlankSurvey("good.plxs");
    RunSql(path, {"INSERT INTO question (question, questionno, qtype, pos) VALUES ('a', '1', 2, 1)",
                  "INSERT INTO response (questionid, name, pos, responseMatrixGroupID) VALUES "
                  "(1, 'yes', 1, 2)"});
    dialogs.answers = {MsgAnswer::No};
    Open(path);
    auto* grid = Find<Grid>("gSummaryReport");
    ASSERT_EQ(grid->Rows(), 3);
    // The start-up never came to select a graph style; the graph is drawn all the same.
    grid->SetRow(2);
    grid->Click();
    EXPECT_TRUE(Find<Chart>("c")->isVisible());
    EXPECT_EQ(failures.size(), 1u);
    dialogs.TakeTexts();

    QTemporaryDir empty;
    ApplicationState state(Directories{empty.path(), program.directory.path()}, program.settings,
                           dialogs);
    frmMain other(state);
    other.Form_Load({});
    EXPECT_TRUE(dialogs.TakeTexts().value(0).endsWith(" LoadState 1"));
}

TEST_F(MainWindowTest, DataCollectionIsNeverReachedWithAnUnsavedDesign) {
    Start();
    Menu("mnuViewDataCollection"); // the untouched survey needs no question
    EXPECT_EQ(Screen(), "picCollect");
    EXPECT_FALSE(Find<QToolBar>("ToolbarDesign")->isVisible());
    Menu("mnuViewDesign");
    Type("Now there is text");

    auto* bar = Find<QToolBar>("Toolbar");
    auto* button = bar->widgetForAction(Find<QAction>("Data Collection"));
    dialogs.answers = {MsgAnswer::No, MsgAnswer::Cancel};
    QTest::mouseClick(button, Qt::LeftButton);
    Menu("mnuViewDataCollection");
    EXPECT_EQ(Screen(), "picDesign");
    EXPECT_TRUE(Find<QAction>("mnuViewDesign")->isChecked());
    EXPECT_FALSE(Find<QAction>("mnuViewDataCollection")->isChecked());
    EXPECT_TRUE(Find<QAction>("Design")->isChecked());
    EXPECT_FALSE(Find<QAction>("Data Collection")->isChecked());

    const QString path = program.Path("saved.plxs");
    dialogs.answers = {MsgAnswer::Yes, MsgAnswer::Yes};
    dialogs.fileNames = {{"", 0}, {path, 0}};
    Menu("mnuViewDataCollection"); // saving is cancelled
    EXPECT_EQ(Screen(), "picDesign");
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_EQ(Screen(), "picCollect");
    EXPECT_EQ(SqlRows(path, "SELECT questionno FROM question", 1), QStringList("1"));
    Menu("mnuViewAnalyse");
    EXPECT_EQ(Screen(), "picAnalyse");
}

TEST_F(MainWindowTest, ImportsAnswersIntoTheSavedDesignAndShowsThem) {
    const QString path = program.BlankSurvey("asked.plxs");
    RunSql(path, {"INSERT INTO question (question, questionno, qtype, pos) VALUES "
                  "('Say', '1', 0, 1)"});
    WriteWholeFile(program.Path("answers.csv"), "q1\none\ntwo\n");
    MainWindow::Start(path);
    Type("more");
    user.tasks["frmImportAnswers"] = [this](QWidget& dialog) { Press("cmdImport", &dialog); };
    dialogs.answers = {MsgAnswer::No};
    Menu("mnuDataCollectionImport");
    EXPECT_EQ(Screen(), "picDesign");
    dialogs.answers = {MsgAnswer::Yes};
    dialogs.fileNames = {{program.Path("answers.csv"), 0}};
    user.seen.clear();
    dialogs.TakeTexts();
    Menu("mnuDataCollectionImport");
    EXPECT_EQ(user.seen, QStringList("frmImportAnswers"));
    EXPECT_EQ(dialogs.TakeTexts().last(), "Successfully imported 2 respondents.");
    EXPECT_EQ(Screen(), "picCollect");
    ASSERT_EQ(Find<Grid>("gRespondents")->Rows(), 3);
    EXPECT_EQ(Find<Grid>("gRespondents")->TextMatrix(1, 2), "Imported");
    Menu("mnuViewAnalyse");
    EXPECT_EQ(Find<QLabel>("lblTotalImported")->text(), "2");
    EXPECT_TRUE(failures.empty());
}

TEST_F(MainWindowTest, WhatIsTypedGoesToTheScreenThatShows) {
    Start();
    Type("abc");
    auto* txtQ = Find<RichTextBox>("txtQ");
    for (const char* screen : {"mnuViewAnalyse", "mnuViewDesign"}) {
        Menu(screen);
        QWidget* const focus = QApplication::focusWidget();
        ASSERT_NE(focus, nullptr);
        EXPECT_TRUE(focus->isVisible()) << screen;
        QTest::keyClick(focus, Qt::Key_Backspace);
    }
    EXPECT_TRUE(txtQ->hasFocus()); // where one was before
    EXPECT_EQ(txtQ->Text(), "ab");
}

TEST_F(MainWindowTest, SavingTakesTheLetterWhoseKeyIsDownAndLeavesTheCaret) {
    const QString path = program.BlankSurvey("typing.plxs");
    Start(path);
    Menu("mnuDesignAddCheckQuestion");
    auto* txtQ = Find<RichTextBox>("txtQ");
    txtQ->setFocus();
    Type("abc");
    QTest::keyClick(txtQ, Qt::Key_Left);
    QTest::keyPress(txtQ, 'x');
    Menu("mnuFileSave");
    EXPECT_EQ(PlainTextOf(SqlRows(path, "SELECT question FROM question", 1).value(1)), "abxc");
    EXPECT_TRUE(txtQ->hasFocus());
    QTest::keyClicks(txtQ, "y");
    EXPECT_EQ(txtQ->Text(), "abxyc") << "nothing was selected";
    // A menu opened by key leaves what is selected in a box.
    auto* box = Find<QLineEdit>("txtCheckResponse");
    box->setFocus();
    box->setText("abc");
    box->selectAll();
    window->menuBar()->setFocus(Qt::MenuBarFocusReason);
    EXPECT_EQ(box->selectedText(), "abc");
}

TEST_F(MainWindowTest, TheEditMenuSendsKeysToTheFocusedControl) {
    Start();
    Type("abc");
    Menu("mnuEditSelectAll");
    Menu("mnuEditCut");
    EXPECT_EQ(Find<RichTextBox>("txtQ")->Text(), "");
    EXPECT_EQ(TreeTexts().last(), "1. <Text not yet entered>"); // the keys commit the text
    Menu("mnuEditPaste");
    Menu("mnuEditPaste");
    EXPECT_EQ(TreeTexts().last(), "1. abcabc");
    Menu("mnuEditUndo");
    EXPECT_EQ(TreeTexts().last(), "1. abc");
    Menu("mnuDesignAddCheckQuestion");
    Find<TreeView>("tvTreeView")->setFocus();
    Menu("mnuEditUndo"); // of the tree: a step of the design
    EXPECT_EQ(TreeTexts().size(), 2);
    Menu("mnuEditDelete"); // a control that does nothing with it
    EXPECT_EQ(TreeTexts().size(), 2);
    EXPECT_TRUE(failures.empty());
}

TEST_F(MainWindowTest, NothingElseStartsWhileLongWorkRuns) {
    const QString path = program.BlankSurvey("tea.plxs");
    RunSql(path,
           {"INSERT INTO question (question, questionno, qtype, pos) VALUES ('Tea?', '1', 0, 1)",
            "INSERT INTO respondent (source) VALUES ('Web')"});
    Start(path);
    dialogs.fileNames = {{program.Path("answers.csv"), 0}};
    QString progress;
    QTimer::singleShot(0, window.get(), [&] { // as menus on the desktop's panel could
        if (!Find<QLabel>("StatusBar")->isVisible())
            progress = window->statusBar()->currentMessage();
        for (const char* bar : {"Toolbar", "ToolbarDesign"}) {
            for (QAction* button : Find<QToolBar>(bar)->actions())
                button->trigger();
        }
        for (QAction* item :
             window->findChildren<QAction*>(QRegularExpression("^mnu(?!Edit)"))) // keys are typed
            item->trigger();
    });
    Menu("mnuFileExport");
    EXPECT_EQ(progress, "Export: respondent 0 of 1");
    EXPECT_EQ(dialogs.fileRequests.size(), 1u);
    EXPECT_EQ(dialogs.TakeTexts(), QStringList());
    EXPECT_TRUE(window->isVisible());
    EXPECT_TRUE(Find<QLabel>("StatusBar")->isVisible());
    EXPECT_EQ(TreeTexts(), QStringList({"Survey", "1. Tea?", "<Text not yet entered>"}));
    EXPECT_TRUE(QFile::exists(program.Path("answers.csv")));
}
