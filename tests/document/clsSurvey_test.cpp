// What no hand can do to a survey from its window. What hands do, the random edits see.
#include "document/clsSurvey.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

#include "platform/base/Failure.h"
#include "support/NumberOf.h"

using namespace pollarix;
using test::NumberOf;

TEST(clsSurvey, FailedLookupsYieldValuesAndRemovalAlwaysShrinks) {
    clsSurvey survey;
    EXPECT_EQ(survey.GetQ("x"), nullptr);
    EXPECT_EQ(survey.GetQIndexFromKey("x"), -1);
    survey.SwapQ("x", "y");
    EXPECT_EQ(NumberOf([&] { survey.UpdateQuestion("x", "t"); }), failure::NoObject);
    EXPECT_EQ(NumberOf([&] { (void)survey.GetQIndex(1); }), failure::Subscript);
    const QString a = survey.AddQ("a", 1, 7, 2), b = survey.AddQ("b", 1, 7, 2);
    EXPECT_TRUE(QRegularExpression("^[0-9A-F]{32}$").match(a).hasMatch());
    survey.DeleteQ("unknown");
    EXPECT_EQ(survey.QCount(), 1);
    EXPECT_EQ(survey.GetQ(b), nullptr);
    EXPECT_EQ(survey.GetKeyFromDatabaseID(7), a);

    clsQ q;
    for (const char* text : {"one", "two", "three", "four"})
        q.AddResponse(text, -1, -1, "");
    q.RemoveResponse(2);
    q.RemoveResponse(99);
    ASSERT_EQ(q.ResponsesCount(), 2);
    EXPECT_EQ(q.GetResponse(1)->Text, "one");
    EXPECT_EQ(q.GetResponse(2)->Text, "three");
    EXPECT_EQ(NumberOf([&] { (void)q.GetResponse(3); }), failure::Subscript);
    EXPECT_EQ(NumberOf([&] { q.AddResponse("", 32768, -1, ""); }), failure::Overflow);
    EXPECT_EQ(q.ResponsesCount(), 2);
}
