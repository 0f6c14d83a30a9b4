#include "platform/Failure.h"

#include <gtest/gtest.h>

#include "platform/Handlers.h"

using namespace pollarix;

TEST(Failure, NarrowingFailsBeyondTheTypeAndNowhereElse) {
    EXPECT_EQ(Narrow16(32767), 32767);
    EXPECT_EQ(Narrow16(-32768), -32768);
    for (std::int64_t beyond : {std::int64_t{32768}, std::int64_t{-32769}, INT64_MAX}) {
        try {
            Narrow16(beyond);
            FAIL() << beyond;
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.Number(), failure::Overflow);
        }
    }
    EXPECT_THROW(Narrow32(INT64_C(1) << 31), Failure);
}

TEST(Failure, TextBecomesANumberOrSaysWhy) {
    EXPECT_EQ(ToNumber16(" 17 "), 17);
    EXPECT_EQ(ToNumber16("-1"), -1);
    EXPECT_EQ(ToNumber32("2.5"), 2);
    EXPECT_EQ(ToNumber32("3.5"), 4);
    for (const char* text : {"", " ", "x", "1 2", "nan", "1e999"}) {
        try {
            ToNumber16(text);
            FAIL() << text;
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.Number(), failure::TypeMismatch) << text;
        }
    }
    try {
        ToNumber16("40000");
        FAIL();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.Number(), failure::Overflow);
    }
}

TEST(Handlers, AFailureThatNothingCatchesIsShownOnceAndEndsTheHandlerOnly) {
    std::vector<int> shown;
    SetFailureReporter([&](const Failure& failure) { shown.push_back(failure.Number()); });
    RunHandler([] { throw Failure(failure::Subscript); });
    RunHandler([] { throw std::runtime_error("other"); });
    RunHandler({});
    SetFailureReporter({});
    ASSERT_EQ(shown.size(), 2u);
    EXPECT_EQ(shown[0], failure::Subscript);
}
