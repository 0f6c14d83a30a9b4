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
    bool Shown(const char* control) { return !Get<QWidget>(control).isHidden(); }
};

TEST_F(QuestionPanel, EachKeyMarksAndEachReleaseCommits) {
    Add(OpenEnded);
    WriteText("");
    EXPECT_TRUE(Marks([&] { Type("txtQ", "a"); }));
    EXPECT_EQ(PlainTextOf(Q(1).Question), "a");
    EXPECT_EQ(Nodes(), QStringList({"1. a"}));
    EXPECT_TRUE(Marks([&] { Key("txtQ", Qt::Key_Left); })) << "whatever the key";
    Get<RichTextBox>("txtQ").selectAll();
    EXPECT_TRUE(Marks([&] { Key("txtQ", Qt::Key_B, Qt::ControlModifier); }));
    EXPECT_TRUE(ReadRichText(Q(1).Question).paragraphs.at(0).runs.at(0).format.bold);
    Key("txtQ", Qt::Key_I, Qt::ControlModifier);
    Key("txtQ", Qt::Key_U, Qt::ControlModifier);
    const RunFormat format = ReadRichText(Q(1).Question).paragraphs.at(0).runs.at(0).format;
    EXPECT_TRUE(format.bold && format.italic && format.underline);
    EXPECT_EQ(Get<RichTextBox>("txtQ").Text(), "a") << "the keys only format";
}

TEST_F(QuestionPanel, LeavingTheBoxCommitsToTheQuestionOneLeaves) {
    SurveyOf({OpenEnded, OpenEnded});
    const auto clickLibrary = [&] {
        QTest::mouseClick(Get<TreeView>("tvTreeLibrary").viewport(), Qt::LeftButton);
    };
    for (const auto& leave : std::vector<std::function<void()>>{
             [&] { ClickNode(2); }, clickLibrary, [&] { Press("cmdUp"); },
             [&] { QTest::keyClick(&Get<QWidget>("txtQ"), Qt::Key_Backtab); }}) {
        ClickNode(1);
        // No key is released: only the loss of the focus can bring this to the model.
        const QString text = CreateGUIDKey("");
        Get<RichTextBox>("txtQ").insertPlainText(text);
        EXPECT_FALSE(Marks(leave));
        EXPECT_EQ(PlainTextOf(Q(1).Question), text);
        EXPECT_EQ(PlainTextOf(Q(2).Question), "Q2");
    }
}

TEST_F(QuestionPanel, TheFormattingBarCommitsAndLeavesTheFlag) {
    SurveyOf({OpenEnded, OpenEnded});
    ClickNode(1);
    EXPECT_FALSE(Marks([&] {
        Press("cmdBold");
        Press("cmdBullets");
    }));
    EXPECT_TRUE(Get<RichTextBox>("txtQ").hasFocus());
    document_.DoSave();
    const Paragraph paragraph = ReadRichText(Q(1).Question).paragraphs.at(0);
    EXPECT_TRUE(paragraph.bullet && paragraph.runs.at(0).format.bold);
}

TEST_F(QuestionPanel, FocusMovedByTheProgramCommitsNothing) {
    SurveyOf({OpenEnded, Check});
    ClickNode(1);
    Get<RichTextBox>("txtQ").insertPlainText("uncommitted");
    design_->mnuDesignAddCheckQuestion_Click(); // its caret goes to another box
    EXPECT_EQ(PlainTextOf(Q(1).Question), "Q1");
    EXPECT_EQ(Q(3).Question, "");
}

TEST_F(QuestionPanel, EachOptionShowsItsPanelAndStoresItsKind) {
    struct Kind {
        int option;
        std::int32_t qType;
        bool openEnded, check, matrix, logic, heading;
    };
    SurveyOf({OpenEnded});
    ClickNode(1);
    for (const Kind& kind : {Kind{2, Radio, false, true, false, true, true},
                             Kind{4, Matrix, false, false, true, true, true},
                             // Its panel stays behind that of the next one, which covers it.
                             Kind{1, Check, false, true, true, false, true},
                             Kind{2, Radio, false, true, false, true, true},
                             Kind{3, Text, true, false, false, true, false},
                             Kind{0, OpenEnded, true, false, false, true, false}}) {
        SCOPED_TRACE(kind.option);
        EXPECT_TRUE(Marks([&] { Option(kind.option).click(); }));
        EXPECT_FALSE(Marks([&] { Option(kind.option).click(); })) << "it is on already";
        EXPECT_EQ(Q(1).qType, kind.qType);
        EXPECT_EQ(Shown("picOpenEnded"), kind.openEnded);
        EXPECT_EQ(Shown("picCheck"), kind.check);
        EXPECT_EQ(Shown("picMatrix"), kind.matrix);
        EXPECT_EQ(Shown("cmdRadioLogic"), kind.logic);
        EXPECT_EQ(Shown("Label1(4)"), kind.heading);
        EXPECT_EQ(Nodes(), QStringList({"1. Q1"})) << "a change of kind labels nothing";
        EXPECT_EQ(Q(1).QuestionNo, "1");
    }
    // A number that an instruction text holds goes from the node with the next key.
    Option(0).setFocus();
    Key("optQType(0)", Qt::Key_Down);
    EXPECT_EQ(Q(1).qType, Text) << "an arrow key is a click";
    Key("txtQ", Qt::Key_Right);
    EXPECT_EQ(Nodes(), QStringList({"Q1"}));
    EXPECT_EQ(Q(1).QuestionNo, "1");
}

