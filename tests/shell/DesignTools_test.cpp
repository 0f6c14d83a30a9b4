// The windows beside the design, used from the main window's menus as a person does.
#include <QDir>
#include <QLabel>
#include <QLineEdit>

#include "platform/controls/Grid.h"
#include "platform/controls/ListBox.h"
#include "platform/controls/RichTextBox.h"
#include "platform/controls/TreeView.h"
#include "shell/MainWindow.h"
#include "support/Accessible.h"
#include "support/Bytes.h"

using namespace pollarix;
using namespace pollarix::test;

namespace {

// A question with two equal responses, one that leads past the third, and one without text.
class DesignToolsTest : public MainWindow {
  protected:
    const QString path = program.BlankSurvey("visit.plxs");

    void Start() {
        RunSql(path, {"INSERT INTO question (question, questionno, qtype, pos) VALUES "
                      "('Been here?', '1', 2, 1), ('When?', '2', 0, 2), ('Why?', '3', 0, 3), "
                      "('', '4', 0, 4)",
                      "INSERT INTO response (questionid, name, pos, responseMatrixGroupID, "
                      "LogicJumpToQuestionID) VALUES (1, 'yes', 1, 2, 3), (1, 'no', 2, 2, 3), "
                      "(1, 'No', 3, 2, 3)"});
        MainWindow::Start(path);
    }
    // A window beside the main one counts as active for Qt's own wait while that is.
    static bool IsActive(const QWidget& window) {
        return QTest::qWaitFor([&] { return window.isActiveWindow(); });
    }
    void Shortcut(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        window->activateWindow();
        ASSERT_TRUE(IsActive(*window));
        QTest::keyClick(window.get(), key, modifiers);
    }
    QString Selected() const { return Find<TreeView>("tvTreeView")->SelectedItem()->Text(); }
};

} // namespace

TEST_F(DesignToolsTest, ThePreviewWalksWhatIsNotSavedAndStoresNothing) {
    Start();
    const QByteArray before = BytesOf(path);
    const QStringList files = QDir(program.directory.path()).entryList(QDir::Files);
    // A new question, and another text of the first; nothing of it is in the file.
    Menu("mnuDesignAddRadioQuestion");
    auto* const txtQ = Find<RichTextBox>("txtQ");
    txtQ->setFocus();
    QTest::keyClicks(txtQ, "Coming back?");
    for (const char* response : {"yes", "never"}) {
        QTest::keyClicks(Find<QLineEdit>("txtCheckResponse"), response);
        QTest::keyClick(Find<QLineEdit>("txtCheckResponse"), Qt::Key_Return);
    }
    const SurveySnapshot design = SurveySnapshot::Take(program.state.CurrentSurvey);
    QStringList pages;
    user.tasks["frmPreview"] = [&](QWidget& preview) {
        CheckAccessible(preview);
        for (int page = 0; page < 9 && preview.isVisible(); ++page) {
            pages << preview.findChild<QLabel*>("lblDCQuestion")->text();
            auto* const second = preview.findChild<QAbstractButton*>("optDCRadio(1)");
            if (second->isVisible())
                second->click();
            preview.findChild<QAbstractButton*>("cmdDCAnswersNext")->click();
        }
    };
    Menu("mnuDesignPreview");
    EXPECT_EQ(pages, QStringList({"1. Been here?", "3. Why?", "4. ", "5. Coming back?"}));
    pages.clear();
    Menu("mnuDesignPreviewFromHere");
    EXPECT_EQ(pages, QStringList("5. Coming back?"));
    EXPECT_EQ(dialogs.TakeTexts(), QStringList(2, "Survey completed."));

    EXPECT_EQ(SurveySnapshot::Take(program.state.CurrentSurvey), design);
    EXPECT_TRUE(program.state.FileChanged());
    EXPECT_EQ(program.state.SurveyConnection.Path(), path);
    EXPECT_EQ(BytesOf(path), before);
    EXPECT_EQ(QDir(program.directory.path()).entryList(QDir::Files), files);
    EXPECT_TRUE(failures.empty());
    dialogs.answers = {MsgAnswer::No};
    Menu("mnuNew"); // nothing to preview, which is told
    Menu("mnuDesignPreview");
    EXPECT_EQ(dialogs.TakeTexts().last(), "There is no question to preview yet.");
}

