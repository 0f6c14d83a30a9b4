#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "platform/Failure.h"
#include "platform/RichText.h"

using namespace pollarix;

namespace {

QByteArray BytesOf(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

void PutBytes(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

RichText Saved(const QString& path) {
    return ReadRichText(QString::fromLatin1(BytesOf(path)));
}

} // namespace

class RichTextFile : public testing::Test {
  protected:
    QTemporaryDir directory;
    QString path = directory.filePath("Report.rtf");

    // The writing of a file fails and names it.
    void ExpectRefused(const QString& target) {
        try {
            RichTextFileWriter writer(target);
            writer.Append(u"x");
            writer.Save();
            FAIL() << target.toStdString();
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.Number(), failure::PathOrFileAccess);
            EXPECT_TRUE(failure.Description().startsWith(target + ": "));
        }
    }
};

TEST_F(RichTextFile, FormatsHoldForWhatIsAppendedAfterThem) {
    RichTextFileWriter writer(path);
    writer.Append(u"\r\n");
    writer.SetSelBold(true);
    writer.SetSelFontSize(writer.SelFontSize() + 1);
    writer.Append(u"1. Ωmega\r");
    writer.Append(u"\n\xD83D"); // line end and character in two pieces
    writer.Append(u"\xDE00\n");
    writer.SetSelBold(false);
    writer.SetSelFontSize(10);
    writer.Append(u"\tplain");
    const QString font = writer.SelFontName();
    writer.SetSelFontName("Wingdings");
    writer.Append(u"\to");
    writer.SetSelFontName(font);
    writer.Append(u"\r\n");
    for (int number = 0; number < 100; ++number) // more than the head has room for
        writer.SetSelFontName("Font " + QString::number(number));
    writer.SetSelFontName("Font 2");
    writer.Append(u"end");
    writer.Save();

    const RunFormat head{"", 11, true};
    RichText expected;
    expected.paragraphs = {{},
                           {{{QString::fromUtf8("1. Ωmega"), head}}},
                           {{{QString::fromUtf8("😀"), head}}},
                           {{{"\tplain", {}}, {"\to", {"Wingdings"}}}},
                           {{{"end", {"Font 2"}}}}};
    EXPECT_EQ(Saved(path), expected);
}

TEST_F(RichTextFile, TheOldFileStaysUntilTheNewOneIsWhole) {
    PutBytes(path, "old");
    {
        RichTextFileWriter writer(path);
        writer.Append(QString(1 << 20, 'x'));
        EXPECT_EQ(BytesOf(path), "old");
    }
    EXPECT_EQ(BytesOf(path), "old");
    EXPECT_EQ(QDir(directory.path()).entryList(QDir::Files | QDir::Hidden).size(), 1);

    RichTextFileWriter writer(path);
    writer.Append(QString(1 << 20, 'x'));
    writer.Save();
    EXPECT_EQ(Saved(path).PlainText(), QString(1 << 20, 'x'));
    EXPECT_EQ(QDir(directory.path()).entryList(QDir::Files | QDir::Hidden).size(), 1);
}

TEST_F(RichTextFile, ATargetThatCanNotBeWrittenSaysWhichAndLeavesNothing) {
    ExpectRefused(directory.filePath("missing/Report.rtf"));
    ExpectRefused(directory.path());
    PutBytes(path, "old");
    QFile::setPermissions(path, QFileDevice::ReadOwner);
    ExpectRefused(path);
    EXPECT_EQ(BytesOf(path), "old");
    EXPECT_EQ(QDir(directory.path()).entryList(QDir::Files | QDir::Hidden).size(), 1);
}
