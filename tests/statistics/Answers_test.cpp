// What a survey file becomes in memory: variables, codes, who was asked, and who a filter chooses.
#include <gtest/gtest.h>

#include "platform/base/Failure.h"
#include "statistics/Answers.h"
#include "statistics/CrossTable.h"
#include "statistics/Filter.h"
#include "statistics/Frequencies.h"
#include "statistics/Raking.h"
#include "support/PrintQt.h"
#include "support/SurveyFiles.h"

namespace pollarix::statistics {
namespace {

using test::TestState;

// q1 asks with jumps: 11 on, 12 past q2 to the instruction, 13 back to the start, 14 nowhere. The
// order of responses is not that of their ids.
constexpr std::initializer_list<const char*> Design = {
    "INSERT INTO question (id, questionno, qtype, pos, question) VALUES "
    "(7, '1', 2, 1, '{\\rtf1\\ansi Go \\b on\\b0?}'), (5, '2', 1, 2, 'Soups'), "
    "(9, NULL, 4, 3, 'Text'), (3, '3', 3, 4, 'Rate'), (1, '4', 0, 5, 'Age'), (8, '5', 2, 6, 'End')",
    "INSERT INTO response (id, questionid, name, pos, responseMatrixGroupID, "
    "LogicJumpToQuestionID) "
    "VALUES (12, 7, 'Past', 2, 1, 9), (11, 7, 'On', 1, 1, NULL), (13, 7, 'Back', 3, 1, 7), "
    "(14, 7, 'Lost', 4, 1, 99), (21, 5, 'Pea', 1, 1, 8), (22, 5, 'Leek', 2, 1, NULL), "
    "(31, 3, 'Taste', 1, 3, NULL), (32, 3, 'Price', 2, 3, NULL), (81, 8, 'Yes', 1, 1, 5)",
};

constexpr std::initializer_list<const char*> Given = {
    "INSERT INTO respondent (id, submitteddate, source) VALUES (1, '2024-03-01 10:00:00', 'Web'), "
    "(2, '2024-03-02 10:00:00', 'Manual Entry'), (3, '2024-03-03 10:00:00', 'Web'), "
    "(4, '2024-03-04 10:00:00', NULL), (5, '2024-03-05 10:00:00', 'Web'), (6, 'never', 'Web')",
    "INSERT INTO respondent_responses (RespondentID, QuestionID, ResponseID, SimpleResponse, "
    "ResponseMatrixID) VALUES (1, 7, 11, '', NULL), (1, 5, 22, '', NULL), (1, 1, 1, '30', NULL), "
    "(1, 3, 31, '', (SELECT min(id) FROM responsematrix WHERE ResponseMatrixGroupID = 3)), "
    "(2, 7, 12, '', NULL), (2, 1, 1, ' 41,5 ', NULL), (2, 1, 1, 'second', NULL), "
    "(3, 7, 13, '', NULL), (3, 1, 1, 'old', NULL), (3, 5, 81, '', NULL), "
    "(4, 7, 14, '', NULL), (4, 7, 11, '', NULL), (4, 1, 1, '', NULL), "
    "(5, 7, 12, '', NULL), (5, 5, 21, '', NULL), (5, 77, 1, 'gone', NULL), "
    "(6, 8, 81, '', NULL), (6, 1, 1, '-3', NULL)",
};

class AnswersInMemory : public testing::Test {
  protected:
    AnswersInMemory() {
        file_.Open(program_.BlankSurvey("survey.plxs"));
        for (const auto& statements : {Design, Given})
            for (const char* statement : statements)
                file_.Run(statement);
    }

    // The numbers behind the answers, "?" for no number, "-" for left empty, "x" for not asked.
    static QString Written(const Answers& answers, const char* name) {
        const std::size_t variable = answers.Survey().Find(name).value();
        QStringList codes;
        for (std::size_t row = 0; row < answers.Respondents(); ++row) {
            const Code code = answers.Codes(variable)[row];
            codes << (code == NotAsked    ? QString("x")
                      : code == LeftEmpty ? QString("-")
                      : code == NoNumber  ? QString("?")
                                          : QString::number(answers.At(variable).values[code]));
        }
        return codes.join(' ');
    }

