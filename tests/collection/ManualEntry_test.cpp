// Answers typed in page by page, with mouse and keys, and the rows they leave in the file.
#include "CollectionScreen.h"

using namespace pollarix;
using namespace pollarix::test;

namespace {

class ManualEntry : public CollectionScreen {};

constexpr const char* AddOne = "cmdCreateResponse";
constexpr const char* EditOne = "cmdEditResponse";

} // namespace

TEST_F(ManualEntry, ThreeTypedInOneEditedOneCancelledOneDeleted) {
    MakeSurvey();
    ShowScreen();

    Enter(AddOne, [&](EntryPage page) {
        EXPECT_EQ(page.Question(), "Welcome"); // no number
        EXPECT_EQ(page.Place(), "Before question 1 of 6, 1 respondent");
        page.Key(Qt::Key_Return);
        EXPECT_EQ(page.Question(), "1. Your first visit?");
        page.Previous();
        page.Previous(); // does nothing on the first page
        EXPECT_EQ(page.Question(), "Welcome");
        page.Next();
        EXPECT_EQ(page.Chosen("optDCRadio"), QList<int>());
        page.Choose(0);
        page.Next();
        EXPECT_EQ(page.Question(), "4. Did you like");
        page.Next(); // untouched: the first point for each
        page.Next(); // nothing chosen, no row and no jump
        EXPECT_EQ(page.Question(), "6. Anything else?");
        page.Type("Soup");
        page.Key(Qt::Key_Return); // a line, not the next page
        page.Type("& more");
        EXPECT_EQ(dialogs.TakeTexts(), QStringList());
        page.Next();
        EXPECT_EQ(dialogs.TakeTexts(), QStringList("Survey completed."));
    });
    EXPECT_EQ(screen->focusWidget()->objectName(), AddOne);
    const QStringList first = {"1|2|1||NULL", "1|5|8||46", "1|5|9||46",
                               "1|7|1|Soup\r\n& more|NULL"};
    EXPECT_EQ(Answers(), first);

    Enter(AddOne, [&](EntryPage page) {
        page.Next();
        page.Key(Qt::Key_1);
        page.Key(Qt::Key_2);
        page.Key(Qt::Key_9); // there is none
        page.Key(Qt::Key_Return);
        EXPECT_EQ(page.Question(), "2. Why again?");
        EXPECT_EQ(page.Place(), "Question 2 of 6, 2 respondents");
        page.Type("Near");
        QTest::keyClick(&page.window, Qt::Key_N, Qt::AltModifier); // acts before the next key
        page.Key(Qt::Key_Space);                                   // the first box has the focus
        page.Key(Qt::Key_Down);
        page.Key(Qt::Key_Down);
        page.Key(Qt::Key_Space);
        page.Key(Qt::Key_2);
        page.Key(Qt::Key_2);
        EXPECT_EQ(page.Chosen("chkDCCheck"), QList<int>({0, 2}));
        page.Key(Qt::Key_Return);
        EXPECT_EQ(page.Question(), "4. Did you like");
        page.Key(Qt::Key_3); // and to the next row
        page.Key(Qt::Key_4); // there is none
        page.Key(Qt::Key_1);
        EXPECT_EQ(page.FocusedControl(), "cmdDCAnswersNext");
        page.ClickCell(2, 2);
        page.ClickCell(2, 2); // stays chosen
        page.Next();
        page.Choose(0);
        page.Next();
        EXPECT_EQ(page.Question(), "2. Why again?"); // back, with what was stored
        EXPECT_EQ(page.Find<QPlainTextEdit>("txtDCSimpleResponse").toPlainText(), "Near");
        page.Type("!");
        page.Next();
        EXPECT_EQ(page.Chosen("chkDCCheck"), QList<int>({0, 2}));
        page.Tick(0);
        page.Next();
        EXPECT_EQ(page.Matrix().TextMatrix(1, 3), "Yes");
        EXPECT_EQ(page.Matrix().TextMatrix(1, 1), "");
        page.Next();
        EXPECT_EQ(page.Chosen("optDCRadio"), QList<int>({0}));
        page.Choose(1);
        page.Next();
        page.Previous(); // to the position before
        EXPECT_EQ(page.Question(), "5. Once more?");
        EXPECT_EQ(page.Chosen("optDCRadio"), QList<int>({1}));
        page.Next();
        page.Next();
    });
    const QStringList second = {"2|2|2||NULL", "2|3|1|!Near|NULL", "2|4|7||NULL", "2|5|9||47",
                                "2|5|8||48",   "2|6|11||NULL",     "2|7|1||NULL"};
    EXPECT_EQ(Answers(), first + second);

    Enter(AddOne, [&](EntryPage page) {
        page.Next();
        page.Choose(1);
        page.Next();
        page.Type("never stored");
        page.Key(Qt::Key_Escape);
    });
    const QStringList third = {"3|2|2||NULL"};
    EXPECT_EQ(Answers(), first + second + third);
    EXPECT_EQ(List().RowData(1), 3);

    // The first one after all was no first visit. Answers of pages not walked stay.
    List().SetRow(3);
    EnterByKey(List(), Qt::Key_Return, [&](EntryPage page) {
        page.Next();
        EXPECT_EQ(page.Chosen("optDCRadio"), QList<int>({0}));
        page.Choose(1);
        page.Next();
        page.Type("Hungry");
        page.Next();
        page.Cancel();
    });
    const QStringList edited = {"1|2|2||NULL", "1|3|1|Hungry|NULL"};
    EXPECT_EQ(Answers(), first.mid(1) + second + third + edited);

    List().SetRow(2);
    dialogs.answers = {MsgAnswer::Yes};
    dialogs.shown.clear();
    QTest::keyClick(&List(), Qt::Key_Delete);
    EXPECT_EQ(dialogs.TakeTexts(), QStringList("Delete Respondent? This will delete all responses "
                                               "provided by this Respondent."));
    EXPECT_EQ(Answers(), first.mid(1) + third + edited);
    EXPECT_EQ(SqlRows(path, "SELECT id, source FROM respondent", 2),
              QStringList({"1|Manual Entry", "3|Manual Entry"}));
    EXPECT_EQ(List().Row(), 1);
    EXPECT_EQ(Column(1), QStringList({"No Answer", "Hungry"}));
    EXPECT_FALSE(state.FileChanged());
    EXPECT_EQ(failures, std::vector<int>());
}

