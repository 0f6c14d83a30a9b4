#include "document/clsSurvey.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

#include "document/SurveySnapshot.h"
#include "platform/base/Failure.h"
#include "support/NumberOf.h"

using namespace pollarix;
using test::NumberOf;

namespace {

QStringList Numbers(const clsSurvey& survey) {
    QStringList numbers;
    for (std::int16_t i = 1; i <= survey.QCount(); ++i)
        numbers << survey.GetQIndex(i)->QuestionNo;
    return numbers;
}

} // namespace

TEST(clsSurvey, FailedLookupsYieldValues) {
    clsSurvey survey;
    EXPECT_EQ(survey.GetQ("x"), nullptr);
    EXPECT_EQ(survey.GetQIndexFromKey("x"), -1);
    survey.SwapQ("x", "y");
    EXPECT_EQ(NumberOf([&] { survey.UpdateQuestion("x", "t"); }), failure::NoObject);
    EXPECT_EQ(NumberOf([&] { (void)survey.GetQIndex(1); }), failure::Subscript);
    EXPECT_EQ(survey.QCount(), 0);
}

TEST(clsSurvey, NumbersFollowTheListAndSkipInstructionText) {
    clsSurvey survey;
    const QString first = survey.AddQ("", 0, -1, 2);
    const QString text = survey.AddQ("", 4, -1, 2);
    const QString check = survey.AddQ("", 1, -1, 2);
    survey.AddQ("", 3, -1, 2);
    EXPECT_EQ(Numbers(survey), QStringList({"1", "", "2", "3"}));
    EXPECT_TRUE(QRegularExpression("^[0-9A-F]{32}$").match(first).hasMatch());
    EXPECT_NE(first, text);
    EXPECT_EQ(survey.GetQ(first)->OpenEnded_NoOfRows, 1);

    survey.DeleteQ(check);
    EXPECT_EQ(Numbers(survey), QStringList({"1", "", "3"}));
    survey.SwapQ(first, text);
    survey.SwapQ(first, "unknown");
    survey.ReorderQ_QuestionNos();
    EXPECT_EQ(Numbers(survey), QStringList({"", "1", "2"}));

    // What an instruction text held before stays with it.
    survey.UpdateQuestionType(first, 4);
    survey.ReorderQ_QuestionNos();
    EXPECT_EQ(Numbers(survey), QStringList({"", "1", "1"}));
}

TEST(clsSurvey, RemovalAlwaysShrinks) {
    clsSurvey survey;
    survey.AddQ("a", 1, 7, 2);
    const QString b = survey.AddQ("b", 1, 7, 2);
    survey.DeleteQ("unknown");
    EXPECT_EQ(survey.QCount(), 1);
    EXPECT_EQ(survey.GetQ(b), nullptr);
    EXPECT_EQ(survey.GetKeyFromDatabaseID(7), survey.GetQIndex(1)->Key);

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

// Each key's position, looked up by it after each change, is the first place where it stands.
TEST(clsSurvey, KeysAreFoundWhereTheyStandAfterEachChange) {
    clsSurvey survey;
    const auto check = [&](const char* change) {
        for (std::int16_t i = survey.QCount(); i >= 1; --i) {
            const QString key = survey.GetQIndex(i)->Key;
            std::int16_t first = 1;
            while (survey.GetQIndex(first)->Key != key)
                ++first;
            EXPECT_EQ(survey.GetQIndexFromKey(key), first) << change << i;
        }
    };
    QStringList keys;
    for (int i = 0; i < 6; ++i)
        keys << survey.AddQ(QString::number(i), 1, -1, 2);
    check("added ");
    survey.SwapQ(keys[0], keys[4]);
    check("swapped ");
    survey.DeleteQ(keys[1]);
    EXPECT_EQ(survey.GetQ(keys[1]), nullptr);
    check("deleted ");
    survey.ClearAll();
    EXPECT_EQ(survey.GetQ(keys[5]), nullptr);
}

TEST(SurveySnapshot, ASurveyIsPutBackWithItsKeysAndOwesNothingToTheSnapshot) {
    clsSurvey survey;
    const auto q = survey.GetQ(survey.AddQ("Which?", kind::Radio, 7, 2));
    const QString target = survey.AddQ("Then", kind::Matrix, -1, 3);
    q->AddResponse("a", 5, 9, target);
    q->OpenEnded_NoOfRows = 4;
    const SurveySnapshot before = SurveySnapshot::Take(survey, target);
    q->Question = "changed";
    q->GetResponse(1)->Text = "changed";
    survey.DeleteQ(target);
    EXPECT_NE(SurveySnapshot::Take(survey, target), before);
    for (int time = 0; time < 2; ++time) {
        before.PutInto(survey);
        EXPECT_EQ(SurveySnapshot::Take(survey, target), before);
        EXPECT_EQ(survey.GetQIndexFromKey(target), 2);
        survey.GetQIndex(1)->GetResponse(1)->Text = "changed again";
    }
}
