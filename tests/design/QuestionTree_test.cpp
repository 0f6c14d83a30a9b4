// The question tree: what its nodes show, and how tree, model and file stay in one order.
#include "design/DesignScreen.h"

#include <QLineEdit>
#include <QRadioButton>

#include "document/SurveySnapshot.h"
#include "platform/richtext/RichText.h"

namespace pollarix::test {
namespace {

using namespace kind;

const QString NoText = "<Text not yet entered>";

class QuestionTree : public DesignScreen {
  protected:
    // Number and first line of each question in the model.
    QString Model() {
        return Joined(1, Survey().QCount(), [&](int i) {
            return Q(i).QuestionNo + PlainTextOf(Q(i).Question).section("\r\n", 0, 0);
        });
    }
};

TEST_F(QuestionTree, NodeTextsAfterEachWriterOfThem) {
    Add(OpenEnded);
    EXPECT_EQ(Nodes(), NoText) << "just added";
    WriteText("a\r\nb");
    EXPECT_EQ(Nodes(), "1. a") << "the first line only";
    WriteText("");
    EXPECT_EQ(Nodes(), "1. " + NoText);
    WriteText("\r\nb");
    EXPECT_EQ(Nodes(), "1. ") << "an empty first line";
    for (const std::int32_t qType : {OpenEnded, Text, Text})
        Add(qType);
    WriteText("Thanks\r\nfor all");
    EXPECT_EQ(Nodes(), "1. |" + NoText + '|' + NoText + "|Thanks");
    // After a reindexing: whole texts, bare numbers, and the number before an instruction text.
    ClickNode(2);
    Press("cmdUp");
    EXPECT_EQ(Nodes(), "1. |2. \r\nb|2. |2. Thanks\r\nfor all");
    document_.DoSave();
    EXPECT_EQ(Nodes(), "1. |2. \r\nb||Thanks\r\nfor all");
}

TEST_F(QuestionTree, MovesKeepTreeAndModelInOneOrder) {
    SurveyOf({OpenEnded, Check, Text, Radio});
    EXPECT_EQ(Nodes(), "1. Q1|2. Q2|Q3|3. Q4");
    const auto press = [&](std::initializer_list<const char*> buttons) {
        return [this, buttons] {
            std::for_each(buttons.begin(), buttons.end(), [&](const char* b) { Press(b); });
        };
    };
    ClickNode(1);
    EXPECT_FALSE(Marks(press({"cmdUp"})));
    ClickNode(4);
    EXPECT_FALSE(Marks(press({"cmdDown"})));
    ClickNode(0);
    EXPECT_FALSE(Marks(press({"cmdUp", "cmdDown", "cmdDelete"})));

    ClickNode(4);
    EXPECT_TRUE(Marks(press({"cmdUp", "cmdUp"})));
    ClickNode(1);
    EXPECT_TRUE(Marks(press({"cmdDown"})));
    EXPECT_EQ(Model(), "1Q4|2Q1|3Q2|Q3");
    // The moved nodes are visited last, and the instruction text bears the prefix of the one
    // visited before it: of Q2.
    EXPECT_EQ(Nodes(), "1. Q4|2. Q1|3. Q2|3. Q3");
    EXPECT_EQ(SelectedKey(), Q(2).Key);
    ClickNode(4);
    WriteText("Q3");
    EXPECT_EQ(Nodes().section('|', 3), "Q3") << "the commit gives it no number";
    document_.DoSave();
    EXPECT_EQ(Model(), "1Q4|2Q1|3Q2|Q3");
    EXPECT_EQ(SelectedKey(), Q(4).Key);
}

TEST_F(QuestionTree, TheLastQuestionIsSpared) {
    SurveyOf({OpenEnded});
    ClickNode(0); // the count is asked first, so the root is refused by the same words
    EXPECT_FALSE(Marks([&] { Press("cmdDelete"); }));
    EXPECT_EQ(dialogs.TakeTexts(), QStringList("Can't delete last question."));
    EXPECT_EQ(Nodes(), "1. Q1");
}

// The panel goes on showing the deleted question. The root has the selection, so that nothing that
// is entered there can reach another question.
TEST_F(QuestionTree, ADeletedQuestionsPanelChangesNothing) {
    for (const bool withSelection : {true, false}) {
        SurveyOf({OpenEnded, Radio, Matrix});
        ClickNode(2);
        AddResponses("txtCheckResponse", {"a", "b"});
        ClickEntry("lstCheckResponses", 1);
        Press("cmdDelete");
        EXPECT_EQ(SelectedKey(), RootKey);
        if (!withSelection)
            Get<TreeView>("tvTreeView").clearSelection();
        const SurveySnapshot left = SurveySnapshot::Take(Survey());
        for (const char* button : {"cmdCheckUp", "cdmCheckDelete", "cmdRadioLogic"})
            Press(button);
        EXPECT_EQ(dialogs.TakeTexts(), QStringList("Unable to set logic for this response."));
        AddResponses("txtCheckResponse", {"c"});
        EXPECT_EQ(Get<QLineEdit>("txtCheckResponse").text(), "c") << "it went nowhere";
        EXPECT_EQ(Entries("lstCheckResponses"), "a|b");
        for (int option = 0; option < 5; ++option)
            Get<QRadioButton>(qPrintable(QString("optQType(%1)").arg(option))).click();
        EXPECT_TRUE(Get<QRadioButton>("optQType(2)").isChecked()) << "as the panel";
        WriteText("typed");
        Get<ComboBox>("cmbMatrixResponses").SetListIndex(2);
        Get<ComboBox>("cmdOpenEndedNoOfRows").SetListIndex(3);
        Get<ComboBox>("cmdOpenEndedNoOfRows").LostFocus();
        for (const char* button : {"cmdBold", "cmdMatrixAdd", "cmdUp", "cmdDown"})
            Press(button);
        WriteText("");
        design_->CommitText();
        EXPECT_EQ(SurveySnapshot::Take(Survey()), left);
        design_->mnuDesignAddOpenEndedQuestion_Click();
        EXPECT_EQ(Model(), "1Q1|2Q3|3");
    }
}

} // namespace
} // namespace pollarix::test
