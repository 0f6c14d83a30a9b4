// The question panel: the text commit, the kinds, the number of rows, and what marks the survey.
#include "design/DesignScreen.h"

#include <QLabel>
#include <QRadioButton>
#include <QTest>

#include "platform/RichText.h"

namespace pollarix::test {
namespace {

using namespace kind;

class QuestionPanel : public DesignScreen {
  protected:
    QRadioButton& Option(int index) {
        return Get<QRadioButton>(qPrintable(QString("optQType(%1)").arg(index)));
    }
    QString Text(int question) { return PlainTextOf(Q(question).Question); }
    RunFormat Format() { return ReadRichText(Q(1).Question).paragraphs.at(0).runs.at(0).format; }
    RichTextBox& txtQ = Get<RichTextBox>("txtQ");
};

TEST_F(QuestionPanel, EachKeyMarksAndEachReleaseCommits) {
    Add(OpenEnded);
    EXPECT_TRUE(Marks([&] { QTest::keyClicks(&txtQ, "a"); }));
    EXPECT_EQ(Text(1), "a");
    EXPECT_EQ(Nodes(), "1. a");
    EXPECT_TRUE(Marks([&] { Key("txtQ", Qt::Key_Left); })) << "whatever the key";
    txtQ.selectAll();
    EXPECT_TRUE(Marks([&] { Key("txtQ", Qt::Key_B, Qt::ControlModifier); }));
    EXPECT_TRUE(Format().bold);
    // A click on the bar has no key: it is committed all the same and leaves the flag.
    EXPECT_FALSE(Marks([&] { Press("cmdItalic"); }));
    EXPECT_TRUE(txtQ.hasFocus());
    EXPECT_TRUE(Format().italic);
}

TEST_F(QuestionPanel, LeavingTheBoxCommitsToTheQuestionOneLeaves) {
    SurveyOf({OpenEnded, OpenEnded});
    for (const auto& leave : std::vector<std::function<void()>>{
             [&] { ClickNode(2); }, [&] { Press("cmdUp"); },
             [&] { QTest::mouseClick(Get<TreeView>("tvTreeLibrary").viewport(), Qt::LeftButton); },
             [&] { Key("txtQ", Qt::Key_Backtab); }}) {
        ClickNode(1);
        // No key is released: only the loss of the focus can bring this to the model.
        const QString text = CreateGUIDKey("");
        txtQ.insertPlainText(text);
        EXPECT_FALSE(Marks(leave));
        EXPECT_EQ(Text(1), text);
        EXPECT_EQ(Text(2), "Q2");
    }
    // When the program moves the focus itself, nothing is committed, least of all to another one.
    ClickNode(2);
    txtQ.insertPlainText("uncommitted");
    design_->mnuDesignAddCheckQuestion_Click();
    EXPECT_EQ(Text(2), "Q2");
    EXPECT_EQ(Q(3).Question, "");
}

TEST_F(QuestionPanel, EachOptionShowsItsPanelAndStoresItsKind) {
    struct Case {
        int option;
        std::int32_t qType;
        const char* shown;
    };
    SurveyOf({OpenEnded});
    ClickNode(1);
    for (const Case& wanted :
         {Case{2, Radio, "picCheck cmdRadioLogic Label1(4) "},
          Case{4, Matrix, "picMatrix cmdRadioLogic Label1(4) "},
          // The panel before stays behind this one, which covers it.
          Case{1, Check, "picCheck picMatrix Label1(4) "}, Case{3, kind::Text, "picOpenEnded "},
          Case{0, OpenEnded, "picOpenEnded "}}) {
        SCOPED_TRACE(wanted.option);
        EXPECT_TRUE(Marks([&] { Option(wanted.option).click(); }));
        EXPECT_FALSE(Marks([&] { Option(wanted.option).click(); })) << "it is on already";
        EXPECT_EQ(Q(1).qType, wanted.qType);
        QString shown;
        for (const char* name :
             {"picOpenEnded", "picCheck", "picMatrix", "cmdRadioLogic", "Label1(4)"})
            if (!Get<QWidget>(name).isHidden())
                shown += QString(name) + ' ';
        EXPECT_EQ(shown, wanted.shown);
        EXPECT_EQ(Nodes(), "1. Q1") << "a change of kind labels nothing";
    }
    Option(0).setFocus();
    Key("optQType(0)", Qt::Key_Down);
    EXPECT_EQ(Q(1).qType, kind::Text) << "an arrow key is a click";
    Key("txtQ", Qt::Key_Right);
    EXPECT_EQ(Nodes(), "Q1") << "the number goes with the next key";
    EXPECT_EQ(Q(1).QuestionNo, "1");
}

} // namespace
} // namespace pollarix::test