TEST_F(ManualEntry, AnAnswerFarBelowIsInViewWhenItIsEdited) {
    OpenBlank();
    QStringList many;
    for (int i = 1; i <= 60; ++i)
        many << QString("Response %1").arg(i);
    Add(kind::Text, "Hello", {});
    Add(kind::Check, "Which?", many);
    document.DoSave();
    RunSql(path, {"INSERT INTO respondent (source) VALUES ('Web')",
                  "INSERT INTO respondent_responses (RespondentID, QuestionID, ResponseID) VALUES "
                  "(1, 2, 50), (1, 2, 55)"});
    ShowScreen();
    Enter(EditOne, [&](EntryPage page) {
        const auto inView = [&](int i) {
            return page.Answer("chkDCCheck", i).visibleRegion().boundingRect().height() > 10;
        };
        page.Next();
        EXPECT_TRUE(QTest::qWaitFor([&] { return inView(49) && !inView(0); }));
        EXPECT_EQ(page.FocusedControl(), "chkDCCheck(0)");
        page.Key(Qt::Key_1); // what the keys go to is in view again
        EXPECT_TRUE(inView(0));
        page.Cancel();
    });
}

TEST_F(ManualEntry, AJumpToNowhereShowsThePageAgain) {
    MakeSurvey();
    RunOwnSql(state, {"UPDATE response SET LogicJumpToQuestionID = 32768 WHERE id = 1"});
    ShowScreen();
    QStringList stored;
    Enter(AddOne, [&](EntryPage page) {
        page.Next();
        for (const int choice : {2, 3, 0}) { // to itself, to what is gone, and beyond 16 bits
            page.Choose(choice);
            page.Next();
            EXPECT_EQ(page.Question(), "1. Your first visit?");
            stored << Answers().join(' ');
        }
        page.Cancel();
    });
    EXPECT_EQ(stored, QStringList({"1|2|3||NULL", "1|2|4||NULL", "1|2|4||NULL"}))
        << "what fails takes nothing away";
    EXPECT_EQ(failures, std::vector<int>{failure::Overflow});
}

