#include "platform/base/Failure.h"

#include <gtest/gtest.h>

#include "platform/base/Handlers.h"
#include "support/NumberOf.h"

using namespace pollarix;
using pollarix::test::NumberOf;

TEST(Failure, NumbersAreNarrowedAndReadOrSayWhyNot) {
    EXPECT_EQ(Narrow16(32767), 32767);
    EXPECT_EQ(Narrow16(-32768), -32768);
    for (std::int64_t beyond : {std::int64_t{32768}, std::int64_t{-32769}, INT64_MAX})
        EXPECT_EQ(NumberOf([&] { Narrow16(beyond); }), failure::Overflow) << beyond;
    EXPECT_EQ(NumberOf([] { Narrow32(INT64_C(1) << 31); }), failure::Overflow);
    EXPECT_EQ(ToNumber16(" 17 "), 17);
    EXPECT_EQ(ToNumber16("-1"), -1);
    EXPECT_EQ(ToNumber32("2.5"), 2);
    EXPECT_EQ(ToNumber32("3.5"), 4);
    for (const char* text : {"", " ", "x", "1 2", "nan", "1e999"})
        EXPECT_EQ(NumberOf([&] { ToNumber16(text); }), failure::TypeMismatch) << text;
    EXPECT_EQ(NumberOf([] { ToNumber16("40000"); }), failure::Overflow);
}

TEST(Handlers, AFailureThatNothingCatchesIsShownOnceAndEndsTheHandlerOnly) {
    std::vector<int> shown;
    SetFailureReporter([&](const Failure& failure) { shown.push_back(failure.Number()); });
    RunHandler([] { throw Failure(failure::Subscript); });
    RunHandler([] { throw std::runtime_error("other"); });
    SetFailureReporter({});
    ASSERT_EQ(shown.size(), 2u);
    EXPECT_EQ(shown[0], failure::Subscript);
}
