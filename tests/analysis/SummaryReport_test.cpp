// The summary's rows and the graph's tables where a survey has gaps. What whole surveys show is
// walked through on the screen.
#include "analysis/SummaryReport.h"

#include <QLocale>

#include <gtest/gtest.h>

#include "analysis/ResponseGraph.h"
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

    SummaryReport Summary(std::int64_t Row = 1, std::int64_t ResponseID = 0) {
        SummaryReport report;
        report.totals = ReadTotals(file);
        ReadSummary(file, Row, ResponseID, report);
        return report;
    }

    QStringList Rows(const SummaryReport& report) {
        QStringList rows;
        for (std::size_t row = 1; row < report.rows.size(); ++row)
            rows << report.rows[row].percentage + '|' + report.rows[row].text + '|' +
                        QString::number(report.rows[row].rowData);
        return rows;
    }

    QStringList Table(std::int64_t rowData, std::int16_t key) {
        const GraphQuestion question = QuestionOfGraph(file, rowData);
        QStringList rows(!question.shows ? "as it was" : *question.shows ? "shown" : "hidden");
        if (!question.id)
            return rows;
        if (const auto table = ReadGraph(file, *question.id, question.qtype, key))
            for (const ChartRow& row : *table)
                rows << row.label + '=' + QString::number(row.value);
        return rows;
    }
};

constexpr const char* Scale =
    "INSERT INTO responsematrix (id, name, ResponseMatrixGroupID, pos) VALUES "
    "(201, 'good', 100, 0), (203, 'bad', 100, 2), (202, 'fair', 100, 1)";

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

TEST_F(SummaryReportTest, TheRowOfAResponseHoldsOverTheRowAskedFor) {
    Fill({"INSERT INTO question (id, questionno, qtype, pos) VALUES (1, '1', 2, 1), (2, '2', 0, 2)",
          "INSERT INTO response (id, questionid, name, pos) VALUES (31, 1, 'a', 1)"});
    EXPECT_EQ(Summary(1, 31).row, 2);
    EXPECT_EQ(Summary(99).row, 3);
}

TEST_F(SummaryReportTest, EmptyMatricesAndScalesLeaveWhatTheyLeave) {
    Fill({"INSERT INTO question (id, question, questionno, qtype, pos) VALUES "
          "(1, 'no rows', '1', 3, 1), (2, 'no points', '2', 3, 2), (3, 'last', '3', 0, 3)",
          "INSERT INTO response (id, questionid, name, pos, responseMatrixGroupID) VALUES "
          "(21, 2, 'c', 1, 1), (22, 2, 'd', 2, 1)"});
    const SummaryReport report = Summary();
    // The matrix without sub questions loses its own row; a scale without points leaves a blank
    // row.
    EXPECT_EQ(Rows(report), QStringList({"|2. no points|-1", "|     c|21", "||0", "|     d|22",
                                         "n/a|3. last|-1"}));
    EXPECT_EQ(Table(21, 21), QStringList("shown"));

    RunSql(program.Path("survey.plxs"), {"DELETE FROM question"});
    EXPECT_EQ(Summary().rows.size(), 1u);
    EXPECT_EQ(Summary().row, 0);
    // An answer whose question is gone draws, but neither shows nor hides the graph.
    EXPECT_EQ(Table(21, -1), QStringList({"as it was", " c=0", " d=0"}));
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

TEST_F(SummaryReportTest, ASubQuestionBeyond16BitsEndsItWhereItStands) {
    // The scale of a graph is that of the response that was made first, not of the upper one.
    Fill({Scale,
          "INSERT INTO question (id, question, questionno, qtype, pos) VALUES (1, 'm', '1', 3, 1)",
          "INSERT INTO response (id, questionid, name, pos, responseMatrixGroupID) VALUES "
          "(1, 1, 'a', 2, 100), (40000, 1, 'b', 3, 100), (2, 1, 'c', 1, 1)"});
    SummaryReport report;
    EXPECT_EQ(NumberOf([&] { ReadSummary(file, 1, 0, report); }), failure::Overflow);
    EXPECT_EQ(Rows(report).mid(0, 2), QStringList({"|1. m|-1", "|     c|2"}));
    EXPECT_EQ(Rows(report).last(), "0.0%|          bad|1");
    EXPECT_EQ(Table(2, 2), QStringList({"shown", "=0", "=0", "=0"}));
}
