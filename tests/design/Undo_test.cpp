// Undo and redo: each kind of step, which keys are steps of the design, and what a save leaves of
// them.
#include <QAbstractButton>
#include <QLineEdit>
#include <QTest>

#include "design/DesignScreen.h"
#include "design/frmLogic.h"

namespace pollarix::test {
namespace {

using namespace kind;

class Undo : public DesignScreen {
  protected:
    Undo() {
        design_->LoadLibrary();
        SurveyOf({OpenEnded, Radio, Matrix});
        ClickNode(3);
        AddResponses("txtMatrixResponse", {"m", "n"});
        ClickNode(2);
        AddResponses("txtCheckResponse", {"a", "b"});
        Q(2).GetResponse(1)->LogicJumpToQuestionKey = Q(3).Key;
        document_.DoSave();
    }
    void StepKey(Qt::Key key, const char* on = "tvTreeView", Qt::KeyboardModifiers more = {}) {
        Get<QWidget>(on).setFocus();
        Key(on, key, Qt::ControlModifier | more);
    }
    // The model and the tree, and whether there is something to save.
    auto Look() {
        return std::tuple(SurveySnapshot::Take(Survey()).questions, Nodes(), state.FileChanged());
    }
    QString Ids() { return Rows("SELECT group_concat(id) FROM question ORDER BY pos"); }
};

// Steps of the other kinds are taken back and done again between the random edits.
TEST_F(Undo, EachStepGoesBackAndForth) {
    const std::vector<std::pair<const char*, std::function<void()>>> steps = {
        {"text", [&] { QTest::keyClicks(&Get<QWidget>("txtQ"), "typed\rtext"); }},
        {"format", [&] { Press("cmdBold"); }},
        {"jump",
         [&] {
             ClickEntry("lstCheckResponses", 0);
             InDialog<frmLogic>([](QWidget& dialog) {
                 dialog.findChild<ComboBox*>("cboList")->SetListIndex(0);
                 dialog.findChild<QAbstractButton*>("cmdOK")->click();
             });
             Press("cmdRadioLogic");
         }},
        {"library",
         [&] {
             auto& library = Get<TreeView>("tvTreeLibrary");
             library.Item(library.Count()).SetSelected();
             Press("cmdLibraryAdd");
         }},
        {"scale",
         [&] {
             ClickNode(3);
             Get<ComboBox>("cmbMatrixResponses").SetListIndex(3);
         }},
    };
    for (const auto& [name, step] : steps) {
        SCOPED_TRACE(name);
        const auto before = Look();
        step();
        auto after = Look();
        EXPECT_NE(std::get<0>(after), std::get<0>(before));
        const bool marked = state.FileChanged();
        StepKey(Qt::Key_Z);
        EXPECT_EQ(Look(), before) << "what is saved is not marked";
        StepKey(Qt::Key_Y);
        EXPECT_EQ(Look(), after);
        EXPECT_EQ(state.FileChanged(), marked);
        StepKey(Qt::Key_Z);
        StepKey(Qt::Key_Z, "tvTreeView", Qt::ShiftModifier);
        EXPECT_EQ(Look(), after);
        StepKey(Qt::Key_Z);
        EXPECT_EQ(Look(), before);
        EXPECT_EQ(SelectedKey(), Q(name == std::string("scale") ? 3 : 2).Key);
        ClickNode(2);
        state.MarkFileUnchanged(); // which the step to another kind has marked
    }
    EXPECT_EQ(Get<RichTextBox>("txtQ").Text(), "Q2");
    EXPECT_EQ(Entries("lstCheckResponses"), "a|b");
}

TEST_F(Undo, TextBoxesUndoTheirTypingAndAllElseTheDesign) {
    ClickNode(2);
    for (const char* control : {"tvTreeView", "tvTreeLibrary", "lstCheckResponses", "cmdUp",
                                "cmdDelete", "cmdCheckAdd", "optQType(2)", "cboFontName"}) {
        AddResponses("txtCheckResponse", {"c"});
        StepKey(Qt::Key_Z, control);
        EXPECT_EQ(Responses(2), "a|b") << control;
        EXPECT_TRUE(Get<QWidget>(control).hasFocus()) << "for the next one";
    }
    ClickNode(3);
    AddResponses("txtMatrixResponse", {"o"});
    StepKey(Qt::Key_Z, "cmbMatrixResponses");
    EXPECT_EQ(Responses(3), "m|n");

    AddResponses("txtMatrixResponse", {"o"});
    auto& txtQ = Get<RichTextBox>("txtQ");
    txtQ.setFocus();
    QTest::keyClicks(&txtQ, "typed");
    auto& box = Get<QLineEdit>("txtMatrixResponse");
    box.setFocus();
    QTest::keyClicks(&box, "p");
    StepKey(Qt::Key_Z, "txtMatrixResponse");
    EXPECT_EQ(box.text(), "");
    StepKey(Qt::Key_Z, "txtMatrixResponse");
    StepKey(Qt::Key_Z, "txtQ");
    EXPECT_EQ(txtQ.Text(), "Q3");
    EXPECT_EQ(Responses(3), "m|n|o") << "no step of the design";
}

// What is typed can be undone in the box and by a step, one after the other in any order.
TEST_F(Undo, TheTextBoxAndTheStepsAgree) {
    Reopen(); // without a step
    ClickNode(2);
    auto& txtQ = Get<RichTextBox>("txtQ");
    state.MarkFileUnchanged(); // which the kinds of the questions have marked on the way
    const auto saved = Look();
    const auto type = [&](const char* letters) {
        txtQ.setFocus();
        txtQ.moveCursor(QTextCursor::End);
        QTest::keyClicks(&txtQ, letters);
    };
    const auto text = [&] { return Nodes().section('|', 1, 1); };

    type("abc");
    StepKey(Qt::Key_Z, "txtQ");
    EXPECT_EQ(Look(), saved) << "not marked either";
    StepKey(Qt::Key_Z);
    StepKey(Qt::Key_Y);
    EXPECT_EQ(Look(), saved) << "there is no step that does nothing";
    type("abc");
    StepKey(Qt::Key_Z, "txtQ");
    StepKey(Qt::Key_Y, "txtQ");
    EXPECT_EQ(text(), "2. Q2abc");
    StepKey(Qt::Key_Z);
    EXPECT_EQ(Look(), saved) << "done again in the box, it is a step again";
    type("a\b");
    EXPECT_TRUE(state.FileChanged()) << "keys mark, also where they come to nothing";
    StepKey(Qt::Key_Z);
    EXPECT_EQ(text(), "2. Q2");
    state.MarkFileUnchanged();

    type("abc");
    Get<QAbstractButton>("optQType(1)").click();
    StepKey(Qt::Key_Z, "txtQ");
    EXPECT_EQ(text(), "2. Q2");
    for (const auto& [shown, qType] :
         {std::pair("2. Q2abc", Check), {"2. Q2abc", Radio}, {"2. Q2", Radio}}) {
        StepKey(Qt::Key_Z);
        EXPECT_EQ(text(), shown);
        EXPECT_EQ(Q(2).qType, qType);
    }
    EXPECT_EQ(Look(), saved);

    txtQ.setFocus();
    QTest::keyPress(&txtQ, Qt::Key_A);
    design_->Undo(); // the letter of the key that is still down
    EXPECT_EQ(Look(), saved);
    QTest::keyRelease(&txtQ, Qt::Key_A);
}

TEST_F(Undo, WhatIsTypedIntoALibraryTextIsAStepOfItsOwn) {
    auto& library = Get<TreeView>("tvTreeLibrary");
    library.Item(library.Count()).SetSelected();
    for (const bool isNew : {true, false}) {
        if (!isNew)
            Add(Radio); // empty, and filled
        Press("cmdLibraryAdd");
        const auto inserted = Look();
        QTest::keyClicks(&Get<QWidget>("txtQ"), "typed");
        StepKey(Qt::Key_Z);
        EXPECT_EQ(Look(), inserted);
        StepKey(Qt::Key_Z);
        EXPECT_EQ(Survey().QCount(), isNew ? 3 : 4);
    }
}

TEST_F(Undo, TheBlankQuestionOfTheStartIsNotSaved) {
    NewSurvey();
    design_->AddBlankOpenEndedQuestion();
    Add(Check);
    StepKey(Qt::Key_Z);
    EXPECT_EQ(Survey().QCount(), 1);
    EXPECT_TRUE(state.FileChanged()) << "no file holds it";
    StepKey(Qt::Key_Z);
    EXPECT_EQ(Survey().QCount(), 1) << "but it is no step";
}

TEST_F(Undo, ADeletedQuestionComesBackWithItsRowsAndJumps) {
    const QString ids = Ids();
    ClickNode(3);
    Press("cmdDelete");
    ClickNode(2);
    Press("cmdDelete");
    StepKey(Qt::Key_Z);
    StepKey(Qt::Key_Z);
    document_.DoSave();
    EXPECT_EQ(Ids(), ids);
    EXPECT_EQ(Rows("SELECT name || LogicJumpToQuestionID FROM response WHERE questionid = 2"),
              "a3|");
}

TEST_F(Undo, ASaveKeepsStepsUpToTheFirstThatNeedsADeletedRow) {
    ClickNode(2);
    Press("cmdDelete"); // the row goes with the save
    Add(Radio);
    WriteText("new");
    AddResponses("txtCheckResponse", {"x", "x"});
    Press("cmdUp");
    document_.DoSave();
    EXPECT_FALSE(state.FileChanged());
    const QString rows = "SELECT group_concat(id || name) FROM response WHERE questionid = 4";
    const QString saved = Rows(qPrintable(rows));
    for (int step = 0; step < 10; ++step)
        StepKey(Qt::Key_Z);
    EXPECT_EQ(Survey().QCount(), 2) << "the addition is undone, the deletion is not";
    EXPECT_TRUE(state.FileChanged());
    for (int step = 0; step < 10; ++step)
        StepKey(Qt::Key_Y);
    EXPECT_EQ(Nodes(), "1. Q1|2. new|3. Q3");
    EXPECT_FALSE(state.FileChanged()) << "as it was saved";
    Press("cmdDown");
    document_.DoSave();
    EXPECT_EQ(Rows(qPrintable(rows)), saved) << "they are the same rows";
    ClickNode(3);
    ClickEntry("lstCheckResponses", 0);
    Press("cdmCheckDelete");
    document_.DoSave();
    StepKey(Qt::Key_Z);
    EXPECT_EQ(Responses(3), "x") << "nor is the deletion of a response";
    Press("cmdUp");
    Press("cmdDown");
    Reopen();
    StepKey(Qt::Key_Z);
    EXPECT_EQ(Nodes(), "1. Q1|2. Q3|3. new") << "closed, and forgotten";
}

} // namespace
} // namespace pollarix::test
