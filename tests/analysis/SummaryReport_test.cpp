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
