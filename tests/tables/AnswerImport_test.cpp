// Tables into a survey. The judge is the way there and back: what an export wrote and an import
// read has to be the same answers, whatever they are.
#include <gtest/gtest.h>

#include "analysis/TableExport.h"
#include "document/SurveyReader.h"
#include "labelled/LabelledFile.h"
#include "platform/files/Files.h"
#include "statistics/GeneratedAnswers.h"
#include "support/Bytes.h"
#include "support/NumberOf.h"
#include "support/PrintQt.h"
#include "support/SurveyFiles.h"
#include "tables/AnswerImport.h"
#include "tables/OpenTable.h"
#include "tables/RandomSurvey.h"

namespace pollarix::tables {
namespace {

using statistics::SurveyVariables;

class AnswerImports : public testing::Test {
  protected:
    AnswerImports() { Survey().Open(program_.BlankSurvey("survey.plxs")); }

    Connection& Survey() { return program_.state.SurveyConnection; }
    QString Path(const char* name) const { return program_.Path(name); }
    void WriteFile(const char* name, const QByteArray& bytes) const {
        WriteWholeFile(Path(name), bytes);
    }
    void DeleteAnswers() {
        WriteBatch batch(Survey());
        Survey().Run("DELETE FROM respondent_responses");
        Survey().Run("DELETE FROM respondent");
        batch.Commit();
    }

    // The respondents' answers, one line each: those to open questions, and those that are ids.
    QStringList Answers(bool texts) {
        QStringList lines;
        for (Recordset row = Survey().Execute(
                 "SELECT RespondentID, QuestionID, ResponseID, ResponseMatrixID, SimpleResponse, "
                 "qtype, submitteddate FROM respondent_responses AS a "
                 "JOIN question AS q ON q.id = QuestionID "
                 "JOIN respondent AS r ON r.id = RespondentID "
                 "ORDER BY submitteddate, RespondentID, QuestionID, ResponseID");
             !row.AtEnd(); row.MoveNext()) {
            const QString text = row.NullToString(4);
            if ((row.Integer(5) == 0) != texts || (texts && text.isEmpty()))
                continue;
            lines << QStringList{row.Text(6), row.Text(1), row.Text(2), row.NullToString(3), text}
                         .join('|');
        }
        return lines;
    }

    CheckedTable Check(const char* name) {
        const auto table = OpenTable(Path(name));
        const SurveyVariables survey(Survey());
        return *AnswerImport(survey, *table, GuessTargets(table->Columns(), survey)).Check({});
    }
    std::optional<std::int64_t> Import(const char* name, const ImportStep& step = {}) {
        const auto table = OpenTable(Path(name));
        const SurveyVariables survey(Survey());
        return AnswerImport(survey, *table, GuessTargets(table->Columns(), survey))
            .Write(program_.state, DigestOfDesign(Survey()), step);
    }
    QStringList Problems(const char* name) {
        QStringList lines;
        for (const Problem& problem : Check(name).problems)
            lines << QString("%1 %2 <%3> %4")
                         .arg(problem.row)
                         .arg(problem.column, problem.text, problem.why);
        return lines;
    }

