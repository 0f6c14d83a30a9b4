// The lists of answers and of sub questions: where they are alike, and where they are not.
#include "design/DesignScreen.h"

#include <QAbstractButton>
#include <QLineEdit>
#include <QTest>

namespace pollarix::test {
namespace {

using namespace kind;

struct Panel {
    std::int32_t qType;
    const char *box, *add, *list, *up, *down, *remove;
};
constexpr Panel Choice = {Radio,        "txtCheckResponse", "cmdCheckAdd",   "lstCheckResponses",
                          "cmdCheckUp", "cmdCheckDown",     "cdmCheckDelete"};
constexpr Panel SubQuestions = {
    Matrix,        "txtMatrixResponse", "cmdMatrixAdd",   "lstMatrixResponses",
    "cmdMatrixUp", "cmdMatrixDown",     "cmdMatrixDelete"};

class ResponsePanels : public DesignScreen, public testing::WithParamInterface<Panel> {
  protected:
    ResponsePanels() { SurveyOf({GetParam().qType, OpenEnded}); }
    bool Enabled(const char* button) { return Get<QWidget>(button).isEnabled(); }
};

TEST_P(ResponsePanels, EnterInTheBoxAddsAndOnlyThere) {
    const Panel& panel = GetParam();
    ClickNode(1);
    EXPECT_TRUE(Marks([&] { QTest::keyClicks(window_.focusWidget(), "one\r"); }));
    EXPECT_EQ(Get<QLineEdit>(panel.box).text(), "");
    EXPECT_TRUE(Get<QLineEdit>(panel.box).hasFocus()) << "for the next one";
    EXPECT_TRUE(Marks([&] { Key(panel.box, Qt::Key_Enter); })) << "an empty box marks as well";
    QTest::keyClicks(&Get<QWidget>(panel.box), " ");
    Press(panel.add);
    AddResponses(panel.box, {"one"});
    EXPECT_EQ(Responses(1), QStringList({"one", " ", "one"}));
    EXPECT_EQ(Entries(panel.list), Responses(1));
    EXPECT_EQ(Q(1).GetResponse(1)->DatabaseID, -1);
    for (const char* elsewhere : {panel.list, panel.remove, panel.up, "cmdDelete", "tvTreeView"}) {
        Get<QWidget>(elsewhere).setFocus();
        EXPECT_FALSE(Marks([&] { Key(elsewhere, Qt::Key_Return); })) << elsewhere;
    }
    EXPECT_EQ(Responses(1).size(), 3);
}

TEST_P(ResponsePanels, TheArrowsFollowTheClicksInTheList) {
    const Panel& panel = GetParam();
    ClickNode(1);
    AddResponses(panel.box, {"a", "b", "c"});
    const auto state = [&] { return std::pair(Enabled(panel.up), Enabled(panel.down)); };
    EXPECT_EQ(state(), std::pair(false, false)) << "nothing was clicked yet";
    ClickEntry(panel.list, 0);
    EXPECT_EQ(state(), std::pair(false, true));
    ClickEntry(panel.list, 2);
    EXPECT_EQ(state(), std::pair(true, false));
    Press(panel.up);
    EXPECT_EQ(state(), std::pair(true, true)) << "a move is a click too";
    EXPECT_EQ(Get<ListBox>(panel.list).ListIndex(), 1) << "the moved entry stays selected";
    Press(panel.remove);
    EXPECT_EQ(Get<ListBox>(panel.list).ListIndex(), -1);
    EXPECT_EQ(state(), std::pair(true, true)) << "as they were until the next click";
    EXPECT_FALSE(Marks([&] {
        Press(panel.up);
        Press(panel.down);
        Press(panel.remove);
    })) << "nothing is selected";
    EXPECT_EQ(Entries(panel.list).size(), 2);
}

TEST_P(ResponsePanels, TextsOfAnyKindSurviveInsertAndUpdate) {
    const QStringList texts = {"It's \"so\"", "<response.name>", "a\\b {c} %1 & &d",
                               QString::fromUtf8("Ελληνικά عربي 日本語 🙂"),
                               QString(4000, 'x')};
    ClickNode(1);
    AddResponses(GetParam().box, texts);
    for (int save = 0; save < 2; ++save) {
        document_.DoSave();
        EXPECT_EQ(Responses(1), texts);
        EXPECT_EQ(Rows("SELECT name FROM response ORDER BY pos"), texts);
        EXPECT_EQ(Rows("SELECT pos FROM response ORDER BY pos").join(""), "12345");
    }
}

INSTANTIATE_TEST_SUITE_P(Alike, ResponsePanels, testing::Values(Choice, SubQuestions),
                         [](const auto& info) {
                             return info.param.qType == Radio ? "Choice" : "Matrix";
                         });

class ChoiceList : public DesignScreen {};

TEST_F(ChoiceList, MovingAResponseTakesRowAndJumpAlong) {
    SurveyOf({Radio, OpenEnded});
    ClickNode(1);
    AddResponses("txtCheckResponse", {"a", "b", "c"});
    document_.DoSave();
    ClickNode(1);
    const std::shared_ptr<clsResponse> a = Q(1).GetResponse(1);
    a->LogicJumpToQuestionKey = Q(2).Key;
    ClickEntry("lstCheckResponses", 0);
    EXPECT_TRUE(Marks([&] { Press("cmdCheckDown"); }));
    EXPECT_EQ(Q(1).GetResponse(2), a);
    EXPECT_EQ(Entries("lstCheckResponses"), QStringList({"b", "a", "c"}));
    ClickEntry("lstCheckResponses", 2);
    Press("cdmCheckDelete");
    document_.DoSave();
    EXPECT_EQ(Rows("SELECT pos || name || id || ifnull(LogicJumpToQuestionID, '-') FROM response "
                   "ORDER BY pos"),
              QStringList({"1b2-", "2a12"}));
    ClickNode(2);
    ClickNode(1);
    EXPECT_EQ(Entries("lstCheckResponses"), QStringList({"b", "a"}));
}

class MatrixList : public DesignScreen {};

TEST_F(MatrixList, MovesStayInTheListAndMakeDeleteTakeAnother) {
    SurveyOf({Matrix, OpenEnded});
    ClickNode(1);
    AddResponses("txtMatrixResponse", {"a", "b"});
    ClickEntry("lstMatrixResponses", 0);
    EXPECT_FALSE(Marks([&] { Press("cmdMatrixDown"); }));
    EXPECT_EQ(Entries("lstMatrixResponses"), QStringList({"b", "a"}));
    EXPECT_EQ(Responses(1), QStringList({"a", "b"}));
    ClickNode(2);
    ClickNode(1);
    EXPECT_EQ(Entries("lstMatrixResponses"), QStringList({"a", "b"})) << "filled anew";
    ClickEntry("lstMatrixResponses", 0);
    Press("cmdMatrixDown");
    Press("cmdMatrixDelete");
    EXPECT_EQ(Entries("lstMatrixResponses"), QStringList({"b"}));
    EXPECT_EQ(Responses(1), QStringList({"a"}));
}

} // namespace
} // namespace pollarix::test