TEST_F(ManualEntry, EnterOnAMatrixIsWhatThePageBeforeLeft) {
    OpenBlank();
    Add(kind::Matrix, "First of all", {"a", "b"}, 11);
    Add(kind::Check, "Which?", {"x"});
    Add(kind::Matrix, "After a check page", {"c"}, 11);
    Add(kind::OpenEnded, "Why?", {});
    Add(kind::Matrix, "After a text page", {"d"}, 11);
    Add(kind::Radio, "One?", {"y"});
    document.DoSave();
    ShowScreen();
    Enter(AddOne, [&](EntryPage page) {
        EXPECT_EQ(page.FocusedControl(), "gMatrix");
        page.Key(Qt::Key_Right);
        page.Key(Qt::Key_Return);
        EXPECT_EQ(page.Matrix().TextMatrix(1, 2), "Yes");
        // A click on a head moves nothing, and so chooses the current cell.
        page.Key(Qt::Key_Right);
        QTest::mouseClick(page.Matrix().verticalHeader()->viewport(), Qt::LeftButton, {}, {5, 30});
        EXPECT_EQ(page.Matrix().TextMatrix(1, 3), "Yes");
        page.Next();
        page.Next();
        page.Key(Qt::Key_Right);
        page.Key(Qt::Key_Return);
        EXPECT_EQ(page.Question(), "4. Why?"); // and the cell was not chosen
        page.Next();
        EXPECT_EQ(page.Question(), "5. After a text page");
        page.Key(Qt::Key_Right);
        page.Key(Qt::Key_Return);
        EXPECT_EQ(page.Question(), "5. After a text page");
        page.Next();
        page.Choose(0);
        page.Key(Qt::Key_Return);
    });
    EXPECT_EQ(Answers(), QStringList({"1|1|2||46", "1|1|1||48", "1|3|4||46", "1|4|1||NULL",
                                      "1|5|5||47", "1|6|6||NULL"}));
}

TEST_F(ManualEntry, APageThatFailsStandsAsFarAsItGotAndEnterGoesOn) {
    OpenBlank();
    Add(kind::Text, "Hello", {});
    Add(kind::Matrix, "First", {"a"}, 11);
    Add(kind::Matrix, "No scale", {"b", "c"}, 11);
    Add(kind::Matrix, "Scale without points", {"d"}, 11);
    document.DoSave();
    // As the program's own: what others change in a design stops the entry.
    RunOwnSql(state, {"UPDATE response SET responseMatrixGroupID = NULL WHERE questionid = 3",
                      "UPDATE response SET responseMatrixGroupID = 999 WHERE questionid = 4"});
    ShowScreen();
    Enter(AddOne, [&](EntryPage page) {
        page.Key(Qt::Key_Return);
        QTest::qWait(20);
        EXPECT_GT(page.ColoursOfAnswers(), 10);
        page.Key(Qt::Key_Return); // by the default that the text has left
        EXPECT_EQ(failures, std::vector<int>{failure::InvalidNull});
        EXPECT_EQ(page.Question(), "2. No scale");
        EXPECT_EQ(page.Matrix().Rows(), 2); // still that of the page before, and stored again
        EXPECT_EQ(page.FocusedControl(), "gMatrix");
        page.Key(Qt::Key_Return);
        EXPECT_EQ(failures, (std::vector<int>{failure::InvalidNull, failure::InvalidArgument}));
        EXPECT_EQ(page.Question(), "3. Scale without points");
        QTest::qWait(20);
        EXPECT_EQ(page.ColoursOfAnswers(), 1); // nothing of the matrix before
        EXPECT_EQ(page.FocusedControl(), "cmdDCAnswersNext");
        page.Key(Qt::Key_Return);
    });
    EXPECT_EQ(Answers(), QStringList({"1|2|1||46", "1|3|1||46"}));
    EXPECT_EQ(dialogs.TakeTexts(), QStringList("Survey completed."));
}

