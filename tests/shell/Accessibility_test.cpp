// Walks the windows of the program as somebody does who can't see them or has no mouse. The pages
// of the wizards are looked at by their own tests.
#include <QLineEdit>

#include "collection/frmManualResponse.h"
#include "design/frmMatrixAdd.h"
#include "platform/controls/Grid.h"
#include "platform/controls/ListBox.h"
#include "shell/MainWindow.h"
#include "shell/help/HelpWindow.h"
#include "support/Accessible.h"

using namespace pollarix;
using namespace pollarix::test;

namespace {

void Check(QWidget& window) {
    SCOPED_TRACE(Named(window));
    window.show();
    QTest::qWait(20);
    CheckAccessible(window);
}

using AccessibilityTest = MainWindow;

} // namespace

TEST_F(AccessibilityTest, TheMainWindowWithItsScreensAndTheDialogsOfTheDesign) {
    const QString path = program.Path("museum-visit.plxs");
    ASSERT_TRUE(QFile::copy(DataFile("samples/museum-visit.plxs"), path));
    ASSERT_TRUE(QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner));
    Start(path);
    Check(*window);
    for (const char* dialog : {"frmMatrixDefine", "frmLogic", "frmTip", "frmAbout", "frmSplash"})
        user.tasks[dialog] = Check;
    user.seen.clear();
    for (int option = 4; option > 0; --option) {
        Press(QString("optQType(%1)").arg(option).toUtf8());
        Check(*window);
        if (option == 4)
            Press("cmdMatrixDefine");
        if (option == 2) {
            auto* const box = Find<QLineEdit>("txtCheckResponse");
            QTest::keyClicks(box, "one");
            QTest::keyClick(box, Qt::Key_Return);
            Find<ListBox>("lstCheckResponses")->SetListIndex(0);
            Press("cmdRadioLogic");
        }
    }
    Menu("mnuHelpTipOfTheDay");
    Menu("mnuAbout");
    EXPECT_EQ(user.seen, QStringList({"frmMatrixDefine", "frmLogic", "frmTip", "frmAbout"}));
    program.dialogs.answers = {MsgAnswer::Yes};
    for (const char* screen : {"mnuViewDataCollection", "mnuViewAnalyse"}) {
        Menu(screen);
        Check(*window);
    }
    // The graph of the first response; then it covers the rest.
    auto* const list = Find<Grid>("gSummaryReport");
    list->SetRow(2);
    list->Click();
    EXPECT_TRUE(Find<QWidget>("c")->isVisible());
    Check(*window);
    Press("cmdExpand");
    CheckNames(*window);
    Menu("mnuAnalyseExplore");
    Check(*Find<QWidget>("frmExplore"));
    frmMatrixAdd scale(program.state, window.get());
    Check(scale);
}

TEST_F(AccessibilityTest, TheHelpOnEachOfItsTabs) {
    HelpFile help;
    help.SetPath(DataFile("bhelp.qch"));
    help.ShowTopic(1);
    Check(help.Window());
    help.ShowIndex();
    Check(help.Window());
    help.ShowSearch();
    Check(help.Window());
}

TEST_F(AccessibilityTest, EachPageOfManualEntry) {
    const QString path = program.BlankSurvey("pages.plxs");
    RunSql(path, {"INSERT INTO question (question, questionno, qtype, pos) VALUES "
                  "('Say', '1', 0, 1), ('Tick', '2', 1, 2), ('Choose', '3', 2, 3), "
                  "('Rate', '4', 3, 4), ('Thanks', '', 4, 5)",
                  "INSERT INTO response (questionid, name, pos, responseMatrixGroupID) VALUES "
                  "(2, 'a', 1, 2), (2, 'b', 2, 2), (3, 'a', 1, 2), (3, 'b', 2, 2), (4, 'a', 1, 2), "
                  "(4, 'b', 2, 2)",
                  "INSERT INTO respondent (source) VALUES ('Manual Entry')"});
    program.state.SurveyConnection.Open(path);
    ManualEntryState entry;
    entry.CurrentRespondentID = 1;
    frmManualResponse window(program.state, entry, nullptr);
    for (int page = 1; page <= 5; ++page) {
        Check(window);
        QTest::mouseClick(window.findChild<QAbstractButton*>("cmdDCAnswersNext"), Qt::LeftButton);
    }
    EXPECT_EQ(program.dialogs.TakeTexts(), QStringList("Survey completed."));
}