    TestState program_;
    Connection file_;
};

TEST_F(AnswersInMemory, AreTheNumbersOfWhatIsStoredAndTellWhoWasNotAsked) {
    const Answers answers(file_);
    const struct {
        const char* name;
        const char* label;
        const char* codes;
    } expected[] = {
        {"q1", "Go on?", "1 2 3 4 2 -"},
        // The answer stored where the jump leads past counts; a lone tick makes the other one "No".
        {"q2_1", "Soups: Pea", "0 x - - 1 -"},
        {"q2_2", "Soups: Leek", "1 x - - 0 -"},
        {"q3_1", "Rate: Taste", "1 - - - - -"},
        {"q4", "Age", "30 41.5 ? - - -3"},
        {"q5", "End", "- - - - - 1"},
        {"source", "Source", "2 1 2 - 2 2"},
    };
    for (const auto& [name, label, codes] : expected) {
        EXPECT_EQ(Written(answers, name), codes) << name;
        EXPECT_EQ(answers.At(answers.Survey().Find(name).value()).label, label);
    }
    EXPECT_EQ(answers.At(answers.Survey().Find("q4").value()).level, Level::Nominal);
    EXPECT_EQ(answers.At(SurveyVariables::Date).categories.front(), "2024-03-01");
    EXPECT_EQ(answers.Codes(SurveyVariables::Date)[5], LeftEmpty);
}

TEST_F(AnswersInMemory, AWalkEndsWhereverJumpsLead) {
    // To a question far behind, back to one between, which leads to the first again.
    file_.Run("UPDATE question SET qtype = 2 WHERE id = 3");
    file_.Run("UPDATE response SET LogicJumpToQuestionID = 8 WHERE id = 12");
    file_.Run("UPDATE response SET LogicJumpToQuestionID = 3 WHERE id = 81");
    file_.Run("UPDATE response SET LogicJumpToQuestionID = 7 WHERE id = 31");
    file_.Run("DELETE FROM respondent_responses");
    file_.Run("INSERT INTO respondent_responses (RespondentID, QuestionID, ResponseID) "
              "VALUES (1, 7, 12), (1, 8, 81), (1, 3, 31), (2, 7, 12)");
    const Answers answers(file_);
    EXPECT_EQ(Written(answers, "q2_1").left(3), "- x");
    EXPECT_EQ(Written(answers, "q4").left(3), "- x");
    EXPECT_EQ(Written(answers, "q5").left(3), "1 -");
}

TEST(NumberIn, TakesOnlyWhatCanMeanOneNumber) {
    const struct {
        const char* text;
        std::optional<double> number;
    } table[] = {{" 12 ", 12},    {"+1.5e3", 1500}, {"2,75", 2.75}, {".5", .5},
                 {"0,125", .125}, {"-0", 0},        {"1,250", {}},  {"1.2.3", {}},
                 {"12 km", {}},   {"", {}},         {"nan", {}},    {"0x10", {}},
                 {"1e999", {}},   {",", {}},        {"５", {}},     {"1,000,000", {}}};
    for (const auto& [text, number] : table)
        EXPECT_EQ(NumberIn(QString::fromUtf8(text)), number) << text;
}

TEST_F(AnswersInMemory, AFilterChoosesAndSaysSo) {
    const Answers answers(file_);
    const auto place = [&](const char* name) { return answers.Survey().Find(name).value(); };
    const auto condition = [&](Filter::Kind kind, const char* name, std::vector<Code> codes = {}) {
        Filter filter;
        filter.kind = kind;
        filter.variable = place(name);
        filter.codes = std::move(codes);
        return filter;
    };
    Filter fromDay;
    fromDay.kind = Filter::Kind::FromDay;
    fromDay.day = QDate(2024, 3, 3);
    Filter old = condition(Filter::Kind::AtLeast, "q4");
    old.low = 31;
    const Filter on = condition(Filter::Kind::IsOneOf, "q1", {0, 1});
    const Filter nested{Filter::Kind::All, {on, {Filter::Kind::Any, {fromDay, old}}}};
    const struct {
        Filter filter;
        std::vector<std::uint8_t> chosen;
        const char* sentence;
    } table[] = {
        {{}, {1, 1, 1, 1, 1, 1}, "everybody"},
        {on, {1, 1, 0, 0, 1, 0}, "Go on? is \"On\" or \"Past\""},
        {condition(Filter::Kind::IsNoneOf, "q4", {0}),
         {1, 1, 1, 0, 0, 0},
         "Age is answered, but not by \"-3\""},
        {condition(Filter::Kind::NotAsked, "q2_1"), {0, 1, 0, 0, 0, 0}, "Soups: Pea was not asked"},
        {condition(Filter::Kind::NotAnswered, "q2_1"),
         {0, 1, 1, 1, 0, 1},
         "Soups: Pea is not answered"},
        {nested,
         {0, 1, 0, 0, 1, 0},
         "Go on? is \"On\" or \"Past\", and (Submitted from 2024-03-03, or Age is at least 31)"},
    };
    for (const auto& [filter, chosen, sentence] : table) {
        EXPECT_EQ(Choose(answers, filter), chosen) << sentence;
        EXPECT_EQ(Sentence(answers.Survey(), filter), sentence);
    }
    EXPECT_THROW(Choose(answers, condition(Filter::Kind::IsOneOf, "q1", {4})), Failure);
}

TEST_F(AnswersInMemory, TicksAreCountedByRespondentsAndByAnswers) {
    file_.Run("INSERT INTO respondent_responses (RespondentID, QuestionID, ResponseID) "
              "VALUES (1, 5, 21)");
    const Answers answers(file_);
    const Frequencies ticks = CountTicks(answers, 1, {});
    ASSERT_EQ(ticks.lines.size(), 2U);
    EXPECT_EQ(ticks.valid, 2);
    EXPECT_EQ(ticks.leftEmpty, 3);
    EXPECT_EQ(ticks.notAsked, 1);
    EXPECT_EQ(ticks.lines[0].shareOfValid, 1);
    EXPECT_DOUBLE_EQ(ticks.lines[0].shareOfAnswers, 2.0 / 3);
    EXPECT_THROW(CountTicks(answers, 0, {}), Failure);

    const Axis soups{Axis::Kind::Ticks, 1};
    const Axis q1{Axis::Kind::Variable, answers.Survey().Find("q1").value()};
    const CrossTable table = CountCrossTables(answers, soups, q1, {}, {}).front();
    EXPECT_EQ(table.total, 2);
    EXPECT_EQ(table.rowTotals, (std::vector<double>{2, 1}));
    EXPECT_EQ(table.columnTotals, (std::vector<double>{1, 1, 0, 0}));
    EXPECT_EQ(table.OfRow(0, 1), 0.5);
    const auto layers =
        CountCrossTables(answers, soups, q1, answers.Survey().Find("source").value(), {});
    ASSERT_EQ(layers.size(), 2U);
    EXPECT_EQ(layers[0].layer, "Manual Entry");
    EXPECT_EQ(layers[0].missing, 1);
    EXPECT_EQ(layers[1].counts(0, 1), 1);
}

TEST_F(AnswersInMemory, WeightsRefuseSharesThatCanNotBe) {
    const Answers answers(file_);
    const std::size_t q1 = answers.Survey().Find("q1").value();
    const struct {
        std::vector<double> shares;
        const char* says;
    } table[] = {
        {{1, 1}, "there has to be one for each answer"},
        {{0, 0, 0, 0}, "not all of them 0"},
        {{1, 1, -1, 1}, "that of \"Back\" is below 0"},
    };
    for (const auto& [shares, says] : table) {
        try {
            Rake(answers, {{q1, shares}}, {});
            ADD_FAILURE() << says;
        } catch (const Failure& failure) {
            EXPECT_TRUE(failure.Description().contains("\"Go on?\"")) << says;
            EXPECT_TRUE(failure.Description().contains(says))
                << failure.Description().toStdString();
        }
    }
    // Nobody of those chosen went back.
    EXPECT_THROW(Rake(answers, {{q1, {1, 1, 1, 1}}}, {1, 1, 0, 1, 1, 1}), Failure);
    // Who has not answered keeps 1.
    const RakedWeights raked = Rake(answers, {{q1, {2, 1, 1, 1}}}, {});
    EXPECT_TRUE(raked.reached);
    EXPECT_NEAR(raked.weights[0], 2, 1e-9);
    EXPECT_NEAR(raked.weights[1], 0.5, 1e-9);
    EXPECT_NEAR(raked.weights[5], 1, 1e-9);
    RakingLimits limits;
    limits.highest = 1.5;
    limits.rounds = 20;
    const RakedWeights bounded = Rake(answers, {{q1, {2, 1, 1, 1}}}, {}, limits);
    EXPECT_FALSE(bounded.reached);
    EXPECT_EQ(bounded.largest, 1.5);
    EXPECT_EQ(bounded.atBounds, 1U);
    EXPECT_GT(bounded.largestDifference, 0.01);
}

} // namespace
} // namespace pollarix::statistics