TEST_F(ManualEntry, AnAnswerThatCouldNotBeReadIsNotStoredOver) {
    OpenBlank();
    Add(kind::OpenEnded, "Why?", {});
    Add(kind::Matrix, "No scale", {"a"}, 11);
    Add(kind::Check, "Which?", {"x"});
    document.DoSave();
    RunOwnSql(state, {"INSERT INTO respondent (source) VALUES ('Web')",
                      "INSERT INTO respondent_responses (RespondentID, QuestionID, ResponseID, "
                      "SimpleResponse, ResponseMatrixID) VALUES (1, 1, 1, NULL, NULL), "
                      "(1, 2, 1, '', 47)",
                      "UPDATE response SET responseMatrixGroupID = NULL WHERE id = 1"});
    ShowScreen();
    const QStringList stored = Answers();
    Enter(EditOne, [&](EntryPage page) {
        page.Type("typed");
        page.Next();
        EXPECT_EQ(page.Question(), "1. Why?");
        EXPECT_EQ(Answers(), stored);
        RunOwnSql(state, {"UPDATE respondent_responses SET SimpleResponse = 'near' "
                          "WHERE QuestionID = 1"});
        page.Next(); // refused once more, but read
        EXPECT_EQ(page.Find<QPlainTextEdit>("txtDCSimpleResponse").toPlainText(), "near");
        page.Next();
        for (int press = 0; press < 2; ++press) {
            EXPECT_EQ(page.Question(), "2. No scale");
            page.Next();
        }
        page.Previous();
        EXPECT_EQ(page.Question(), "2. No scale");
        page.Cancel();
    });
    EXPECT_EQ(failures, std::vector<int>(7, failure::InvalidNull));
    EXPECT_EQ(Answers(), QStringList({"1|2|1||47", "1|1|1|near|NULL"}));
}

TEST_F(ManualEntry, APageIsNotStoredUnderTheQuestionThatHasComeInItsPlace) {
    OpenBlank();
    Add(kind::OpenEnded, "Why?", {});
    Add(kind::OpenEnded, "Where?", {});
    document.DoSave();
    ShowScreen();
    Enter(AddOne, [&](EntryPage page) {
        page.Type("because");
        RunOwnSql(state, {"UPDATE question SET pos = 3 - pos"});
        page.Next();
        EXPECT_EQ(page.Question(), "1. Why?");
        page.Cancel();
    });
    EXPECT_EQ(failures, std::vector<int>{failure::PathOrFileAccess});
    EXPECT_EQ(Answers(), QStringList());
}

TEST_F(ManualEntry, AnAnswerOfAnyLengthWithoutABlankStaysWhole) {
    OpenBlank();
    const QString endless(300000, 'x');
    Add(kind::OpenEnded, endless, {});
    Add(kind::Check, "Say", {endless});
    Add(kind::Matrix, "Say", {endless}, 11);
    document.DoSave();
    RunSql(path, {"INSERT INTO respondent (source) VALUES ('Web')",
                  "INSERT INTO respondent_responses (RespondentID, QuestionID, ResponseID, "
                  "SimpleResponse) VALUES (1, 1, 1, hex(zeroblob(150000)))"});
    ShowScreen();
    Enter(EditOne, [&](EntryPage page) {
        page.Type("y");
        for (int turned = 0; turned < 3; ++turned)
            page.Next();
    });
    EXPECT_EQ(SqlRows(path, "SELECT length(SimpleResponse) FROM respondent_responses", 1),
              QStringList({"300001", "0"}));
}

TEST_F(ManualEntry, AFileThatCanNotBeTriedGetsNoRespondent) {
    OpenBlank();
    ShowScreen();
    state.SurveyConnection.Run("DROP TABLE version");
    Press(AddOne);
    EXPECT_EQ(failures.size(), 1U);
    EXPECT_EQ(SqlRows(path, "SELECT count(*) FROM respondent", 1), QStringList("0"));
}

TEST_F(ManualEntry, ASurveyWithoutQuestionsIsCompletedAtOnce) {
    OpenBlank();
    ShowScreen();
    Enter(AddOne, [&](EntryPage page) {
        EXPECT_EQ(page.Question(), "");
        page.Next();
    });
    EXPECT_EQ(dialogs.TakeTexts(),
              QStringList({"Error cmdDCAnswersNext_Click", "Survey completed."}));
    EXPECT_EQ(List().Rows(), 2);
    EXPECT_EQ(Column(1), QStringList("No Answer"));
}
