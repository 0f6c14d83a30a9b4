// Jumps where one sees them: behind the responses that have them, and at the questions that they
// lead to.
#include <QAbstractButton>
#include <QAccessible>
#include <QHelpEvent>
#include <QTest>
#include <QToolTip>

#include "design/DesignScreen.h"
#include "design/JumpDelegate.h"
#include "design/frmLogic.h"
#include "document/Kinds.h"

using namespace pollarix;
using namespace pollarix::test;

namespace {

class JumpsTest : public DesignScreen {
  protected:
    ListBox& List() const { return Get<ListBox>("lstCheckResponses"); }
    // What the rows show behind the responses, joined with "|".
    QString Jumps() const {
        return Joined(0, List().ListCount() - 1, [this](int i) {
            return List().item(i)->data(JumpDelegate::JumpRole).toString();
        });
    }
    QString ReadOut(int row) const {
        QAccessibleInterface* const list = QAccessible::queryAccessibleInterface(&List());
        return list->child(row)->text(QAccessible::Name);
    }
    QString TipOf(int question) {
        auto& tree = Get<TreeView>("tvTreeView");
        const QModelIndex index = tree.model()->index(question - 1, 0, tree.model()->index(0, 0));
        const QPoint at = tree.visualRect(index).center();
        QToolTip::showText({}, "none", &tree); // one that goes stays for a moment
        QHelpEvent event(QEvent::ToolTip, at, tree.viewport()->mapToGlobal(at));
        QApplication::sendEvent(tree.viewport(), &event);
        return QToolTip::text();
    }
    void SetJump(int response, int target) {
        ClickEntry("lstCheckResponses", response - 1);
        InDialog<frmLogic>([=](QWidget& logic) {
            logic.findChild<ComboBox*>("cboList")->SetListIndex(target);
            logic.findChild<QAbstractButton*>("cmdOK")->click();
        });
        Press("cmdRadioLogic");
    }
};

} // namespace

TEST_F(JumpsTest, AreSeenAtBothEndsWhateverHappensToTheirQuestions) {
    SurveyOf({kind::Radio, kind::OpenEnded, kind::OpenEnded});
    ClickNode(1);
    AddResponses("txtCheckResponse", {"yes", "no", "perhaps"});
    EXPECT_EQ(Jumps(), "||");
    SetJump(2, 3);
    SetJump(3, 1);
    EXPECT_EQ(Jumps(), "|\u2192 3. Q3|\u2192 1. Q1");
    EXPECT_EQ(Entries("lstCheckResponses"), "yes|no|perhaps");
    EXPECT_EQ(ReadOut(0), "yes");
    EXPECT_EQ(ReadOut(1), "no, jumps to 3. Q3");
    EXPECT_TRUE(TipOf(3).contains("Jumped to from:\n1. Q1 (no)")) << TipOf(3).toStdString();
    EXPECT_FALSE(TipOf(2).contains("Jumped"));

    Press("cmdCheckUp"); // the last response: its jump goes with it
    EXPECT_EQ(Jumps(), "|\u2192 1. Q1|\u2192 3. Q3");
    Press("cmdDown"); // the question itself
    EXPECT_EQ(Jumps(), "|\u2192 2. Q1|\u2192 3. Q3");
    document_.DoSave(); // other keys, the same jumps
    EXPECT_EQ(Jumps(), "|\u2192 2. Q1|\u2192 3. Q3");

    ClickNode(3);
    Press("cmdDelete");
    ClickNode(2);
    EXPECT_EQ(Jumps(), "|\u2192 2. Q1|\u2192 a question that was deleted");
    design_->Undo();
    ClickNode(2);
    EXPECT_EQ(Jumps(), "|\u2192 2. Q1|\u2192 3. Q3");
    Press("optQType(1)"); // of many responses none jumps
    EXPECT_EQ(Jumps(), "||");
    EXPECT_FALSE(TipOf(3).contains("Jumped"));
}
