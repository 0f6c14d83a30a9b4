// The dialogs of the Design screen: jumps of answers, and the making of answer scales.
#include <QAbstractButton>
#include <QLabel>
#include <QLineEdit>
#include <QTest>
#include <QtEndian>

#include "design/DesignScreen.h"
#include "design/frmLogic.h"
#include "design/frmMatrixAdd.h"
#include "design/frmMatrixDefine.h"
#include "platform/base/Failure.h"

namespace pollarix::test {
namespace {

using namespace kind;

class Logic : public DesignScreen {
  protected:
    // Opens the dialog on a response of the question (both from 1), chooses an entry unless it is
    // -1 and leaves by the button. Gives what the dialog showed.
    QString Visit(int question, int response, int choose, const char* leaveBy) {
        QStringList shown;
        ClickNode(question);
        ClickEntry("lstCheckResponses", response - 1);
        InDialog<frmLogic>([&, choose, leaveBy](QWidget& dialog) {
            auto& cboList = *dialog.findChild<ComboBox*>("cboList");
            shown << dialog.findChild<QLabel*>("lblWhen")->text() << cboList.Text()
                  << Joined(0, cboList.ListCount() - 1, [&](int i) { return cboList.List(i); });
            if (choose != -1)
                cboList.SetListIndex(choose);
            dialog.findChild<QAbstractButton*>(leaveBy)->click();
        });
        Press("cmdRadioLogic");
        return shown.join('|');
    }
    QString Jump(int question, int response) {
        return Q(question).GetResponse(std::int16_t(response))->LogicJumpToQuestionKey;
    }
};

TEST_F(Logic, AJumpIsChosenKeptAndTakenBack) {
    SurveyOf({Radio, Text, Check});
    ClickNode(1);
    AddResponses("txtCheckResponse", {"a", "<response.name>", "c"});
    Press("cmdRadioLogic");
    EXPECT_EQ(dialogs.TakeTexts(), QStringList("Please select a response to apply logic to."));

    const QString targets = "|Next Question (Default)|1. Q1|Q2|2. Q3";
    const QString standard = "|Next Question (Default)" + targets;
    EXPECT_EQ(Visit(1, 1, 2, "cmdOK"), "When response a is selected:" + standard);
    EXPECT_EQ(Visit(1, 2, 1, "cmdOK"), "When response <response.name> is selected:" + standard);
    EXPECT_EQ(Jump(1, 2), Q(1).Key) << "to the question itself";
    EXPECT_TRUE(Marks([&] { Visit(1, 1, 3, "cmdCancel"); })) << "Cancel marks the survey as well";
    EXPECT_EQ(Jump(1, 1), Q(2).Key);

    ClickNode(2);
    Press("cmdUp"); // the target moves, the jump stays
    EXPECT_TRUE(Visit(2, 1, 0, "cmdOK").startsWith("When response a is selected:|Q2|"));
    EXPECT_EQ(Jump(2, 1), "");
    Visit(2, 3, 3, "cmdOK");
    ClickNode(3);
    Press("cmdDelete"); // the target goes, the jump stays and leads nowhere
    EXPECT_EQ(Visit(2, 3, -1, "cmdCancel").section('|', 1, 1), "Next Question (Default)");
    EXPECT_NE(Jump(2, 3), "");
}

class Scales : public DesignScreen {
  protected:
    // "Define..." twice, then the points as lines of a paste, then the button. Gives what the first
    // dialog lists afterwards.
    QString MakeScale(const QStringList& points, const char* leaveBy) {
        QString listed;
        InDialog<frmMatrixDefine>([&, leaveBy](QWidget& define) {
            auto& lstList = *define.findChild<ListBox*>("lstList");
            lstList.SetListIndex(2); // whichever, a new scale is made
            InDialog<frmMatrixAdd>([&, leaveBy](QWidget& add) {
                EXPECT_EQ(add.findChild<ListBox*>("lstList")->ListCount(), 0);
                add.findChild<QLineEdit*>("txtName")->setText(points.join('\n'));
                QTest::keyClick(add.findChild<QLineEdit*>("txtName"), Qt::Key_Return);
                add.findChild<QAbstractButton*>(leaveBy)->click();
            });
            define.findChild<QAbstractButton*>("cmdOK")->click();
            listed = Joined(0, lstList.ListCount() - 1, [&](int i) { return lstList.List(i); });
        });
        Press("cmdMatrixDefine");
        return listed;
    }
    QString Combo() {
        return Joined(0, combo.ListCount() - 1, [&](int i) { return combo.List(i); });
    }
    // SQLite counts a file's commits in its head.
    quint32 Commits() {
        QFile file(state.CurrentFilename());
        EXPECT_TRUE(file.open(QFile::ReadOnly));
        return qFromBigEndian<quint32>(file.read(28).constData() + 24);
    }
    ComboBox& combo = Get<ComboBox>("cmbMatrixResponses");
};

TEST_F(Scales, ANewScaleIsWrittenAtOnceAndOfferedLast) {
    SurveyOf({Matrix});
    ClickNode(1);
    combo.SetListIndex(1);
    const QString before = Combo();
    EXPECT_TRUE(before.startsWith(
        "Strongly agree/Agree/Neither agree nor disagree/Disagree/Strongly disagree|"));
    EXPECT_EQ(combo.ItemData(0), 2) << "scale 1 is never offered";
    const quint32 commits = Commits();
    EXPECT_FALSE(Marks([&] {
        EXPECT_EQ(MakeScale({"It's bad", "so so", "<good>"}, "cmdOK"),
                  before + "|It's bad/so so/<good>");
    }));
    EXPECT_EQ(Combo(), before + "|It's bad/so so/<good>");
    EXPECT_EQ(combo.ListIndex(), 1) << "the selection stays at its place";
    EXPECT_EQ(Rows("SELECT g.name || p.pos || p.name FROM responsematrixgroup g "
                   "JOIN responsematrix p ON p.ResponseMatrixGroupID = g.id ORDER BY p.id DESC "
                   "LIMIT 3"),
              "User Added2<good>|User Added1so so|User Added0It's bad");
    EXPECT_EQ(Commits(), commits + 1) << "one batch";

    EXPECT_EQ(MakeScale({"a", "b"}, "cmdCancel"), Combo());
    MakeScale({""}, "cmdOK");
    EXPECT_EQ(
        dialogs.TakeTexts(),
        QStringList({"No response text has been entered. Please enter some text to continue.",
                     "No responses have been added. Please add some responses to continue."}));
    EXPECT_EQ(Commits(), commits + 1);

    // The place that was selected is taken again, in a survey with fewer scales as well.
    combo.SetListIndex(combo.ListCount() - 1);
    NewSurvey();
    EXPECT_TRUE(dialogs.TakeTexts().value(0).endsWith(". Invalid argument. 5"));
    NewSurvey();
    EXPECT_EQ(combo.ListIndex(), 0);
    // Scales that can't be read are not those of the survey before.
    state.SurveyConnection.Run("DROP TABLE responsematrix");
    EXPECT_THROW(design_->LoadMatrixResponses(), Failure);
    EXPECT_EQ(Combo(), "");
}

TEST_F(Scales, AQuestionKeepsItsScaleOnlyWithSubQuestions) {
    SurveyOf({Matrix, OpenEnded, Matrix});
    ClickNode(1);
    AddResponses("txtMatrixResponse", {"a"});
    EXPECT_FALSE(Marks([&] { combo.SetListIndex(4); })) << "a scale alone marks nothing";
    ClickNode(3);
    combo.SetListIndex(3);
    ClickNode(2);
    document_.DoSave();
    EXPECT_EQ(Rows("SELECT responseMatrixGroupID FROM response"), "6");
    ClickNode(1);
    EXPECT_EQ(combo.ListIndex(), 4);
    ClickNode(3);
    EXPECT_EQ(combo.ListIndex(), 4) << "shows a scale that the question does not hold";
    EXPECT_EQ(Q(3).ResponseMatrixGroupID, 1);
}

// After a save with the root selected the last question is shown beside the scale of another.
TEST_F(Scales, DefiningOneLeavesTheQuestionItsOwn) {
    SurveyOf({Matrix, Matrix});
    for (const int question : {1, 2}) {
        ClickNode(question);
        AddResponses("txtMatrixResponse", {"a"});
        combo.SetListIndex(question + 2);
    }
    ClickNode(1);
    ClickNode(0);
    document_.DoSave();
    const auto scale = Q(2).ResponseMatrixGroupID;
    MakeScale({"a", "b"}, "cmdCancel");
    EXPECT_EQ(Q(2).ResponseMatrixGroupID, scale);
}

} // namespace
} // namespace pollarix::test
