// The sample survey that lies beside the program: whole, and as the program itself would have
// written it.
#include <SQLiteCpp/SQLiteCpp.h>
#include <gtest/gtest.h>

#include "support/Places.h"

namespace pollarix::test {
namespace {

class Sample : public testing::Test {
  protected:
    std::int64_t Number(const char* sql) { return survey_.execAndGet(sql).getInt64(); }

    SQLite::Database survey_{DataFile("samples/museum-visit.plxs").toStdString(),
                             SQLite::OPEN_READONLY};
};

TEST_F(Sample, HasEveryKindOfQuestionAndJumps) {
    EXPECT_EQ(Number("SELECT count(DISTINCT qtype) FROM question"), 5);
    EXPECT_EQ(Number("SELECT count(*) = max(pos) AND min(pos) = 1 FROM question"), 1);
    EXPECT_GE(Number("SELECT count(*) FROM response AS r JOIN question AS target ON target.id = "
                     "r.logicjumptoquestionid JOIN question AS owner ON owner.id = r.questionid "
                     "WHERE owner.qtype = 2 AND target.pos > owner.pos + 1"),
              2);
    EXPECT_GE(Number("SELECT count(*) FROM respondent"), 200);
}

TEST_F(Sample, AnswersReferToWhatIsThere) {
    EXPECT_EQ(Number("SELECT count(*) FROM respondent_responses AS a LEFT JOIN question AS q ON "
                     "q.id = a.questionid LEFT JOIN respondent AS p ON p.id = a.respondentid "
                     "WHERE q.id IS NULL OR p.id IS NULL OR q.qtype = 4"),
              0);
    EXPECT_EQ(Number("SELECT count(*) FROM respondent_responses AS a JOIN question AS q ON q.id = "
                     "a.questionid LEFT JOIN response AS r ON r.id = a.responseid AND r.questionid "
                     "= q.id LEFT JOIN responsematrix AS m ON m.id = a.responsematrixid AND "
                     "m.responsematrixgroupid = r.responsematrixgroupid WHERE CASE q.qtype "
                     "WHEN 0 THEN a.responseid <> 1 OR a.responsematrixid IS NOT NULL "
                     "WHEN 3 THEN r.id IS NULL OR m.id IS NULL "
                     "ELSE r.id IS NULL OR a.responsematrixid IS NOT NULL END"),
              0);
    // One answer to a radio question or a sub question, one text to an open ended one.
    EXPECT_EQ(
        Number("SELECT count(*) FROM (SELECT 1 FROM respondent_responses AS a JOIN question "
               "AS q ON q.id = a.questionid WHERE q.qtype <> 1 GROUP BY a.respondentid, q.id, "
               "CASE q.qtype WHEN 3 THEN a.responseid END HAVING count(*) > 1)"),
        0);
}

TEST_F(Sample, NobodyAnswersWhatAJumpPassedOver) {
    EXPECT_EQ(
        Number("SELECT count(*) FROM respondent_responses AS a JOIN response AS r ON r.id = "
               "a.responseid JOIN question AS owner ON owner.id = a.questionid AND "
               "owner.qtype = 2 JOIN question AS target ON target.id = "
               "r.logicjumptoquestionid JOIN question AS passed ON passed.pos > owner.pos AND "
               "passed.pos < target.pos JOIN respondent_responses AS b ON b.questionid = "
               "passed.id AND b.respondentid = a.respondentid"),
        0);
}

} // namespace
} // namespace pollarix::test
