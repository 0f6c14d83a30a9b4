// The summary's rows and the graph's tables, worked out by hand for small surveys.
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

    // Two matrices with two sub questions each (scale 100 has three points, scale 101 none), a
    // check question, an open ended one and an instruction text.
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
    EXPECT_EQ(PercentageText(0, 0), "0.0%");
    EXPECT_EQ(PercentageText(0, 7), "0.0%");
    EXPECT_EQ(PercentageText(1, 2), "50%");
    EXPECT_EQ(PercentageText(1, 3), "33.3%");
    EXPECT_EQ(PercentageText(2, 3), "66.7%");
    EXPECT_EQ(PercentageText(1, 16), "6.2%");  // 6.25
    EXPECT_EQ(PercentageText(3, 16), "18.8%"); // 18.75
    EXPECT_EQ(PercentageText(12345, 1), "1234500%");
    EXPECT_THROW(PercentageText(1, 0), Failure);
    QLocale::setDefault(QLocale(QLocale::German));
    EXPECT_EQ(PercentageText(1, 3), "33,3%");
    EXPECT_EQ(PercentageText(0, 3), "0.0%"); // a fixed text
    QLocale::setDefault(QLocale::c());
}

TEST_F(SummaryReportTest, QuestionsComeInTheOrderOfTheirNumbersText) {
    Fill({"INSERT INTO question (id, question, questionno, qtype, pos) VALUES "
          "(1, 'two', '2', 0, 1), (2, '{\\rtf1 ten\\par more}', '10', 1, 2), "
          "(3, 'no number', NULL, 2, 3), (4, 'text', '1', 4, 4)",
          "INSERT INTO response (id, questionid, name, pos) VALUES "
          "(31, 2, 'second', 2), (32, 2, 'first', 1), (1, 3, 'yes', 1)",
          "INSERT INTO respondent (source) VALUES ('Web'), ('manual entry'), ('Imported')",
          // The constant 1 of an open ended answer is not the response of question 3; an answer to
          // another question does not count either.
          "INSERT INTO respondent_responses (RespondentID, QuestionID, ResponseID, SimpleResponse) "
          "VALUES (1, 1, 1, 'x'), (2, 1, 1, ''), (1, 2, 32, ''), (2, 2, 32, ''), (2, 2, 31, ''), "
          "(1, 3, 1, ''), (3, 99, 31, '')"});
    const SummaryReport report = Summary(99, 31);
    EXPECT_EQ(Rows(report),
              QStringList({"|. no number|-1", "33.3%|     yes|1", "|10. ten\r\nmore|-1",
                           "66.7%|     first|32", "33.3%|     second|31", "n/a|2. two|-1"}));
    EXPECT_EQ(report.row, 5); // the row of response 31 holds over the row asked for
    EXPECT_EQ(Summary(99).row, 6);
    EXPECT_EQ(report.totals.all, 3);
    EXPECT_EQ(report.totals.manualEntry, 1); // without regard to case
    EXPECT_EQ(report.totals.imported, 1);
    EXPECT_EQ(report.totals.webBased, 0); // "Web" counts nowhere but in the first
    EXPECT_EQ(report.SummaryKeys, std::vector<std::int16_t>({0, -1, -1, -1, -1, -1, -1}));
    EXPECT_EQ(report.SummaryCounts, std::vector<std::int32_t>({0, -1, 1, -1, 2, 1, -1}));

    EXPECT_EQ(Table(-1, -1), QStringList("hidden"));
    EXPECT_EQ(Table(31, -1), QStringList({"shown", " first=2", " second=1"}));
    EXPECT_EQ(Table(1, -1), QStringList({"shown", " yes=1"}));
}

TEST_F(SummaryReportTest, AMatrixLosesItsLastRowAndItsEntriesRunAhead) {
    Fill({Scale,
          "INSERT INTO question (id, question, questionno, qtype, pos) VALUES "
          "(1, 'first', '1', 3, 1), (2, 'second', '2', 3, 2), (3, 'last', '3', 2, 3)",
          "INSERT INTO response (id, questionid, name, pos, responseMatrixGroupID) VALUES "
          "(11, 1, 'a', 1, 100), (12, 1, 'b', 2, 100), (21, 2, 'c', 1, 100), "
          "(31, 3, 'yes', 1, 100)",
          "INSERT INTO respondent (source) VALUES ('Web'), ('Web')",
          "INSERT INTO respondent_responses (RespondentID, QuestionID, ResponseID, SimpleResponse, "
          "ResponseMatrixID) VALUES (1, 1, 11, '', 201), (2, 77, 11, '', 201), (1, 1, 12, '', "
          "203), (1, 2, 21, '', 203), (2, 3, 31, '', NULL)"});
    const SummaryReport report = Summary(1, 12);
    EXPECT_EQ(Rows(report),
              QStringList({"|1. first|-1", "|     a|11", "100%|          good|11",
                           "0.0%|          fair|11", "0.0%|          bad|11", "|     b|12",
                           "0.0%|          good|12", "0.0%|          fair|12",
                           "|2. second|-1", // over the last point of b
                           "|     c|21", "0.0%|          good|21", "0.0%|          fair|21",
                           "|3. last|-1", // over the last point of c
                           "50%|     yes|31"}));
    EXPECT_EQ(report.row, 6);
    EXPECT_EQ(report.SummaryKeys, std::vector<std::int16_t>({0, -1, 11, 11, 11, 11, 12, 12, 12, 12,
                                                             -1, 21, 21, 21, 21, -1, -1}));
    EXPECT_EQ(report.SummaryRowCount, 16);

    // The graph reads the entry at the row's own number: right in the first matrix, one ahead in
    // the second, where the entry of the sub question's row is still the question's.
    const auto row = [&](int number) {
        return Table(report.rows[number].rowData, report.SummaryKeys[number]);
    };
    EXPECT_EQ(row(2), QStringList({"shown", " good=2", " fair=0", " bad=0"}));
    EXPECT_EQ(row(8), QStringList({"shown", " good=0", " fair=0", " bad=1"}));
    EXPECT_EQ(row(10), QStringList({"shown", "=0", "=0", "=0"}));
    EXPECT_EQ(row(11), QStringList({"shown", " good=0", " fair=0", " bad=1"}));
    EXPECT_EQ(row(14), QStringList({"shown", " yes=1"}));
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