TEST_F(DesignToolsTest, FindLeadsToQuestionsResponsesAndAnswers) {
    Start();
    RunSql(path,
           {"INSERT INTO respondent (id, source, submitteddate) VALUES (1, 'Web', '2024-01-01'), "
            "(2, 'Web', '2024-01-02')",
            "INSERT INTO respondent_responses (RespondentID, QuestionID, ResponseID, "
            "SimpleResponse) VALUES (1, 3, 1, 'Die K\u00c4SETHEKE, 100%'), (2, 3, 1, 'no k_se'), "
            "(2, 77, 1, 'K\u00e4se')"});
    Shortcut(Qt::Key_F, Qt::ControlModifier);
    auto* const find = Find<QWidget>("frmFind");
    ASSERT_TRUE(IsActive(*find));
    CheckAccessible(*find);
    auto* const box = Find<QLineEdit>("txtFind");
    auto* const found = Find<Grid>("gFound");
    const auto look = [&](const QString& text) {
        box->setText(text);
        QTest::keyClick(box, Qt::Key_Return);
    };
    look("NO");
    ASSERT_EQ(found->Rows(), 3);
    EXPECT_EQ(Selected(), "1. Been here?");
    EXPECT_EQ(Find<ListBox>("lstCheckResponses")->ListIndex(), 1);
    look("wh");
    EXPECT_EQ(Selected(), "2. When?");
    // It goes on from the main window, also after a save, and begins again.
    find->close();
    Menu("mnuFileSave");
    Shortcut(Qt::Key_F3);
    EXPECT_EQ(Selected(), "3. Why?");
    Shortcut(Qt::Key_F3);
    EXPECT_EQ(Selected(), "2. When?");
    Press("cmdDelete"); // a place that is gone is not gone to
    Shortcut(Qt::Key_F3);
    EXPECT_EQ(Selected(), "2. Why?");
    Shortcut(Qt::Key_F3);
    EXPECT_EQ(Selected(), "2. Why?");

    // On the Analyze screen, the rows there, and the answers.
    dialogs.answers = {MsgAnswer::No, MsgAnswer::Yes};
    Menu("mnuViewAnalyse");
    Shortcut(Qt::Key_F, Qt::ControlModifier);
    look("yes");
    EXPECT_TRUE(Find<QWidget>("picAnalyse")->isVisible());
    EXPECT_EQ(Find<Grid>("gSummaryReport")->Row(), 2);
    look("K\u00e4se");
    EXPECT_EQ(dialogs.TakeTexts().size(), 1); // the design was not saved: No
    EXPECT_TRUE(Find<QWidget>("picAnalyse")->isVisible());
    ASSERT_EQ(found->Rows(), 2);
    EXPECT_EQ(found->TextMatrix(1, 2), "Die K\u00c4SETHEKE, 100%");
    Press("cmdFindNext"); // Yes
    EXPECT_TRUE(Find<QWidget>("picCollect")->isVisible());
    auto* const respondents = Find<Grid>("gRespondents");
    EXPECT_EQ(respondents->RowData(respondents->Row()), 1);
    EXPECT_EQ(respondents->TextMatrix(respondents->Row(), 1), "Die K\u00c4SETHEKE, 100%");
    look("_");
    EXPECT_EQ(respondents->RowData(respondents->Row()), 2);
    EXPECT_EQ(found->Rows(), 2);
    look("0%");
    EXPECT_EQ(found->Rows(), 2);
    look("nowhere");
    EXPECT_EQ(Find<QLabel>("lblFound")->text(), "It was not found.");

    RunSql(path, {"WITH RECURSIVE n (i) AS (SELECT 1 UNION SELECT i + 1 FROM n WHERE i < 1100) "
                  "INSERT INTO respondent_responses (RespondentID, QuestionID, ResponseID, "
                  "SimpleResponse) SELECT 1, 3, 1, 'many ' || i FROM n"});
    look("many");
    EXPECT_EQ(found->Rows(), 1001);
    EXPECT_EQ(Find<QLabel>("lblFound")->text(), "More than 1000 places; these are the first.");
    EXPECT_TRUE(failures.empty());
}

TEST_F(DesignToolsTest, TheCheckLeadsToEachPlaceAndPublishingOffersIt) {
    Start();
    Menu("mnuViewAnalyse");
    Menu("mnuDesignCheck");
    auto* const check = Find<QWidget>("frmCheckSurvey");
    ASSERT_TRUE(IsActive(*check));
    CheckAccessible(*check);
    auto* const found = Find<Grid>("gFindings");
    ASSERT_EQ(found->Rows(), 4);
    EXPECT_EQ(found->TextMatrix(1, 2), "Responses 2 and 3 are equal: \"No\"");
    EXPECT_EQ(found->TextMatrix(2, 1), "2. When?");
    EXPECT_EQ(found->TextMatrix(3, 0), "Problem");

    QTest::keyClick(found, Qt::Key_Return);
    EXPECT_TRUE(Find<QWidget>("picDesign")->isVisible());
    EXPECT_EQ(Selected(), "1. Been here?");
    EXPECT_EQ(Find<ListBox>("lstCheckResponses")->ListIndex(), 2);
    EXPECT_TRUE(IsActive(*window));
    EXPECT_EQ(QApplication::focusWidget(), Find<ListBox>("lstCheckResponses"));

    // One is mended, and the survey saved, which gives all questions new keys.
    Press("cdmCheckDelete");
    Menu("mnuFileSave");
    check->activateWindow();
    ASSERT_TRUE(IsActive(*check));
    ASSERT_EQ(found->Rows(), 3);
    QTest::keyClick(found, Qt::Key_Down);
    Press("cmdGoTo");
    EXPECT_EQ(Selected(), "4. ");
    check->close();

    dialogs.answers = {MsgAnswer::Yes, MsgAnswer::No};
    Menu("mnuDataPublishWeb");
    EXPECT_TRUE(check->isVisible());
    EXPECT_FALSE(user.seen.contains("frmWizWebPublish_Welcome"));
    check->close();
    Menu("mnuDataPublishWeb");
    EXPECT_FALSE(check->isVisible());
    EXPECT_TRUE(user.seen.contains("frmWizWebPublish_Welcome"));
    EXPECT_EQ(dialogs.TakeTexts(),
              QStringList(2, "Check Survey finds 2 problems in this survey. Do you want to look at "
                             "them before publishing?"));
    EXPECT_TRUE(failures.empty());
}
