// The list of respondents: what it shows, what is selected, and when it reads.
#include "CollectionScreen.h"

using namespace pollarix;
using namespace pollarix::test;

namespace {

class RespondentList : public CollectionScreen {
  protected:
    // Two open ended questions, 2 and 4, and four respondents.
    void MakeAnswers() {
        OpenBlank();
        Add(kind::Radio, "Which?", {"a"});
        Add(kind::OpenEnded, R"({\rtf1\ansi First\par second line})", {});
        Add(kind::Text, "Text", {});
        Add(kind::OpenEnded, "Other", {});
        document.DoSave();
        RunSql(path, {"INSERT INTO respondent (submitteddate, source) VALUES "
                      "('2024-03-05 09:00:01.250', 'Manual Entry'), ('2024-03-04', 'Web'), "
                      "('2024-03-05 09:00:01.250', NULL), ('yesterday', 'Manual Entry')",
                      "INSERT INTO respondent_responses (RespondentID, QuestionID, ResponseID, "
                      "SimpleResponse) VALUES (1, 2, 1, 'one'), (1, 4, 1, 'uno'), (2, 2, 1, ''), "
                      "(3, 2, 1, NULL), (3, 2, 1, 'second row'), (4, 4, 1, 'quattro')"});
    }
};

} // namespace

TEST_F(RespondentList, ShowsTheNewestFirstWithASampleAnswer) {
    MakeAnswers();
    ShowScreen();
    // Equal dates: the higher id first. What is no date stands as it is.
    EXPECT_EQ(Column(0),
              QStringList({"yesterday", "Tuesday, 5 March 2024 - 09:00:01",
                           "Tuesday, 5 March 2024 - 09:00:01", "Monday, 4 March 2024 - 00:00:00"}));
    EXPECT_EQ(Column(1), QStringList({"No Answer", "No Answer", "one", "No Answer"}));
    EXPECT_EQ(Column(2), QStringList({"Manual Entry", "", "Manual Entry", "Web"}));
    EXPECT_EQ(List().Row(), 1);
    EXPECT_EQ(List().ColSel(), 2);
    QTest::qWait(10); // painted
    EXPECT_EQ(failures, std::vector<int>());

    screen->RespondentList().RefreshRespondentList(1, 1);
    EXPECT_EQ(List().Row(), 3);
    screen->RespondentList().RefreshRespondentList(77, 0);
    EXPECT_EQ(List().Row(), 4);
}

TEST_F(RespondentList, TheSampleQuestionIsKeptByPosition) {
    MakeAnswers();
    ShowScreen();
    EXPECT_EQ(Sample().List(0), "2. First\r\nsecond line");
    EXPECT_EQ(Sample().List(1), "3. Other");
    List().SetRow(3);
    Sample().setFocus();
    QTest::keyClick(&Sample(), Qt::Key_Down);
    EXPECT_EQ(Column(1), QStringList({"quattro", "No Answer", "uno", "No Answer"}));
    EXPECT_EQ(List().Row(), 3);

    // The first question goes, and with it the second place in the box.
    picRespondentList& list = screen->RespondentList();
    RunSql(path, {"DELETE FROM question WHERE id = 2"});
    list.RefreshRespondentList(1, 0);
    EXPECT_EQ(Sample().ListIndex(), 0);
    EXPECT_TRUE(list.ExampleQuestionEventsOn);
    EXPECT_EQ(Column(1), QStringList({"quattro", "No Answer", "uno", "No Answer"}));

    RunSql(path, {"DELETE FROM question WHERE qtype = 0"});
    list.RefreshRespondentList(1, 0);
    EXPECT_FALSE(Sample().isVisible());
    EXPECT_EQ(Column(1).count("No Answer"), 4);
}

TEST_F(RespondentList, NothingSelectedNothingDone) {
    OpenBlank();
    ShowScreen();
    EXPECT_EQ(List().Rows(), 1);
    EXPECT_EQ(List().Row(), 0);
    Press("cmdEditResponse");
    Press("cmdDeleteResponse");
    const QString none =
        "No Respondent has been selected. Please select a Respondent from the list to continue.";
    EXPECT_EQ(dialogs.TakeTexts(), QStringList({none, none}));

    RunSql(path, {"INSERT INTO respondent (source) VALUES ('Web'), ('Web')"});
    screen->RespondentList().RefreshRespondentList(1, 0);
    dialogs.answers = {MsgAnswer::No, MsgAnswer::Yes};
    Press("cmdDeleteResponse");
    EXPECT_EQ(List().Rows(), 3);
    Press("cmdDeleteResponse");
    EXPECT_EQ(List().Row(), 1);

    // The rows of one survey never act on another.
    state.SurveyConnection.Close();
    dialogs.shown.clear();
    state.SurveyConnection.Open(program.BlankSurvey("other.plxs"));
    Press("cmdDeleteResponse");
    EXPECT_EQ(dialogs.TakeTexts(), QStringList(none));
    EXPECT_EQ(Column(2), QStringList(""));
}

TEST_F(RespondentList, AFileThatCannotBeWrittenSaysSoBeforeTheFirstPage) {
    MakeAnswers();
    ShowScreen();
    ASSERT_TRUE(SurveyBatch(state)); // knows of the new respondents, and reads no more
    state.SurveyConnection.Run("PRAGMA query_only = ON");
    for (const char* button : {"cmdCreateResponse", "cmdEditResponse"}) {
        QTimer::singleShot(0, screen.get(), [] {
            if (QWidget* const page = QApplication::activeModalWidget()) {
                ADD_FAILURE() << "a page came up";
                page->close();
            }
        });
        Press(button);
        QCoreApplication::processEvents();
    }
    EXPECT_EQ(failures, std::vector<int>({8, 8})); // whose box says that it can only be read
}

TEST_F(RespondentList, TheWidthThatTheUserGaveAColumnStaysHis) {
    MakeAnswers();
    picRespondentList& list = ShowScreen();
    const int wide = List().ColWidth(1);
    screen->LayOut(1000, 730);
    EXPECT_NE(List().ColWidth(1), wide); // nobody has sized it yet
    List().horizontalHeader()->resizeSection(1, 90);
    const int own = List().ColWidth(1);
    list.RefreshRespondentList(1, 0);
    screen->LayOut(1024, 730);
    EXPECT_EQ(List().ColWidth(1), own);
}

TEST_F(RespondentList, AHiddenListReadsWhenItIsShown) {
    MakeAnswers();
    picRespondentList& list = ShowScreen();
    screen->hide();
    RunSql(path, {"DELETE FROM respondent WHERE id = 4"});
    list.RefreshRespondentList(1, 2);
    EXPECT_EQ(Sample().ListCount(), 2); // at once
    EXPECT_EQ(List().Rows(), 1);
    screen->show();
    EXPECT_TRUE(QTest::qWaitFor([&] { return List().Rows() == 4; }));
    EXPECT_EQ(List().RowData(List().Row()), 2);
}
