// Walks all windows of the program as somebody does who can't see them or has no mouse: every
// control has a name to be read out, the Tab key goes as the eye does, and no letter calls two
// controls.
#include <QAccessible>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QRegularExpression>
#include <QTabBar>

#include "collection/frmManualResponse.h"
#include "design/frmMatrixAdd.h"
#include "platform/controls/Grid.h"
#include "platform/controls/ListBox.h"
#include "shell/MainWindow.h"
#include "shell/help/HelpWindow.h"
#include "support/FakeViews.h"
#include "web/WebServices.h"
#include "web/WizardServerPage.h"
#include "web/WizardWelcomePage.h"
#include "web/frmAddServer.h"
#include "web/frmWizWebCollect_Download.h"
#include "web/frmWizWebCollect_Login.h"
#include "web/frmWizWebCollect_SelectSurvey.h"
#include "web/frmWizWebPublish_Complete.h"
#include "web/frmWizWebPublish_Login.h"
#include "web/frmWizWebPublish_SurveyName.h"
#include "web/frmWizWebPublish_Upload.h"

using namespace pollarix;
using namespace pollarix::test;

namespace {

// A control that the Tab key stops at, and not a part inside of one.
bool IsStop(const QWidget& widget) {
    return widget.isVisible() && widget.isEnabled() && (widget.focusPolicy() & Qt::TabFocus) &&
           !qobject_cast<const QComboBox*>(widget.parentWidget()) && !widget.focusProxy();
}

std::vector<QWidget*> StopsOf(QWidget& window) {
    std::vector<QWidget*> stops;
    for (QWidget* widget = window.nextInFocusChain(); widget != &window;
         widget = widget->nextInFocusChain())
        if (widget->window() == &window && IsStop(*widget))
            stops.push_back(widget);
    return stops;
}

std::string Named(const QWidget& widget) {
    return widget.objectName().toStdString() + " (" + widget.metaObject()->className() + ")";
}

void CheckNames(QWidget& window) {
    for (QWidget* widget : window.findChildren<QWidget*>()) {
        if (widget->window() != &window || !IsStop(*widget))
            continue;
        const QAccessibleInterface* const reader = QAccessible::queryAccessibleInterface(widget);
        ASSERT_NE(reader, nullptr);
        EXPECT_FALSE(reader->text(QAccessible::Name).isEmpty())
            << Named(*widget) << " in " << Named(window) << " has no name";
    }
}

// From one stop to the next the eye goes on, down, or up to the next column; never up or back
// within a column.
void CheckTabOrder(QWidget& window) {
    const std::vector<QWidget*> stops = StopsOf(window);
    const auto place = [&](const QWidget* widget) {
        return QRect(widget->mapTo(&window, QPoint(0, 0)), widget->size());
    };
    // The chain is a ring: it may begin anywhere, so one step back to the start is right.
    int steps = 0;
    std::string back;
    for (std::size_t i = 0; i < stops.size(); ++i) {
        const QWidget* const next = stops[(i + 1) % stops.size()];
        const QRect from = place(stops[i]);
        const QRect to = place(next);
        const bool above = to.bottom() <= from.top() + 2;
        const bool sameLine = to.top() < from.bottom() && to.bottom() > from.top();
        if ((above && to.left() <= from.right()) || (sameLine && to.right() <= from.left() + 2)) {
            ++steps;
            back += Named(*stops[i]) + " -> " + Named(*next) + "; ";
        }
    }
    EXPECT_LE(steps, 1) << Named(window) << ": " << back;
}

void CheckMnemonics(QWidget& window) {
    static const QRegularExpression mnemonic("&([^&])");
    std::map<QString, QStringList> owners;
    const auto note = [&](const QString& text) {
        const auto found = mnemonic.match(QString(text).remove("&&"));
        if (found.hasMatch())
            owners[found.captured(1).toLower()] << text;
    };
    for (const QAbstractButton* button : window.findChildren<QAbstractButton*>())
        if (button->isVisible() && button->window() == &window)
            note(button->text());
    for (const QLabel* label : window.findChildren<QLabel*>())
        if (label->isVisible() && label->buddy() && label->window() == &window)
            note(label->text());
    for (const QTabBar* bar : window.findChildren<QTabBar*>())
        for (int i = 0; i < bar->count(); ++i)
            note(bar->tabText(i));
    for (const QMenuBar* bar : window.findChildren<QMenuBar*>())
        for (const QAction* menu : bar->actions())
            note(menu->text());
    for (const auto& [letter, texts] : owners) {
        // These captions are given; the key goes from the one to the other.
        if (texts == QStringList({"Multiple choice - &many Responses", "Question &Matrix"}) ||
            texts == QStringList({"&Cancel", "&Create New Account"}))
            continue;
        EXPECT_EQ(texts.size(), 1) << Named(window) << ", " << letter.toStdString() << ": "
                                   << texts.join(" | ").toStdString();
    }
}

void Check(QWidget& window) {
    SCOPED_TRACE(Named(window));
    window.show();
    QTest::qWait(20);
    CheckNames(window);
    CheckTabOrder(window);
    CheckMnemonics(window);
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

TEST_F(AccessibilityTest, EachPageOfTheWizards) {
    Internet internet;
    wininet transfer(internet);
    modWebServer server(transfer, program.state.directories);
    FakeViews views; // nobody asks them: the pages are left before their work begins
    const WebServices services{program.state, views, transfer, server};
    WizardRun run;
    PublishState publish;
    publish.PublishedURL = "https://survey.pollarix.example/1";
    CollectState collect;
    bool showWelcome = true;
    std::int16_t index = -1;
    WizardWelcomePage welcome(run, "frmWizWebPublish_Welcome", "Web Publish Wizard", "Welcome",
                              "Using this wizard", showWelcome, nullptr);
    WizardServerPage type(run, "frmWizWebPublish_ServerType", "Select", program.state, index,
                          nullptr);
    frmWizWebPublish_Login login(run, program.state, publish, nullptr);
    frmWizWebPublish_SurveyName name(run, program.state, publish, nullptr);
    frmWizWebPublish_Upload upload(run, services, publish, nullptr);
    frmWizWebPublish_Complete complete(run, program.dialogs, publish, nullptr);
    frmWizWebCollect_Login collectLogin(run, services, collect, nullptr);
    frmWizWebCollect_SelectSurvey select(run, services, collect, nullptr);
    frmWizWebCollect_Download download(run, services, collect, nullptr);
    WizardPage collected(run, "frmWizWebCollect_Complete", "Finished", "Downloaded.", 6, nullptr);
    frmAddServer add(program.settings, program.dialogs, nullptr);
    for (QWidget* page :
         std::initializer_list<QWidget*>{&upload, &select, &download, &welcome, &type, &login,
                                         &name, &complete, &collectLogin, &collected, &add})
        Check(*page);
}
