// The lists of answers and of sub questions: where they are alike, and where they are not.
#include "design/DesignScreen.h"

#include <QLineEdit>
#include <QTest>

namespace pollarix::test {
namespace {

using namespace kind;

struct Panel {
    std::int32_t qType;
    const char *box, *add, *list, *up, *down, *remove;
    friend void PrintTo(const Panel& panel, std::ostream* out) { *out << panel.list; }
};
const Panel Choice = {Radio,        "txtCheckResponse", "cmdCheckAdd",   "lstCheckResponses",
                      "cmdCheckUp", "cmdCheckDown",     "cdmCheckDelete"};
const Panel SubQuestions = {
    Matrix,        "txtMatrixResponse", "cmdMatrixAdd",   "lstMatrixResponses",
    "cmdMatrixUp", "cmdMatrixDown",     "cmdMatrixDelete"};

class ResponsePanels : public DesignScreen, public testing::WithParamInterface<Panel> {
  protected:
    ResponsePanels() {
        SurveyOf({panel.qType, OpenEnded});
        ClickNode(1);
    }
    const Panel panel = GetParam();
};

TEST_P(ResponsePanels, EnterInTheBoxAdds) {
    auto& box = Get<QLineEdit>(panel.box);
    EXPECT_TRUE(box.hasFocus()) << "the click leads there";
    EXPECT_TRUE(Marks([&] { QTest::keyClicks(&box, "one\r"); }));
    EXPECT_TRUE(box.hasFocus() && box.text().isEmpty()) << "for the next one";
    EXPECT_TRUE(Marks([&] { Key(panel.box, Qt::Key_Enter); })) << "an empty box marks as well";
    box.setText(" \n two\r\n\none\n"); // as a paste does; a line is an entry
    Press(panel.add);
    EXPECT_EQ(Responses(1), "one| | two|one");
    EXPECT_EQ(Entries(panel.list), Responses(1));
}

TEST_P(ResponsePanels, ArrowsAndDeleteGoByTheSelectedEntry) {
    AddResponses(panel.box, {"a", "b", "c"});
    const auto arrows = [&] {
        return std::pair(Get<QWidget>(panel.up).isEnabled(), Get<QWidget>(panel.down).isEnabled());
    };
    EXPECT_EQ(arrows(), std::pair(false, false)) << "nothing was clicked yet";
    ClickEntry(panel.list, 0);
    EXPECT_EQ(arrows(), std::pair(false, true));
    ClickEntry(panel.list, 2);
    EXPECT_EQ(arrows(), std::pair(true, false));
    // The one where they differ: only the choice list's moves reach the question.
    const bool choice = panel.qType == Radio;
    EXPECT_EQ(Marks([&] { Press(panel.up); }), choice);
    EXPECT_EQ(Entries(panel.list), "a|c|b");
    EXPECT_EQ(Responses(1), choice ? "a|c|b" : "a|b|c");
    EXPECT_EQ(arrows(), std::pair(true, true)) << "a move is a click too";
    EXPECT_EQ(Get<ListBox>(panel.list).ListIndex(), 1) << "the moved entry stays selected";
    Press(panel.remove);
    EXPECT_EQ(Responses(1), choice ? "a|b" : "a|c") << "another one than from the list";
    EXPECT_EQ(Entries(panel.list), "a|b");
    EXPECT_EQ(Get<ListBox>(panel.list).ListIndex(), -1);
    EXPECT_EQ(arrows(), std::pair(true, true)) << "as they were until the next click";
    EXPECT_FALSE(Marks([&] {
        for (const char* button : {panel.up, panel.down, panel.remove})
            Press(button);
    })) << "nothing is selected";
    ClickNode(2);
    ClickNode(1);
    EXPECT_EQ(Entries(panel.list), Responses(1)) << "filled anew";
}

TEST_P(ResponsePanels, AnEntryIsChangedInItsPlaceAndKeepsItsRow) {
    AddResponses(panel.box, {"a", "b", "c"});
    document_.DoSave();
    const auto edit = [&](const char* text, Qt::Key end) {
        Key(panel.list, Qt::Key_F2);
        auto& line = Get<QLineEdit>("txtInPlace");
        QTest::keyClicks(&line, text);
        QTest::keyClick(&line, end);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    };
    ClickEntry(panel.list, 1);
    EXPECT_TRUE(Marks([&] { edit("B, new", Qt::Key_Return); }));
    EXPECT_EQ(Entries(panel.list), "a|B, new|c");
    EXPECT_EQ(Responses(1), "a|B, new|c");
    EXPECT_FALSE(Marks([&] {
        edit("not so", Qt::Key_Escape);
        edit("", Qt::Key_Return);
        edit("  ", Qt::Key_Return);
    }));
    EXPECT_EQ(Entries(panel.list), "a|B, new|c");
    // A list of sub questions has an order of its own by now.
    Press(panel.up);
    edit("first", Qt::Key_Return);
    EXPECT_EQ(Entries(panel.list), "first|a|c");
    EXPECT_EQ(Responses(1), panel.qType == Radio ? "first|a|c" : "a|first|c");
    document_.DoSave();
    EXPECT_EQ(Rows("SELECT id || name FROM response ORDER BY id"), "1a|2first|3c");
    design_->Undo();
    EXPECT_EQ(Responses(1), panel.qType == Radio ? "B, new|a|c" : "a|B, new|c");
    ClickNode(2);
    ClickNode(1);
    ClickEntry(panel.list, 2);
    Key(panel.list, Qt::Key_F2);
    QTest::keyClicks(&Get<QLineEdit>("txtInPlace"), "open");
    design_->CommitEdits(); // as a save does, which takes no focus away
    EXPECT_EQ(Responses(1), panel.qType == Radio ? "B, new|a|open" : "a|B, new|open");
}

TEST_P(ResponsePanels, LinesBeyondTheBoundStayInTheBox) {
    while (Q(1).ResponsesCount() < 32766)
        Q(1).AddResponse("a", -1, -1, "");
    ClickNode(1);
    Get<QLineEdit>(panel.box).setText("one\ntwo\nthree");
    EXPECT_TRUE(Marks([&] { Press(panel.add); })) << "one was added";
    EXPECT_EQ(std::exchange(failures_, {}), QStringList("6 Overflow"));
    EXPECT_EQ(Entries(panel.list), Responses(1));
    EXPECT_EQ(Q(1).GetResponse(32767)->Text, "one");
    EXPECT_EQ(Get<QLineEdit>(panel.box).text(), "two\nthree");
}

TEST_P(ResponsePanels, AnArrowThatGoesOffGivesTheFocusToTheList) {
    AddResponses(panel.box, {"a", "b", "c"});
    ClickEntry(panel.list, 1);
    Get<QWidget>(panel.up).setFocus();
    for (int press = 0; press < 3; ++press)
        QTest::keyClick(window_.focusWidget(), Qt::Key_Space);
    EXPECT_TRUE(Get<QWidget>(panel.list).hasFocus());
    EXPECT_EQ(Entries(panel.list), "b|a|c") << "and Delete was not pressed";
}

// After a save with the root selected the panel shows the last question without its responses.
TEST_P(ResponsePanels, AListThatDiffersFromItsQuestionIsOnlyFilledAnew) {
    SurveyOf({OpenEnded, panel.qType});
    AddResponses(panel.box, {"a", "b", "c"});
    std::vector<std::function<void()>> acts = {[&] { AddResponses(panel.box, {"d"}); },
                                               [&] { Press(panel.remove); },
                                               [&] {
                                                   Get<QWidget>(panel.up).setEnabled(true);
                                                   Press(panel.up);
                                               }};
    if (panel.qType == Radio)
        acts.push_back([&] { Press("cmdRadioLogic"); });
    for (const auto& act : acts) {
        ClickNode(0);
        document_.DoSave();
        ASSERT_EQ(Entries(panel.list), "");
        EXPECT_FALSE(Marks(act));
        EXPECT_EQ(Responses(2), "a|b|c");
        EXPECT_EQ(Entries(panel.list), "a|b|c");
    }
}

INSTANTIATE_TEST_SUITE_P(Of, ResponsePanels, testing::Values(Choice, SubQuestions),
                         [](const auto& panel) { return panel.param.list; });

} // namespace
} // namespace pollarix::test
