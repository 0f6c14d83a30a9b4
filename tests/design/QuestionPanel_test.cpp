// The question panel: the text commit, the kinds, the number of rows, and what marks the survey.
#include "design/DesignScreen.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QRadioButton>
#include <QTest>

#include "platform/richtext/RichText.h"

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
    // A click on the bar has no key, and counts as one.
    EXPECT_TRUE(Marks([&] { Press("cmdItalic"); }));
    EXPECT_TRUE(txtQ.hasFocus());
    EXPECT_TRUE(Format().italic);
    // So does what the mouse brings, and not a click that brings nothing.
    EXPECT_FALSE(Marks([&] {
        QTest::mouseClick(txtQ.viewport(), Qt::MiddleButton);
        QTest::qWait(1);
    }));
    QMimeData dropped;
    dropped.setText("dropped");
    QDragEnterEvent enter({1, 1}, Qt::CopyAction, &dropped, Qt::LeftButton, {});
    QDropEvent drop({1, 1}, Qt::CopyAction, &dropped, Qt::LeftButton, {});
    EXPECT_TRUE(Marks([&] {
        QApplication::sendEvent(txtQ.viewport(), &enter);
        QApplication::sendEvent(txtQ.viewport(), &drop);
        QTest::qWait(1);
    }));
    EXPECT_TRUE(Text(1).contains("dropped"));
}

TEST_F(QuestionPanel, TheSizeBoxTakesWhatIsASizeAndShowsWhatIsSet) {
    Add(OpenEnded);
    QTest::keyClicks(&txtQ, "a");
    auto& size = Get<QComboBox>("cboFontSize");
    for (const auto& [typed, shown] : {std::pair("7", "7"),
                                       {"14", "14"},
                                       {"10,5", "10.5"},
                                       {"10.4", "10.5"},
                                       {"0", "10.5"},
                                       {"300", "10.5"},
                                       {",", "10.5"}}) {
        txtQ.selectAll();
        size.setFocus();
        size.lineEdit()->selectAll();
        const int steps = txtQ.document()->availableUndoSteps();
        QTest::keyClicks(&size, QString(typed) + "\r");
        QTest::qWait(1);
        EXPECT_LE(txtQ.document()->availableUndoSteps(), steps + 1) << "set once";
        EXPECT_EQ(size.currentText(), shown) << typed;
        EXPECT_EQ(QString::number(Format().fontSize), shown) << typed;
    }
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
    Option(2).click();
    Option(2).setFocus();
    Key("optQType(2)", Qt::Key_Up);
    EXPECT_EQ(Q(1).qType, Check);
    EXPECT_TRUE(Get<QWidget>("txtCheckResponse").hasFocus()) << "after a key as after a click";
    Option(3).click();
    Key("txtQ", Qt::Key_Right);
    EXPECT_EQ(Nodes(), "Q1") << "the number goes with the next key";
    EXPECT_EQ(Q(1).QuestionNo, "1");
}

TEST_F(QuestionPanel, NoOfRowsIsStoredOnLeavingAndForgottenBySaving) {
    Add(OpenEnded);
    auto& rows = Get<ComboBox>("cmdOpenEndedNoOfRows");
    EXPECT_EQ(rows.Text(), "1");
    rows.setFocus();
    rows.SetListIndex(4);
    EXPECT_FALSE(Marks([&] { QTest::keyClick(&rows, Qt::Key_Tab); }));
    EXPECT_EQ(Q(1).OpenEnded_NoOfRows, 5);
    // Buttons of the toolbars and menus leave the focus in the box. No road leads past the number.
    const std::vector<std::function<void()>> roads = {
        [&] { design_->CommitText(); }, [&] { design_->CommitEdits(); },
        [&] { design_->mnuDesignAddCheckQuestion_Click(); }};
    for (const auto& road : roads) {
        ClickNode(1);
        rows.setFocus();
        QTest::keyClick(&rows, Qt::Key_Up);
        const int chosen = rows.ListIndex() + 1;
        road();
        EXPECT_EQ(Q(1).OpenEnded_NoOfRows, chosen);
    }
    EXPECT_EQ(Q(1).OpenEnded_NoOfRows, 2);
    ClickNode(1);
    document_.DoSave();
    // Entered and left without a choice: there is no number to store, which is told and no more.
    rows.setFocus();
    QTest::keyClick(&rows, Qt::Key_Tab);
    EXPECT_EQ(failures_.size(), 1);
    failures_.clear();
    EXPECT_EQ(Q(1).OpenEnded_NoOfRows, 0);
}

TEST_F(QuestionPanel, NothingIsCutOffOrCoveredInASmallWindow) {
    SurveyOf({OpenEnded, Radio, Matrix});
    const QSize small(640, 360); // what a window of 640 x 480 leaves
    for (const QSize size : {small, QSize(1600, 900)}) {
        window_.resize(size);
        QTest::qWait(0);
        design_->LayOut(24);
        for (int i = 1; i <= Survey().QCount(); ++i) {
            ClickNode(i);
            QTest::qWait(0);
            EXPECT_FALSE(QApplication::focusWidget()->visibleRegion().isEmpty()) << "scrolled to";
            QStringList cut;
            for (const auto* const button : design_->findChildren<QAbstractButton*>()) {
                const QSize least = button->minimumSizeHint().boundedTo(button->maximumSize());
                if (button->isVisible() &&
                    (button->size() != button->size().expandedTo(least) ||
                     !button->parentWidget()->rect().contains(button->geometry())))
                    cut << button->objectName();
            }
            EXPECT_EQ(cut, QStringList()) << "at " << size.width();
        }
        EXPECT_EQ(txtQ.width() < 400, size == small);
    }
}

} // namespace
} // namespace pollarix::test
