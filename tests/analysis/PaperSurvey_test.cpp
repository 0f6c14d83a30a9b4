#include "analysis/PaperSurvey.h"

#include <gtest/gtest.h>

#include "analysis/AnsweredSurvey.h"
#include "platform/RichText.h"
#include "support/PrintQt.h"

namespace pollarix::test {
namespace {

class PaperSurveyTest : public testing::Test, protected AnsweredSurvey {
  protected:
    QString Rtf() {
        PaperSurvey::Write(Survey(), Path("paper.rtf"), [](std::int64_t, std::int64_t) {});
        return QString::fromLatin1(Read(Path("paper.rtf")));
    }

    // The plain text, in which what is set in the font of the boxes stands between brackets.
    QString WithBoxes() {
        const RichText text = ReadRichText(Rtf());
        QStringList lines;
        for (const Paragraph& paragraph : text.paragraphs) {
            QString line;
            for (const pollarix::Run& run : paragraph.runs)
                line += run.format.fontName == "Wingdings" ? '[' + run.text + ']' : run.text;
            lines << line.replace("][", "");
        }
        return lines.join("\r\n");
    }
};

TEST_F(PaperSurveyTest, AsksEveryQuestionWithRoomForItsAnswer) {
    EXPECT_EQ(WithBoxes().toStdString(),
              "\r\n\r\n"
              "1. What do you think of us?\r\n"
              "\r\n\r\n\r\n\r\n\r\n"
              ". Now about soup.\r\n"
              "\r\n\r\n\r\n\r\n\r\n"
              "2. Which soups, if any?\r\n"
              "\r\n"
              "Please select any of the following.\r\n"
              "\r\n"
              "\tTomato[\to]\r\n"
              "\tPea, \"green\"[\to]\r\n"
              "\tLeek[\to]\r\n"
              "\r\n"
              "3. The best one \u263A?\r\n"
              "\r\n"
              "Please select just one of the following.\r\n"
              "\r\n"
              "\tTomato[\to]\r\n"
              "\tLeek[\to]\r\n"
              "\r\n"
              "4. Rate us\r\n"
              "\r\n"
              "\t\tGood\tBad\t\r\n"
              "Service\t[o\to\t]\r\n"
              "Price\t[o\to\t]\r\n"
              "Taste\t[o\to\to\t]\r\n" // its scale has another length than the head
              "\r\n"
              ". Anything else?\r\n"
              "\r\n\r\n\r\n\r\n\r\n");
}

TEST_F(PaperSurveyTest, QuestionsAreBoldAndALittleLarger) {
    const RichText text = ReadRichText(Rtf());
    const RunFormat head = text.paragraphs.at(2).runs.at(0).format;
    EXPECT_TRUE(head.bold);
    EXPECT_EQ(head.fontSize, RichText::DefaultFontSize + 1);
    EXPECT_FALSE(text.paragraphs.at(16).runs.at(0).format.bold);
}

TEST_F(PaperSurveyTest, ASurveyWithoutQuestionsIsTwoEmptyLines) {
    Sql("DELETE FROM question");
    EXPECT_EQ(PlainTextOf(Rtf()), "\r\n\r\n");
}

TEST_F(PaperSurveyTest, IsOfferedForViewing) {
    Choose(Path("seen.rtf"));
    dialogs.answers.push_back(MsgAnswer::Yes);
    PaperSurvey(state, work).mnuDataCollectionPaperSurvey_Click();
    EXPECT_EQ(dialogs.TakeTexts(), QStringList("View paper based survey now?"));
    EXPECT_EQ(dialogs.openedFiles, QStringList(Path("seen.rtf")));
    EXPECT_EQ(dialogs.fileRequests.front().fileName, "PaperSurvey.rtf");
}

TEST_F(PaperSurveyTest, AMatrixWithoutSubQuestionsCannotBePrinted) {
    Sql("DELETE FROM response WHERE questionid = 13");
    Choose(Path("new.rtf"));
    PaperSurvey(state, work).mnuDataCollectionPaperSurvey_Click();
    EXPECT_EQ(dialogs.TakeTexts(), QStringList("Unable to write to file " + Path("new.rtf") +
                                               " No current record 3021 Pollarix"));
    EXPECT_EQ(Read(Path("new.rtf")), "no file");
}

} // namespace
} // namespace pollarix::test
