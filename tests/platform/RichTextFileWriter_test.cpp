#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <random>

#include "platform/richtext/RichText.h"
#include "support/Bytes.h"

using namespace pollarix;
using test::BytesOf;

// That the file at the path is replaced only by a whole one, the tests of the commands that write
// with it see.
TEST(RichTextFileWriter, FormatsHoldForWhatIsAppendedAfterThem) {
    const QTemporaryDir directory;
    const QString path = directory.filePath("Report.rtf");
    RichTextFileWriter writer(path);
    writer.Append(u"\r\n");
    writer.SetSelBold(true);
    writer.SetSelFontSize(writer.SelFontSize() + 1);
    writer.Append(u"1. Ωmega\r");
    writer.Append(u"\n\xD83D"); // line end and character in two pieces
    writer.Append(u"\xDE00\n");
    writer.SetSelBold(false);
    writer.SetSelFontSize(10);
    writer.Append(u"\r\n\tplain");
    const QString font = writer.SelFontName();
    writer.SetSelFontName("Wingdings");
    writer.Append(u"\to");
    writer.SetSelFontName(font);
    writer.Append(u"\r\n");
    for (int number = 0; number < 100; ++number) // more than the head has room for
        writer.SetSelFontName("Font " + QString::number(number));
    writer.SetSelFontName("Font 2");
    const QString end = "end" + QString(1 << 20, 'x'); // many blocks
    writer.Append(end);
    writer.Save();

    const RunFormat head{"", 11, true};
    RichText expected;
    expected.paragraphs = {
        {}, {{{QString::fromUtf8("1. Ωmega"), head}}},   {{{QString::fromUtf8("😀"), head}}},
        {}, {{{"\tplain", {}}, {"\to", {"Wingdings"}}}}, {{{end, {"Font 2"}}}}};
    const QByteArray bytes = BytesOf(path);
    EXPECT_EQ(ReadRichText(QString::fromLatin1(bytes)), expected);
    EXPECT_TRUE(bytes.contains("\\fs20\\b0\\par")); // the empty line is not a large one
    // Hebrew and Arabic have their formats by other words.
    EXPECT_TRUE(bytes.contains("\\pard\\plain\\rtlch\\af0\\afs20\\ltrch\\f0\\fs20"));
    EXPECT_TRUE(bytes.contains("\\rtlch\\af0\\afs22\\ab\\ai0\\ltrch\\fs22\\b 1. "));
    EXPECT_TRUE(bytes.contains("\\rtlch\\af0\\afs20\\ab0\\ai0\\ltrch\\fs20\\b0\\par"));
}

TEST(RichTextFileWriter, ATextKeptAsItWasEncodedGivesTheBytesOfAnyOther) {
    const QTemporaryDir directory;
    RichTextFileWriter kept(directory.filePath("kept.rtf"));
    RichTextFileWriter plain(directory.filePath("plain.rtf"));
    std::vector<RepeatedText> texts;
    for (const QString& text :
         {QString(), QString("\r\n"), QString("\tTab\r\n"), QString("head"), QString("\\{}"),
          QString::fromUtf8("Ωmega 😀\t"), QString("\n"), QString("end\r"), QString(QChar(0xD83D))})
        texts.emplace_back(text);
    std::mt19937 random(7);
    for (int i = 0; i < 20'000; ++i) {
        const RepeatedText& text = texts[random() % texts.size()];
        kept.Append(text);
        plain.Append(QStringView(text.Text()));
        const auto choice = random() % 8;
        for (RichTextFileWriter* writer : {&kept, &plain}) {
            if (choice == 0)
                writer->SetSelBold(i % 2);
            else if (choice == 1)
                writer->SetSelFontSize(10 + i % 3);
            else if (choice == 2)
                writer->SetSelFontName(i % 2 ? "Wingdings" : "Arial");
        }
    }
    kept.Save();
    plain.Save();
    EXPECT_EQ(BytesOf(directory.filePath("kept.rtf")), BytesOf(directory.filePath("plain.rtf")));
}
