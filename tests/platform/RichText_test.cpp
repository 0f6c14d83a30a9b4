// Reading and writing of RTF. That everything a text can hold comes back, the test of the box sees.
#include "platform/richtext/RichText.h"

#include <gtest/gtest.h>

using namespace pollarix;

namespace {

QString Doc(const QString& body) {
    return "{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0\\fnil DejaVu Sans;}{\\f1\\froman\\fcharset161 Old "
           "Serif;}"
           "{\\f2\\fnil\\fcharset128 Kana;}{\\f3\\fcharset2 Wingdings;}}"
           "{\\colortbl ;\\red255\\green0\\blue16;}" +
           body + "}";
}

// Both readings of one text, which have to agree.
QString Plain(const QString& rtf) {
    const QString plain = PlainTextOf(rtf);
    EXPECT_EQ(plain, ReadRichText(rtf).PlainText()) << rtf.left(200).toStdString();
    return plain;
}

struct Reading {
    const char* rtf;
    const char* plain;
};

} // namespace

TEST(RichText, LooselyBuiltTextIsWrittenInItsOneForm) {
    RichText loose;
    loose.paragraphs[0].runs = {
        {"a", {RichText::DefaultFontName, 10, false, false, false, QColor()}},
        {"", {"Some Font", 99}},
        {QString(1, QChar(0xD83D)), {}},
        {QString::fromUtf16(u"\xDE00 b\nc\x1\xFFFC", 7), {"", 10.1}}};
    loose.paragraphs[0].bullet = true;
    RichText tidy;
    tidy.paragraphs = {{{{QString::fromUtf8("a😀 b"), {}}}, true}, {{{"c", {}}}, false}};
    EXPECT_EQ(ReadRichText(WriteRichText(loose)), tidy);
    EXPECT_EQ(WriteRichText(loose), WriteRichText(tidy));
}

TEST(RichText, WhatIsNotRichTextIsPlainText) {
    for (const auto& [source, plain] :
         std::initializer_list<Reading>{{"abc", "abc"},
                                        {"a\r\nb\nc\rd\r\n", "a\r\nb\r\nc\r\nd\r\n"},
                                        {"\\b {x} \\", "\\b {x} \\"},
                                        {"{\\rt1 x}", "{\\rt1 x}"},
                                        {"x{\\rtf1 y}", "x{\\rtf1 y}"},
                                        {"\n \t{\\rtf1 y}", "y"}}) {
        EXPECT_EQ(Plain(source), plain) << source;
        EXPECT_EQ(Plain(WriteRichText(ReadRichText(QString(source)))), plain);
    }
}

TEST(RichText, GivesThePlainText) {
    const Reading readings[] = {
        // Line ends
        {"a\\par b\\par", "a\r\nb"},
        {"a\\par\\par", "a\r\n"},
        {"a\\line b\\line", "a\r\nb\r\n"},
        {"a\nb\r\nc", "abc"},
        {"a\\page b\\par\\page c", "a\r\nb\r\nc"},
        {"a\\cell b\\cell\\row c", "a\tb\t\r\nc"},
        // Characters
        {"\\'80\\'e4\\'95\\'4a", "€ä•J"},
        {"a\\'zzb\\'4", "azzb4"},
        {"{\\f1\\'e1\\'e2}\\'e4", "αβä"},
        {"{\\f2\\'83\\'41\\'83Bx}", "アィx"},
        {"{\\ansicpg1251\\f9\\'cf}", "П"},
        {"\\ansicpg65001\\f9\\'e2\\'82\\'ac", "€"},
        {"\\ansicpg77777\\f9\\'80", "€"},
        {"\\u945?\\u946 ?\\uc0\\u947 x", "αβγx"},
        {"\\uc3\\u945\\'61b\\bullet x", "αx"},
        {"{\\uc0{\\uc2\\u945}b\\u946 c}", "αbβc"},
        {"\\u-10179?\\u-8704?\\u128512?", "😀😀"},
        {"\\u-10179?\\b\\u-8704?\\u-10179?x\\u-8704?", "😀\uFFFDx\uFFFD"},
        {"\\\\\\{\\}\\~\\-\\_", "\\{}\u00A0\u00AD\u2011"},
        {"\\emdash\\endash\\lquote\\rdblquote\\bullet x", "—–‘”•x"},
        {"a\\u0?\\'00\\u65532?\\u8232?b\\nosuchword12 \\|c", "a\r\nbc"},
        // Groups without text
        {"{\\info{\\title T}}a{\\stylesheet{\\s0 N;}}{\\pict\\wmetafile8 00ff{x}}b", "ab"},
        {"{\\*\\generator G;}a{\\* \\unknown{b}c}{\\object{\\result r}}d", "ad"},
        {"{\\pict\\bin5 }}}}}}a", "a"},
        {"\\bin3 {{{a", "a"},
        {"\\bin99999999999 a", ""},
        {"{\\field{\\*\\fldinst HYPERLINK x}{\\fldrslt shown}}", "shown"},
        {"{\\pntext\\'b7\\tab}a{\\listtext 1.\\tab}b", "ab"},
        {"a}b", "a"},
        {"{\\pict{", ""},
    };
    for (const Reading& reading : readings)
        EXPECT_EQ(Plain(Doc(reading.rtf)).toStdString(), reading.plain) << reading.rtf;
}

TEST(RichText, FormatsAreReadWithTheirGroups) {
    const RichText text = ReadRichText(
        Doc("\\fs24 a{\\b\\i0\\f1 b{\\plain c}\\ul\\cf1 d\\ulnone\\cf0\\b0 e}\\f77 f"));
    const auto& runs = text.paragraphs.at(0).runs;
    ASSERT_EQ(runs.size(), 6u);
    EXPECT_EQ(runs[0], (pollarix::Run{"a", {"", 12}}));
    EXPECT_EQ(runs[1], (pollarix::Run{"b", {"Old Serif", 12, true}}));
    EXPECT_EQ(runs[2], (pollarix::Run{"c", {}}));
    EXPECT_EQ(runs[3],
              (pollarix::Run{"d", {"Old Serif", 12, true, false, true, QColor(255, 0, 16)}}));
    EXPECT_EQ(runs[4], (pollarix::Run{"e", {"Old Serif", 12}}));
    EXPECT_EQ(runs[5], (pollarix::Run{"f", {"", 12}}));
}

TEST(RichText, BulletsOfOtherWritersAreBulletsAndNumbersAreNot) {
    const auto bullets = [](const char* body) {
        std::string found;
        for (const Paragraph& paragraph : ReadRichText(Doc(body)).paragraphs)
            found += paragraph.bullet ? '*' : '-';
        return found;
    };
    EXPECT_EQ(bullets("\\pard{\\pntext\\f3\\'B7\\tab}{\\*\\pn\\pnlvlblt\\pnf3{\\pntxtb\\'B7}}a\\par"
                      "{\\pntext\\f3\\'B7\\tab}b\\par\\pard c\\par"),
              "**-");
    EXPECT_EQ(bullets("{\\listtext\\pard\\plain\\f3 \\'b7\\tab}\\pard\\ls1 a\\par\\pard b\\par"
                      "{\\listtext o\\tab}\\pard\\ls1\\ilvl1 c\\line d\\par"),
              "*-*-");
    EXPECT_EQ(
        bullets("{\\pntext 1.\\tab}{\\*\\pn\\pnlvlbody\\pndec}a\\par{\\listtext iv)\\tab}b\\par"),
        "--");
}
