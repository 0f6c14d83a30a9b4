// The help as a person uses it: from the menu, by F1, also in a dialog that waits, and by search.
#include <QHelpContentWidget>
#include <QHelpEngine>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QMessageBox>
#include <QTabBar>
#include <QTabWidget>
#include <QTextBrowser>

#include "platform/controls/RichTextBox.h"
#include "shell/MainWindow.h"
#include "shell/help/HelpWindow.h"

using namespace pollarix;
using namespace pollarix::test;

namespace {

class HelpTest : public testing::Test {
  protected:
    HelpFile help;

    HelpTest() { help.SetPath(DataFile("bhelp.qch")); }

    QString Page() { return help.Window().Address().fileName(); }
    template <typename Control> Control* Find(const char* name) {
        return help.Window().findChild<Control*>(name);
    }
    // The pages that a search finds, the best first.
    QStringList Search(const QString& words) {
        auto* const box = Find<QLineEdit>("txtSearch");
        auto* const list = Find<QListWidget>("lstFound");
        box->setText(words);
        QTest::keyClick(box, Qt::Key_Return);
        QStringList pages;
        for (int i = 0; i < list->count(); ++i)
            pages << list->item(i)->data(Qt::UserRole).toUrl().fileName();
        return pages;
    }
};

} // namespace

TEST_F(HelpTest, EveryScreenDialogAndPageOfAWizardHasItsTopic) {
    help.ShowTopic(HelpFile::Contents);
    EXPECT_EQ(Page(), "contents.html");
    help.ShowTopic(HelpFile::Tutorial);
    EXPECT_EQ(Page(), "tutorial.html");
    const QString names =
        "picDesign picCollect picAnalyse frmLogic frmMatrixDefine frmMatrixAdd frmManualResponse "
        "frmAddServer frmTip frmAbout HelpWindow PrintDialog PageSetupDialog "
        "frmWizWebPublish_Welcome "
        "frmWizWebPublish_ServerType frmWizWebPublish_Login frmWizWebPublish_SurveyName "
        "frmWizWebPublish_Upload frmWizWebPublish_Complete frmWizWebCollect_Welcome "
        "frmWizWebCollect_ServerType frmWizWebCollect_Login frmWizWebCollect_SelectSurvey "
        "frmWizWebCollect_Download frmWizWebCollect_Complete";
    for (const QString& name : names.split(' ')) {
        EXPECT_TRUE(help.ShowTopicOf(name)) << name.toStdString();
        // The browser stands where the name leads, and there is something there.
        EXPECT_EQ(help.Window().Address(), help.AddressOf(name)) << name.toStdString();
        EXPECT_FALSE(help.Engine().fileData(help.AddressOf(name)).isEmpty()) << name.toStdString();
    }
    EXPECT_FALSE(help.ShowTopicOf("frmNoSuchWindow"));
}

TEST_F(HelpTest, WhatANewcomerWouldTryIsFoundAndTheContentsFollow) {
    help.ShowSearch();
    EXPECT_EQ(Page(), "contents.html"); // beside an empty search
    for (const auto& [words, page] :
         {std::pair("how do I delete a question", "question-list.html"),
          {"five", "question-types.html"},        // for its title
          {"LIBRARIES skipped", "library.html"}}) // other forms; together they are on no page
        EXPECT_TRUE(Search(words).mid(0, 3).contains(page)) << words;
    for (const char* nothing : {"", "what is the?", "*", "Größe"}) {
        EXPECT_EQ(Search(nothing), QStringList()) << nothing;
        EXPECT_EQ(Find<QLabel>("lblFound")->text(), "No topic found.");
    }
    // A find opens by the keyboard.
    Search("spreadsheet");
    QTest::keyClick(Find<QListWidget>("lstFound"), Qt::Key_Return);
    auto* const contents = Find<QHelpContentWidget>("Contents");
    auto* const browser = Find<QTextBrowser>("Browser");
    const auto place = [&] { return contents->currentIndex().data().toString(); };
    ASSERT_TRUE(QTest::qWaitFor([&] { return place() == "Exporting answers"; }));
    help.ShowTopicOf("frmLogic");
    EXPECT_EQ(place(), QString("Jumps"));
    EXPECT_TRUE(contents->visualRect(contents->currentIndex()).isValid()) << "out of sight";
    browser->setSource(QUrl("question-types.html#text"));
    EXPECT_EQ(place(), QString("The five kinds of question"));
    browser->backward();
    EXPECT_EQ(place(), QString("Jumps"));
    help.ShowTopicOf("frmMatrixAdd"); // leads to a place within its page
    EXPECT_EQ(place(), QString("Answer scales"));
}

TEST_F(HelpTest, LinksStayInTheHelp) {
    help.ShowTopic(HelpFile::Tutorial);
    auto* const browser = Find<QTextBrowser>("Browser");
    for (const char* outside :
         {"https://www.pollarix.example/", "file:///etc/passwd", "nowhere.html"})
        browser->setSource(QUrl(outside));
    EXPECT_NE(browser->source().scheme(), "https");
    EXPECT_NE(browser->source().scheme(), "file");
    EXPECT_TRUE(
        browser->loadResource(QTextDocument::HtmlResource, QUrl("file:///etc/passwd")).isNull());
}

using HelpWindowTest = MainWindow;

TEST_F(HelpWindowTest, F1OpensTheTopicOfTheScreenAndOfTheDialogThatWaits) {
    Start();
    window->AddBlankOpenEndedQuestion();
    HelpWindow& helpWindow = window->Help().Window();
    const auto page = [&] { return helpWindow.Address().fileName(); };

    QTest::keyClick(Find<RichTextBox>("txtQ"), Qt::Key_F1);
    EXPECT_EQ(page(), "design.html");
    EXPECT_TRUE(helpWindow.isVisible());
    window->ShowScreen("Analyse");
    window->activateWindow();
    QTest::keyClick(window->focusWidget() ? window->focusWidget() : window.get(), Qt::Key_F1);
    EXPECT_EQ(page(), "analysis.html");

    // A dialog takes the main window's input, but not the help's.
    user.tasks["frmTip"] = [&](QWidget& tip) {
        QTest::qWait(20);
        auto* const tabs = helpWindow.findChild<QTabWidget*>("Tabs");
        tabs->setCurrentIndex(0);
        QTest::keyClick(&tip, Qt::Key_F1);
        EXPECT_EQ(page(), "tips.html");
        window->Help().ShowTopicOf("picDesign");
        QMessageBox box(&tip);
        QTest::keyClick(&box, Qt::Key_F1);
        EXPECT_EQ(page(), "tips.html") << "of the dialog that a message belongs to";
        // Through the window, as the mouse does: a window without input would not get it.
        const QPoint index =
            tabs->tabBar()->mapTo(&helpWindow, tabs->tabBar()->tabRect(1).center());
        QTest::mouseClick(helpWindow.windowHandle(), Qt::LeftButton, {}, index);
        EXPECT_EQ(tabs->currentIndex(), 1);
        // It begins with a name.
        const auto* const list = helpWindow.findChild<QListView*>("Index");
        const auto text = [&](int row) { return list->model()->index(row, 0).data().toString(); };
        EXPECT_TRUE(QTest::qWaitFor([&] { return list->model()->rowCount() > 9; }));
        for (int row = 0; row < 9; ++row)
            EXPECT_EQ(list->isRowHidden(row), text(row).isEmpty()) << row;
    };
    Menu("mnuHelpTipOfTheDay");
    EXPECT_TRUE(helpWindow.isVisible());
}
