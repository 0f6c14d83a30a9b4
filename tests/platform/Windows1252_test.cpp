#include "platform/base/Windows1252.h"

#include <gtest/gtest.h>

using namespace pollarix;

TEST(Windows1252, EveryByteSurvivesTheWayInAndOut) {
    QByteArray all;
    for (int byte = 0; byte < 256; ++byte)
        all += static_cast<char>(byte);
    const QString text = FromWindows1252(all);
    EXPECT_EQ(text.size(), 256);
    EXPECT_EQ(ToWindows1252(text), all);
    EXPECT_TRUE(FitsWindows1252(text));
}

TEST(Windows1252, CharactersBetweenTheControlsAreThoseOfTheCodePage) {
    EXPECT_EQ(FromWindows1252("\x80\x8a\x93\x99\x9f\xe9"), u"\u20ac\u0160\u201c\u2122\u0178\u00e9");
    EXPECT_EQ(FromWindows1252("\x81\x8d\x8f\x90\x9d"), u"\u0081\u008d\u008f\u0090\u009d");
    // A control that has a printable neighbour at its place has no byte of its own.
    EXPECT_EQ(ToWindows1252(u"\u0080\u0099"), "??");
}

TEST(Windows1252, WhatHasNoByteIsOneQuestionMarkACodePoint) {
    EXPECT_EQ(ToWindows1252(u"a\u043fb"), "a?b");
    EXPECT_EQ(ToWindows1252(u"\U0001F600!"), "?!");
    const char16_t halves[] = {0xD83D, u'x', 0xDE00, 0xD83D, 0};
    EXPECT_EQ(ToWindows1252(halves), "?x??");
    EXPECT_FALSE(FitsWindows1252(u"a\u043f"));
}
