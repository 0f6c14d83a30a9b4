// The summary's rows and the graph's tables where a survey has gaps. What whole surveys show is
// walked through on the screen.
#include "analysis/SummaryReport.h"

#include <QLocale>

#include <gtest/gtest.h>

#include "platform/base/Failure.h"
#include "support/NumberOf.h"
#include "support/SurveyFiles.h"

using namespace pollarix;
using namespace pollarix::test;

namespace {

class SummaryReportTest : public testing::Test {
  protected:
    TestState program;
    Connection file;

    void Fill(std::initializer_list<const char*> statements) {
        const QString path = program.BlankSurvey("survey.plxs");
        RunSql(path, statements);
        file.Open(path);
    }
};

} // namespace

TEST_F(SummaryReportTest, PercentagesAreRoundedHalfToEvenWithoutAZeroAdded) {
    QLocale::setDefault(QLocale(QLocale::German));
    for (const auto& [count, total, text] : {std::tuple(0, 0, "0.0%"), // a fixed text
                                             {1, 2, "50%"},
                                             {2, 3, "66,7%"},
                                             {1, 16, "6,2%"},  // 6.25
                                             {3, 16, "18,8%"}, // 18.75
                                             {12345, 1, "1234500%"}})
        EXPECT_EQ(PercentageText(count, total), text);
    QLocale::setDefault(QLocale::c());
    EXPECT_THROW(PercentageText(1, 0), Failure);
}

TEST_F(SummaryReportTest, WhatCannotBeReportedIsToldWithoutCounting) {
    Fill({"INSERT INTO question (id, question, questionno, qtype, pos) VALUES (1, 'q', '1', 2, 1)",
          "INSERT INTO response (id, questionid, name, pos) VALUES (11, 1, 'a', 1)",
          "INSERT INTO respondent_responses (RespondentID, QuestionID, ResponseID, SimpleResponse) "
          "VALUES (1, 99, 11, '')"});
    CheckSummary(file); // an answer that nothing counts
    const auto failing = [&](const char* sql) {
        RunSql(program.Path("survey.plxs"), {sql});
        return NumberOf([&] { CheckSummary(file); });
    };
    EXPECT_EQ(failing("UPDATE respondent_responses SET QuestionID = 1"), 11); // answers of nobody
    EXPECT_EQ(failing("INSERT INTO respondent (source) VALUES ('Web')"), 0);
    EXPECT_EQ(failing("ALTER TABLE responsematrix RENAME COLUMN pos TO place"), 1);
}
TEST_F(SummaryReportTest, WhatWasCountedStandsUntilTheFileChanges) {
    Fill({"INSERT INTO respondent (source) VALUES ('web based'), ('Web')",
          "INSERT INTO respondent_responses (RespondentID, QuestionID, ResponseID, "
          "ResponseMatrixID) VALUES (1, 1, 11, NULL), (1, 1, 11, 3), (1, 2, 11, NULL), "
          "(2, 1, 12, NULL)"});
    AnswerCounts counts;
    const auto expect = [&](std::int64_t all, std::int64_t choice, std::int64_t point) {
        counts.LookAt(file);
        for (int again = 0; again < 2; ++again) {
            EXPECT_EQ(counts.Totals().all, all);
            EXPECT_EQ(counts.Totals().webBased, 1);
            EXPECT_EQ(counts.OfChoice(11, 1), choice);
            EXPECT_EQ(counts.OfPoint(11, 3), point);
        }
    };
    expect(2, 2, 1);
    file.Run("DELETE FROM respondent_responses WHERE ResponseMatrixID = 3");
    expect(2, 1, 0);
    RunSql(program.Path("survey.plxs"), // another program
           {"INSERT INTO respondent (source) VALUES ('Web')",
            "INSERT INTO respondent_responses (RespondentID, QuestionID, ResponseID, "
            "ResponseMatrixID) VALUES (3, 2, 11, 3)"});
    expect(3, 1, 1);
    const QString path = file.Path();
    file.Close(); // a new opening counts its own changes from none
    RunSql(path,
           {"DELETE FROM respondent_responses", "DELETE FROM respondent WHERE source = 'Web'"});
    file.Open(path);
    expect(1, 0, 0);
}
