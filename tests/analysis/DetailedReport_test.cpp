#include "analysis/DetailedReport.h"

#include <gtest/gtest.h>

#include <QLocale>

#include "analysis/AnsweredSurvey.h"
#include "platform/RichText.h"
#include "support/PrintQt.h"

namespace pollarix::test {
namespace {

const ProgressStep NoProgress = [](std::int64_t, std::int64_t) {};

class DetailedReportTest : public testing::Test, protected AnsweredSurvey {
  protected:
    DetailedReportTest() { QLocale::setDefault(QLocale("de_DE")); }

    QString Rtf() {
        DetailedReport::Write(Survey(), Path("report.rtf"), NoProgress);
        return QString::fromLatin1(Read(Path("report.rtf")));
    }
};

TEST_F(DetailedReportTest, HoldsEveryAnswerOldestRespondentFirst) {
    // A sub question without answer ends without a line end, and so does the matrix as a whole when
    // that is its last one.
    EXPECT_EQ(PlainTextOf(Rtf()).toStdString(), "2 respondents have completed this survey.\r\n"
                                                "\r\n"
                                                "Web on 04.03.2024\r\n"
                                                "\r\n"
                                                "1. What do you think of us?\r\n"
                                                "\tData not found\r\n"
                                                "2. Which soups, if any?\r\n"
                                                "3. The best one \u263A?\r\n"
                                                "4. Rate us\r\n"
                                                "\tService\t\tPrice\t\tTaste\t. Anything else?\r\n"
                                                "\tData not found\r\n"
                                                "\r\n"
                                                "Manual Entry on 05.03.2024 14:30:15\r\n"
                                                "\r\n"
                                                "1. What do you think of us?\r\n"
                                                "\tFine, \"really\"\r\n"
                                                "\tŽluťoučký €\r\n"
                                                "2. Which soups, if any?\r\n"
                                                "\tLeek\r\n"
                                                "\tPea, \"green\"\r\n"
                                                "3. The best one \u263A?\r\n"
                                                "\tLeek\r\n"
                                                "4. Rate us\r\n"
                                                "\tService\tBad\r\n"
                                                "\tPrice\t\tTaste\tNo\r\n"
                                                ". Anything else?\r\n"
                                                "\t\r\n"
                                                "\r\n");
}

TEST_F(DetailedReportTest, HeadsAreBoldAndRespondentsALittleLarger) {
    const RichText text = ReadRichText(Rtf());
    const auto look = [&](std::size_t paragraph, std::size_t run) {
        const RunFormat format = text.paragraphs.at(paragraph).runs.at(run).format;
        const double size = format.fontSize == 0 ? RichText::DefaultFontSize : format.fontSize;
        return std::pair(format.bold, size - RichText::DefaultFontSize);
    };
    EXPECT_EQ(look(0, 0), std::pair(false, 0.0));
    EXPECT_EQ(look(2, 0), std::pair(true, 1.0)); // the respondent
    EXPECT_EQ(look(4, 0), std::pair(true, 0.0)); // a question
    EXPECT_EQ(look(5, 0), std::pair(false, 0.0));
    EXPECT_EQ(look(9, 0), std::pair(false, 0.0)); // sub questions, then on the same line
    EXPECT_EQ(look(9, 1), std::pair(true, 0.0));  // the next question
}

TEST_F(DetailedReportTest, WithoutRespondentsOnlyTheHeadStands) {
    Sql("DELETE FROM respondent;\nUPDATE question SET question = NULL");
    EXPECT_EQ(PlainTextOf(Rtf()), "0 respondents have completed this survey.\r\n\r\n");
}

TEST_F(DetailedReportTest, EqualDatesGoByIdAndANullSourceIsEmpty) {
    Sql("DELETE FROM question;\nUPDATE respondent SET submitteddate = '2024-03-04', source = NULL "
        "WHERE id = 1");
    Sql("UPDATE respondent SET submitteddate = '2024-03-04' WHERE id = 2");
    EXPECT_EQ(PlainTextOf(Rtf()), "2 respondents have completed this survey.\r\n\r\n"
                                  " on 04.03.2024\r\n\r\n\r\n"
                                  "Web on 04.03.2024\r\n\r\n\r\n");
}

TEST_F(DetailedReportTest, IsOfferedForViewingWhenItIsWritten) {
    DetailedReport report(state, work);
    for (const MsgAnswer answer : {MsgAnswer::No, MsgAnswer::Yes}) {
        Choose(Path("seen.rtf"));
        dialogs.answers.push_back(answer);
        report.mnuAnalyseDetail_Click();
        EXPECT_EQ(dialogs.TakeTexts(), QStringList("View detailed report now?"));
    }
    EXPECT_EQ(dialogs.openedFiles, QStringList(Path("seen.rtf")));
    EXPECT_EQ(dialogs.fileRequests.front().fileName, "DetailReport.rtf");
    EXPECT_TRUE(Read(Path("seen.rtf")).startsWith("{\\rtf1"));
}

} // namespace
} // namespace pollarix::test