    test::TestState program_;
};

const ProgressStep NoStep = [](std::int64_t, std::int64_t) {};

TEST_F(AnswerImports, BringBackWhatTheTableOfTheExportHolds) {
    for (unsigned seed = 1; seed <= 25; ++seed) {
        SCOPED_TRACE(seed);
        Survey().Close();
        QFile::remove(Path("survey.plxs"));
        Survey().Open(program_.BlankSurvey("survey.plxs"));
        test::RandomSurvey(Survey(), seed).Fill(5 + static_cast<int>(seed % 5), 30);
        TableExport::Write(Survey(), Path("before.csv"), NoStep);
        const QStringList choices = Answers(false);
        const QStringList texts = Answers(true);
        DeleteAnswers();
        EXPECT_EQ(Check("before.csv").problemCount, 0)
            << Problems("before.csv").join('\n').toStdString();
        ASSERT_EQ(Import("before.csv"), 30);
        EXPECT_EQ(Answers(false), choices);
        EXPECT_EQ(Answers(true), texts);
        EXPECT_EQ(Survey().Count("SELECT count(*) FROM respondent WHERE source = 'Imported'"), 30);
        if (HasFailure())
            break;
    }
}

// Files of other programs hold numbers as numbers, and may cut off what stands around a text: so
// only the texts of an orderly survey are compared.
TEST_F(AnswerImports, BringBackWhatFilesWithLabelsHold) {
    using Write =
        void (*)(Connection&, const QString&, const labelled::Sample&, const labelled::LoadStep&);
    for (unsigned seed = 0; seed <= 8; ++seed) {
        SCOPED_TRACE(seed);
        Survey().Close();
        QFile::remove(Path("survey.plxs"));
        Survey().Open(program_.BlankSurvey("survey.plxs"));
        if (seed == 0)
            test::GeneratedAnswers(Survey()).Add(30);
        else
            test::RandomSurvey(Survey(), seed).Fill(5 + static_cast<int>(seed), 30);
        const QStringList texts = Answers(true);
        const QStringList choices = Answers(false);
        const std::initializer_list<std::pair<const char*, Write>> files = {
            {"a.xlsx", labelled::WriteXlsx},
            {"a.sav", labelled::WriteSav},
            {"a.dta", labelled::WriteDta}};
        for (const auto& [name, write] : files)
            write(Survey(), Path(name), {}, {});
        for (const auto& [name, write] : files) {
            SCOPED_TRACE(name);
            DeleteAnswers();
            EXPECT_EQ(Problems(name), QStringList());
            ASSERT_EQ(Import(name), 30);
            EXPECT_EQ(Answers(false), choices);
            if (seed == 0)
                EXPECT_EQ(Answers(true), texts);
            else
                EXPECT_LE(Answers(true).size(), texts.size());
        }
    }
}

TEST_F(AnswerImports, KnowColumnsByNameTitleAndLabel) {
    test::GeneratedAnswers generated(Survey());
    const SurveyVariables survey(Survey());
    const auto guess = [&](const QStringList& names, const QStringList& labels = {}) {
        std::vector<TableColumn> columns;
        for (qsizetype i = 0; i < names.size(); ++i)
            columns.push_back({names[i], labels.value(i)});
        QStringList found;
        for (const Target& target : GuessTargets(columns, survey))
            for (const NamedTarget& named : AllTargets(survey))
                if (named.target == target)
                    found << named.text.section(':', 0, 0);
        return found;
    };
    EXPECT_EQ(guess({"id", "Q1", "q4_2", "q5_1", "DATE", "else", "q4_2"}),
              (QStringList{"(not imported)", "q1", "q4_2", "q5_1", "Date of the submission",
                           "(not imported)", "(not imported)"}));
    EXPECT_EQ(guess({"3. How old are you?", "How far do you agree? [It is cheap]",
                     "4. What do you use?: Bus", "What do you use?", "Kůň", "submitted"}),
              (QStringList{"q3", "q5_3", "q4_2", "q4", "q4_4", "Date of the submission"}));
    // A question that has moved since keeps its label.
    EXPECT_EQ(guess({"q1", "q2"}, {"And you are?", "Which region are you from?"}),
              (QStringList{"q2", "q1"}));
    EXPECT_EQ(WithoutColumn(
                  GuessTargets({{"q4", ""}, {"q5_1", ""}, {"q1", ""}, {"q7", ""}}, survey), survey),
              (QStringList{"q2: And you are?", "q3: How old are you?",
                           "q5_2: How far do you agree?: It is quick",
                           "q5_3: How far do you agree?: It is cheap",
                           "q5_4: How far do you agree?: It is nice", "q6: Your schooling?"}));
    EXPECT_EQ(Conflict({{Target::Kind::Variable, 5}, {Target::Kind::Choices, 3}},
                       {{"one", ""}, {"all", ""}}, survey),
              "The columns \"one\" and \"all\" both go to \"What do you use?: Train\".");
}

TEST_F(AnswerImports, TellRowAndColumnOfWhatCantBeMatched) {
    test::GeneratedAnswers generated(Survey());
    WriteFile("a.csv", "date;q1;q3;q4;q5_1;q6\n"
                       "2024-02-30;North;7;Bus, Kůň;Half;3\n"
                       ";;;;;\n"
                       "31.12.2024 8:05;north;\"a\nb\";Bus; Boat;6;4;more\n"
                       "2024-12-31T23:59:58.5Z;East;;bus;not at all;Low\n");
    const CheckedTable checked = Check("a.csv");
    EXPECT_EQ(checked.respondents, 3);
    EXPECT_EQ(checked.answers, 11);
    EXPECT_EQ(checked.problemCount, 7);
    EXPECT_EQ(Problems("a.csv"),
              (QStringList{
                  "2 date <2024-02-30> is no date that can be read. Please write it as 2024-12-31 "
                  "23:59:59",
                  "4 q5_1 <Boat> is no answer of this question",
                  "4 q6 <6> is no answer of this question, and no number from 1 to 3",
                  "4  <4> stands behind the last column that has a name",
                  "4  <more> stands behind the last column that has a name",
                  "5 q1 <East> is no answer of this question",
                  "5 q6 <Low> is no answer of this question"}));
    // What can be matched is imported, and nothing else.
    EXPECT_EQ(Import("a.csv"), 3);
    EXPECT_EQ(test::SqlRows(Path("survey.plxs"),
                            "SELECT submitteddate > '2025', group_concat(QuestionID || ':' || "
                            "ResponseID || ':' || ifnull(ResponseMatrixID, SimpleResponse), ' ') "
                            "FROM respondent AS r JOIN respondent_responses ON RespondentID = r.id "
                            "GROUP BY r.id",
                            2),
              (QStringList{"1|1:11: 3:1:7 4:42: 4:44: 5:51:503 6:63:", "0|1:11: 3:1:a\nb 4:42:",
                           "0|4:42: 5:51:501"}));
}

TEST_F(AnswerImports, TakeTheFilesThatAPageLeaves) {
    test::GeneratedAnswers generated(Survey());
    const auto page = [](const QByteArray& respondent, const QByteArray& answers) {
        return "{\"format\":\"pollarix-answers\",\"version\":1,\"respondent\":\"" + respondent +
               "\",\"submitted\":\"2024-05-06 07:08:09\",\"answers\":{" + answers + "}}";
    };
    WriteFile("a.json", page("1", R"("id:1":"id:12","id:4:42":"1","id:5:53":"id:501")"));
    WriteFile("b.json", page("2", R"("id:7":"id:12","id:4:41":"1","id:6":"id:12")"));
    WriteFile("c.json", page("1", R"("id:1":"id:12")")); // the first, saved once more
    WriteFile("d.json", "{}");
    EXPECT_EQ(Import("a.json"), 1);
    TableShape all;
    all.takesNeighbours = true;
    const auto table = OpenTable(Path("a.json"), all);
    const SurveyVariables survey(Survey());
    AnswerImport import(survey, *table, GuessTargets(table->Columns(), survey));
    const CheckedTable checked = *import.Check({});
    EXPECT_EQ(checked.respondents, 2);
    ASSERT_EQ(checked.problemCount, 1);
    EXPECT_EQ(checked.problems[0].column, "id:6");
    EXPECT_EQ(import.Write(program_.state, DigestOfDesign(Survey()), {}), 2);
    const QString first = "2024-05-06 07:08:09.000 1:12: 4:42: 5:53:501";
    EXPECT_EQ(test::SqlRows(Path("survey.plxs"),
                            "SELECT submitteddate || ' ' || group_concat(QuestionID || ':' || "
                            "ResponseID || ':' || ifnull(ResponseMatrixID, SimpleResponse), ' ') "
                            "FROM respondent AS r JOIN respondent_responses ON RespondentID = r.id "
                            "GROUP BY r.id",
                            1),
              (QStringList{first, first, "2024-05-06 07:08:09.000 4:41: 7:1:id:12"}));
    WriteFile("b.json", page("2", "").left(70));
    EXPECT_TRUE(test::FailureOf([&] { OpenTable(Path("a.json"), all); })
                    .Description()
                    .startsWith(Path("b.json") + ": is damaged or cut off, at byte "));
}

TEST_F(AnswerImports, LeaveTheSurveyAsItWasWhenItDoesNotEndWell) {
    test::GeneratedAnswers(Survey()).Add(3);
    QByteArray rows = "q1,q7\n";
    for (int i = 0; i < 1000; ++i)
        rows += "North,text\n";
    WriteFile("long.csv", rows);
    WriteFile("cut.csv", rows + "South,\"no end");
    int steps = 0;
    EXPECT_EQ(Import("long.csv", [&](std::int64_t, double) { return ++steps < 3; }), std::nullopt);
    EXPECT_EQ(test::FailureOf([&] { Import("cut.csv"); }).Description(),
              Path("cut.csv") +
                  ", row 1002: the quoted text of column 2 that begins in this row has no end");
    EXPECT_EQ(Survey().Count("SELECT count(*) FROM respondent"), 3);
    // The file has another design by now.
    const auto table = OpenTable(Path("long.csv"));
    const SurveyVariables survey(Survey());
    const QByteArray digest = DigestOfDesign(Survey());
    Survey().Run("DELETE FROM question WHERE id = 7");
    EXPECT_EQ(test::NumberOf([&] {
                  AnswerImport(survey, *table, GuessTargets(table->Columns(), survey))
                      .Write(program_.state, digest, {});
              }),
              failure::PathOrFileAccess);
    EXPECT_EQ(Survey().Count("SELECT count(*) FROM respondent"), 3);
    EXPECT_EQ(Import("long.csv"), 1000);
}

} // namespace
} // namespace pollarix::tables
