// The question tree: what its nodes show, and how tree, model and file stay in one order.
#include "design/DesignScreen.h"

#include <QRadioButton>
#include <QTest>

#include "document/SurveyViews.h"
#include "platform/RichText.h"

namespace pollarix::test {
namespace {

using namespace kind;

class QuestionTree : public DesignScreen {
  protected:
    QStringList Numbers() {
        QStringList numbers;
        for (int i = 1; i <= Survey().QCount; ++i)
            numbers << Q(i).QuestionNo;
        return numbers;
    }
    // Plain texts in model order.
    QStringList Texts() {
        QStringList texts;
        for (int i = 1; i <= Survey().QCount; ++i)
            texts << PlainTextOf(Q(i).Question);
        return texts;
    }
    const QString noText = "<Text not yet entered>";
};

TEST_F(QuestionTree, NodeTextsBeforeAndAfterEachWriterOfThem) {
    Add(OpenEnded);
    EXPECT_EQ(Nodes(), QStringList({noText})) << "just added";
    WriteText("a\r\nb");
    EXPECT_EQ(Nodes(), QStringList({"1. a"})) << "the first line only";
    WriteText("");
    EXPECT_EQ(Nodes(), QStringList({"1. " + noText}));
    WriteText("\r\nb");
    EXPECT_EQ(Nodes(), QStringList({"1. "})) << "an empty first line";

    Add(OpenEnded);
    Add(Text);
    Add(Text);
    WriteText("Thanks\r\nfor all");
    EXPECT_EQ(Nodes().mid(1), QStringList({noText, noText, "Thanks"}));
    // After a reindexing: whole texts; bare numbers; the number before an instruction text.
    ClickNode(2);
    Press("cmdUp");
    EXPECT_EQ(Nodes(), QStringList({"1. ", "2. \r\nb", "2. ", "2. Thanks\r\nfor all"}));
    document_.DoSave();
    EXPECT_EQ(Nodes(), QStringList({"1. ", "2. \r\nb", "", "Thanks\r\nfor all"}));
}

TEST_F(QuestionTree, AnEmptyLabelAlternatesAtEachReindexing) {
    SurveyOf({Text, OpenEnded, OpenEnded});
    ClickNode(1);
    WriteText("");
    ClickNode(2);
    document_.DoSave();
    EXPECT_EQ(Nodes(), QStringList({"", "1. Q2", "2. Q3"}));
    ClickNode(2);
    Press("cmdDown");
    EXPECT_EQ(Nodes(), QStringList({noText, "1. Q3", "2. Q2"}));
    Press("cmdUp");
    EXPECT_EQ(Nodes(), QStringList({"", "1. Q2", "2. Q3"}));
    // Up gives both nodes a text before, Down doesn't.
    Press("cmdUp");
    EXPECT_EQ(Nodes(), QStringList({"1. Q2", "", "2. Q3"}));
    Press("cmdDown");
    EXPECT_EQ(Nodes(), QStringList({noText, "1. Q2", "2. Q3"}));
}

TEST_F(QuestionTree, InstructionTextBearsThePrefixOfTheQuestionVisitedBefore) {
    SurveyOf({OpenEnded, Text, OpenEnded});
    EXPECT_EQ(Nodes(), QStringList({"1. Q1", "Q2", "2. Q3"}));
    // The moved node is visited last, wherever it stands.
    ClickNode(2);
    Press("cmdUp");
    EXPECT_EQ(Nodes(), QStringList({"2. Q2", "1. Q1", "2. Q3"}));
    EXPECT_EQ(Numbers(), QStringList({"", "1", "2"}));
    WriteText("Q2");
    EXPECT_EQ(Nodes()[0], "Q2") << "the commit gives no number";
}

TEST_F(QuestionTree, MovesKeepTreeModelAndFileInOneOrder) {
    SurveyOf({OpenEnded, Check, Text, Radio});
    ClickNode(1);
    EXPECT_FALSE(Marks([&] { Press("cmdUp"); })) << "first up";
    ClickNode(4);
    EXPECT_FALSE(Marks([&] { Press("cmdDown"); })) << "last down";
    ClickNode(0);
    EXPECT_FALSE(Marks([&] {
        Press("cmdUp");
        Press("cmdDown");
        Press("cmdDelete");
    })) << "the root";

    ClickNode(4);
    EXPECT_TRUE(Marks([&] {
        Press("cmdUp");
        Press("cmdUp");
    }));
    ClickNode(1);
    EXPECT_TRUE(Marks([&] { Press("cmdDown"); }));
    EXPECT_EQ(Texts(), QStringList({"Q4", "Q1", "Q2", "Q3"}));
    EXPECT_EQ(Numbers(), QStringList({"1", "2", "3", ""}));
    EXPECT_EQ(Nodes(), QStringList({"1. Q4", "2. Q1", "3. Q2", "3. Q3"}));
    EXPECT_EQ(*SelectedKey(), Q(2).Key) << "the moved one stays selected";

    const QStringList before = Texts();
    document_.DoSave();
    EXPECT_EQ(Texts(), before);
    EXPECT_EQ(*SelectedKey(), Q(2).Key);
    EXPECT_EQ(Rows("SELECT pos || ' ' || questionno || ' ' || qtype || ' ' || Deleteme "
                   "FROM question ORDER BY pos"),
              QStringList({"1 1 2 0", "2 2 0 0", "3 3 1 0", "4  4 0"}));
}

TEST_F(QuestionTree, DeletingRenumbersAndSparesTheLastQuestion) {
    SurveyOf({OpenEnded, OpenEnded, OpenEnded});
    ClickNode(2);
    EXPECT_TRUE(Marks([&] { Press("cmdDelete"); }));
    EXPECT_EQ(Nodes(), QStringList({"1. Q1", "2. Q3"}));
    EXPECT_EQ(Numbers(), QStringList({"1", "2"}));
    ClickNode(1);
    Press("cmdDelete");
    // With the root selected as well: the count is asked first.
    ClickNode(0);
    EXPECT_FALSE(Marks([&] { Press("cmdDelete"); }));
    EXPECT_EQ(dialogs_.TakeTexts(), QStringList({"Can't delete last question."}));
    EXPECT_EQ(Nodes(), QStringList({"1. Q3"}));
    document_.DoSave();
    EXPECT_EQ(Rows("SELECT id FROM question"), QStringList({"3"}));
}

// The panel goes on showing the deleted question; what one enters there goes to whichever question
// is selected now. Nothing of it may crash, with that one being of any kind, or none at all.
TEST_F(QuestionTree, WorkingOnInADeletedQuestionsPanelIsSafe) {
    for (const bool withSelection : {true, false}) {
        SurveyOf({Radio, Matrix, OpenEnded});
        ClickNode(1);
        AddResponses("txtCheckResponse", {"a", "b"});
        ClickEntry("lstCheckResponses", 1);
        Press("cmdDelete");
        EXPECT_EQ(Get<RichTextBox>("txtQ").Text(), "Q1");
        EXPECT_EQ(Entries("lstCheckResponses"), QStringList({"a", "b"}));
        if (!withSelection)
            Get<TreeView>("tvTreeView").clearSelection();

        Press("cmdCheckUp");
        Press("cdmCheckDelete");
        Press("cmdRadioLogic");
        // The selected question has no such response.
        EXPECT_EQ(failures_.size(), withSelection ? 2 : 0);
        failures_.clear();
        dialogs_.TakeTexts();
        WriteText("typed");
        Press("cmdBold");
        AddResponses("txtCheckResponse", {"c"});
        for (int option = 0; option < 5; ++option) {
            Get<QRadioButton>(qPrintable(QString("optQType(%1)").arg(option))).click();
            Key("txtQ", Qt::Key_X);
        }
        Get<ComboBox>("cmbMatrixResponses").SetListIndex(2);
        Press("cmdMatrixAdd");
        Get<ComboBox>("cmdOpenEndedNoOfRows").SetListIndex(3);
        Get<ComboBox>("cmdOpenEndedNoOfRows").LostFocus();
        Press("cmdUp");
        Press("cmdDown");
        document_.DoSave();
        EXPECT_EQ(Survey().QCount, 2);
        EXPECT_TRUE(Texts().contains("Q3"));
    }
    // No question at all, as after New.
    NewSurvey();
    for (const char* button : {"cmdUp", "cmdDown", "cmdDelete", "cmdCheckAdd", "cmdMatrixAdd"})
        Get<QAbstractButton>(button).click();
    design_->txtQ_LostFocus();
    document_.DoSave();
    EXPECT_EQ(Survey().QCount, 0);
}

TEST_F(QuestionTree, AQuestionIsAddedLastShownAndCarriesAScale) {
    SurveyOf({Text, OpenEnded});
    Get<ComboBox>("cmbMatrixResponses").SetListIndex(3); // scale 5
    for (const std::int32_t qType : {OpenEnded, Check, Radio, Matrix, Text}) {
        EXPECT_TRUE(Marks([&] { Add(qType); }));
        const clsQ& q = Q(Survey().QCount);
        EXPECT_EQ(q.qType, qType);
        EXPECT_EQ(*SelectedKey(), q.Key);
        EXPECT_EQ(q.ResponseMatrixGroupID, qType == Matrix ? 5 : 2);
        EXPECT_EQ(q.OpenEnded_NoOfRows, 1);
    }
    EXPECT_EQ(Numbers(), QStringList({"", "1", "2", "3", "4", "5", ""}));
}

TEST_F(QuestionTree, AClickShowsTheQuestionAndHidesThePanelForTheRoot) {
    SurveyOf({OpenEnded, OpenEnded, Check});
    ClickNode(1);
    EXPECT_TRUE(design_->picQPropertiesVisible());
    const auto& txtQ = Get<RichTextBox>("txtQ");
    EXPECT_TRUE(txtQ.hasFocus());
    EXPECT_EQ(txtQ.SelLength(), 2) << "the whole text is selected";
    EXPECT_FALSE(Marks([&] { ClickNode(2); })) << "the same kind";
    EXPECT_TRUE(Marks([&] { ClickNode(3); })) << "another kind puts its option on";
    EXPECT_TRUE(Get<QWidget>("txtCheckResponse").hasFocus());
    ClickNode(0);
    EXPECT_FALSE(design_->picQPropertiesVisible());

    Get<TreeView>("tvTreeView").setFocus();
    Key("tvTreeView", Qt::Key_Down);
    EXPECT_EQ(txtQ.Text(), "Q1") << "an arrow key is a click";
    EXPECT_EQ(Nodes(), QStringList({"1. Q1", "2. Q2", "3. Q3"}));
}

} // namespace
} // namespace pollarix::test
