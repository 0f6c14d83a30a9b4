// The detailed report and the paper form, compared with ones written by hand.
#include "analysis/AnsweredSurvey.h"
#include "analysis/DetailedReport.h"
#include "analysis/PaperSurvey.h"
#include "platform/richtext/RichText.h"
#include "support/NumberOf.h"

namespace pollarix::test {
namespace {

class RichReports : public AnsweredSurvey {
  protected:
    using Writer = void (*)(Connection&, const QString&, const ProgressStep&);

    // The text with its look: "+" before what is a point larger, "*" before what is bold, and
    // brackets around what is set in the font of the tick boxes.
    std::string Written(Writer write) {
        write(Survey(), Path("report.rtf"), [](std::int64_t, std::int64_t) {});
        const RichText text = ReadRichText(QString::fromLatin1(BytesOf(Path("report.rtf"))));
        QStringList lines;
        for (const Paragraph& paragraph : text.paragraphs) {
            QString line;
            for (const pollarix::Run& run : paragraph.runs) {
                const bool larger = run.format.fontSize == RichText::DefaultFontSize + 1;
                line += QString(larger ? "+" : "") + (run.format.bold ? "*" : "");
                line += run.format.fontName == "Wingdings" ? '[' + run.text + ']' : run.text;
            }
            lines << line;
        }
        return lines.join('\n').toStdString();
    }
};

TEST_F(RichReports, DetailedHoldsEveryAnswerOldestRespondentFirst) {
    // A sub question without answer ends without a line end, and so does the matrix as a whole when
    // that is its last one.
    EXPECT_EQ(Written(&DetailedReport::Write), R"(2 respondents have completed this survey.

+*Web on 04.03.2024

*1. What do you think of us?
	Data not found
*2. Which soups, if any?
*3. The best one ☺?
*4. Rate us
	Service		Price		Taste	*. Anything else?
	Data not found

+*Manual Entry on 05.03.2024 14:30:15

*1. What do you think of us?
	Fine, "really"
	Žluťoučký €
*2. Which soups, if any?
	Leek
	Pea, "green"
*3. The best one ☺?
	Leek
*4. Rate us
	Service	Bad
	Price		Taste	No
*. Anything else?
	

)");
}

TEST_F(RichReports, DetailedGoesByIdOnEqualDatesAndReadsNoQuestionForNobody) {
    Sql("UPDATE question SET question = NULL;\n"
        "UPDATE respondent SET submitteddate = '2024-03-04';\n"
        "UPDATE respondent SET source = NULL WHERE id = 1");
    EXPECT_EQ(NumberOf([&] { Written(&DetailedReport::Write); }), failure::InvalidNull);
    Sql("DELETE FROM question");
    EXPECT_EQ(Written(&DetailedReport::Write), "2 respondents have completed this survey.\n\n"
                                               "+* on 04.03.2024\n\n\n+*Web on 04.03.2024\n\n\n");
    Sql("DELETE FROM respondent;\nINSERT INTO question (qtype, pos) VALUES (0, 1)");
    EXPECT_EQ(Written(&DetailedReport::Write), "0 respondents have completed this survey.\n\n");
}

TEST_F(RichReports, PaperAsksEveryQuestionWithRoomForItsAnswer) {
    // Soups stand in the order in which they were made. The last sub question prints the points of
    // its own scale under the head of the first.
    EXPECT_EQ(Written(&PaperSurvey::Write), R"(

+*1. What do you think of us?





+*. Now about soup.





+*2. Which soups, if any?

Please select any of the following.

	Tomato[	o]
	Pea, "green"[	o]
	Leek[	o]

+*3. The best one ☺?

Please select just one of the following.

	Tomato[	o]
	Leek[	o]

+*4. Rate us

		Good	Bad	
Service	[o	o	]
Price	[o	o	]
Taste	[o	o	o	]

+*. Anything else?





)");
}

TEST_F(RichReports, PaperNeedsSubQuestionsWithScalesButNoQuestions) {
    Sql("UPDATE response SET responseMatrixGroupID = NULL WHERE id = 6");
    EXPECT_EQ(NumberOf([&] { Written(&PaperSurvey::Write); }), failure::InvalidNull);
    Sql("DELETE FROM response WHERE questionid = 13");
    EXPECT_EQ(NumberOf([&] { Written(&PaperSurvey::Write); }), failure::NoCurrentRecord);
    Sql("DELETE FROM question");
    EXPECT_EQ(Written(&PaperSurvey::Write), "\n\n");
}

} // namespace
} // namespace pollarix::test