TEST_F(QuestionPanel, ResponsesOutliveChangesOfKindUntilTheSave) {
    SurveyOf({Radio, OpenEnded});
    ClickNode(1);
    AddResponses("txtCheckResponse", {"a", "b", "c"});
    Q(1).GetResponse(2)->LogicJumpToQuestionKey = Q(2).Key;
    Option(4).click();
    EXPECT_EQ(Entries("lstMatrixResponses"), QStringList({"a", "b", "c"}));
    Option(0).click();
    Option(2).click();
    EXPECT_EQ(Entries("lstCheckResponses"), QStringList({"a", "b", "c"}));
    document_.DoSave();
    EXPECT_EQ(Q(1).GetResponse(2)->LogicJumpToQuestionKey, Q(2).Key);
    ClickNode(1);
    Option(0).click();
    document_.DoSave();
    ClickNode(1);
    Option(2).click();
    EXPECT_EQ(Entries("lstCheckResponses"), QStringList());
}

TEST_F(QuestionPanel, NoOfRowsIsStoredOnLeavingAndForgottenBySaving) {
    Add(OpenEnded);
    auto& rows = Get<ComboBox>("cmdOpenEndedNoOfRows");
    EXPECT_EQ(rows.Text(), "1");
    rows.setFocus();
    EXPECT_FALSE(Marks([&] {
        rows.SetListIndex(4);
        QTest::keyClick(&rows, Qt::Key_Tab);
    }));
    EXPECT_EQ(Q(1).OpenEnded_NoOfRows, 5);
    document_.DoSave();
    ClickNode(1);
    EXPECT_EQ(Q(1).OpenEnded_NoOfRows, 0);
    EXPECT_EQ(rows.ListIndex(), -1);
    // Entered and left without a choice: there is no number to store, which is told and no more.
    rows.setFocus();
    QTest::keyClick(&rows, Qt::Key_Tab);
    EXPECT_EQ(failures_.size(), 1);
    failures_.clear();
    EXPECT_EQ(Q(1).OpenEnded_NoOfRows, 0);
}

TEST_F(QuestionPanel, TheTabKeyFollowsTheEyeAndPassesACoveredPanel) {
    SurveyOf({Matrix, Check});
    ClickNode(1);
    ClickNode(2); // the matrix panel lies behind
    Get<TreeView>("tvTreeView").setFocus();
    QStringList order;
    for (QWidget* at = window_.focusWidget(); !order.contains(at->objectName());
         at = window_.focusWidget()) {
        order << at->objectName();
        QTest::keyClick(at, Qt::Key_Tab);
    }
    EXPECT_EQ(order.join(' '),
              "tvTreeView cmdUp cmdDown cmdDelete tvTreeLibrary cmdLibraryAdd cmdBold cmdItalic "
              "cmdUnderline cmdBullets cmdColour cboFontName cboFontSize txtQ optQType(1) "
              "txtCheckResponse cmdCheckAdd lstCheckResponses cdmCheckDelete");
}

TEST_F(QuestionPanel, NothingIsCutOffInAnySize) {
    SurveyOf({OpenEnded, Check, Radio, Matrix, Text});
    for (const QSize size : {QSize(800, 560), QSize(1024, 690), QSize(1920, 1000)}) {
        window_.resize(size);
        QTest::qWait(0);
        design_->LayOut(24);
        const auto& panel = Get<QWidget>("picQProperties");
        const auto& txtQ = Get<QWidget>("txtQ");
        EXPECT_EQ(panel.width(), size.width() - panel.x() - 10);
        EXPECT_EQ(panel.height(), size.height() - panel.y() - 24 + 20);
        EXPECT_EQ(Get<QWidget>("picLibraryView").geometry().bottom(), size.height() - 1);
        for (int i = 1; i <= 5; ++i) {
            ClickNode(i);
            QTest::qWait(0);
            EXPECT_EQ(txtQ.width(), panel.width() - txtQ.x() - 20);
            for (const QWidget* const control : design_->findChildren<QWidget*>()) {
                const bool hasCaption = qobject_cast<const QAbstractButton*>(control) ||
                                        qobject_cast<const QLabel*>(control);
                if (!control->isVisible() || !hasCaption ||
                    control->objectName() == "lblInstructions")
                    continue;
                EXPECT_GE(control->width(), control->sizeHint().width())
                    << control->objectName().toStdString() << " at " << size.width();
                EXPECT_TRUE(control->parentWidget()->rect().contains(control->geometry()))
                    << control->objectName().toStdString() << " at " << size.width();
            }
        }
    }
}

} // namespace
} // namespace pollarix::test
