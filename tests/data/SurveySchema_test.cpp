// What the program counts on in the template of a new survey, asked of the built blank.mdb itself.
#include <SQLiteCpp/SQLiteCpp.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <QFile>
#include <QTemporaryDir>

#include <string>

#include "support/Places.h"

namespace pollarix::test {
namespace {

class SurveySchema : public testing::Test {
  protected:
    void SetUp() override {
        const QString copy = directory_.filePath("survey.plxs");
        ASSERT_TRUE(QFile::copy(DataFile("blank.mdb"), copy));
        QFile::setPermissions(copy, QFile::ReadOwner | QFile::WriteOwner);
        survey_ = SQLite::Database(copy.toStdString(), SQLite::OPEN_READWRITE);
        // The program opens survey files this way, the defaults of columns have to work in it.
        sqlite3_db_config(survey_.getHandle(), SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
        sqlite3_db_config(survey_.getHandle(), SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    }

    std::string Text(const std::string& sql) { return survey_.execAndGet(sql).getString(); }
    std::int64_t Number(const std::string& sql) { return survey_.execAndGet(sql).getInt64(); }

  private:
    QTemporaryDir directory_;

  protected:
    SQLite::Database survey_{":memory:", SQLite::OPEN_READWRITE};
};

TEST_F(SurveySchema, StartsWithScalesButNoSurvey) {
    EXPECT_EQ(Text("SELECT group_concat(version) FROM (SELECT * FROM version)"), "1.7");
    for (const char* table : {"question", "response", "respondent", "respondent_responses"}) {
        EXPECT_EQ(Number(std::string("SELECT count(*) FROM ") + table), 0) << table;
    }
    // Scale 1 is never offered, but a matrix that got its rows after a save stays with it.
    const std::string points =
        "SELECT group_concat(name) FROM (SELECT name FROM responsematrix WHERE "
        "responsematrixgroupid = %1 ORDER BY pos)";
    EXPECT_EQ(Text(std::string(points).replace(points.find("%1"), 2, "1")),
              Text(std::string(points).replace(points.find("%1"), 2, "2")));
    EXPECT_GE(Number("SELECT count(*) FROM responsematrixgroup WHERE id <> 1"), 8);
    // Questions changed to a matrix carry scale 2.
    EXPECT_GE(Number("SELECT count(*) FROM responsematrix WHERE responsematrixgroupid = 2"), 3);
    // Each scale on offer has points, counted from 0 without a gap; they are shown joined by "/".
    EXPECT_EQ(Number("SELECT count(*) FROM responsematrixgroup AS g WHERE id <> 1 AND NOT EXISTS "
                     "(SELECT 1 FROM responsematrix AS m WHERE m.responsematrixgroupid = g.id)"),
              0);
    EXPECT_EQ(Number("SELECT count(*) FROM (SELECT min(pos) AS first, max(pos) AS last, count(*) "
                     "AS points, count(DISTINCT pos) AS places FROM responsematrix GROUP BY "
                     "responsematrixgroupid) WHERE first <> 0 OR last <> points - 1 OR places <> "
                     "points"),
              0);
    EXPECT_EQ(Number("SELECT count(*) FROM responsematrix WHERE name LIKE '%/%' OR name = ''"), 0);
}

TEST_F(SurveySchema, DefaultsFillMarkAndDate) {
    survey_.exec("INSERT INTO question (question, questionno, qtype, pos) VALUES ('a', '1', 0, 1)");
    survey_.exec("INSERT INTO response (questionid, name, pos) VALUES (1, 'b', 1)");
    EXPECT_EQ(Number("SELECT deleteme FROM question") + Number("SELECT deleteme FROM response"), 0);
    EXPECT_EQ(Text("SELECT typeof(logicjumptoquestionid) FROM response"), "null");

    survey_.exec("INSERT INTO respondent (source) VALUES ('Web')");
    EXPECT_EQ(Number("SELECT submitteddate GLOB "
                     "'[0-9][0-9][0-9][0-9]-[01][0-9]-[0-3][0-9] [0-2][0-9]:[0-5][0-9]:[0-5][0-9]."
                     "[0-9][0-9][0-9]' FROM respondent"),
              1);
    EXPECT_EQ(Number("SELECT abs(julianday('now', 'localtime') - julianday(submitteddate)) < 0.001 "
                     "FROM respondent"),
              1);
}

TEST_F(SurveySchema, NumberColumnsRefuseTextAndIdsAreNeverUsedAgain) {
    survey_.exec("INSERT INTO respondent_responses (RespondentID, QuestionID) VALUES (1, 1)");
    for (const std::string column :
         {"RespondentID", "QuestionID", "ResponseID", "ResponseMatrixID"}) {
        const std::string set = "UPDATE respondent_responses SET " + column + " = ";
        EXPECT_THROW(survey_.exec(set + "'7x'"), SQLite::Exception) << column;
        EXPECT_EQ(survey_.exec(set + "'41'"), 1);
    }
    for (const std::string row :
         {"question (question) VALUES ('a')", "response (questionid) VALUES (1)",
          "responsematrixgroup (name) VALUES ('User Added')",
          "responsematrix (ResponseMatrixGroupID) VALUES (2)", "respondent (source) VALUES ('Web')",
          "respondent_responses (RespondentID, QuestionID) VALUES (1, 1)"}) {
        survey_.exec("INSERT INTO " + row);
        const std::int64_t last = survey_.getLastInsertRowid();
        survey_.exec("DELETE FROM " + row.substr(0, row.find(' ')) +
                     " WHERE id = " + std::to_string(last));
        survey_.exec("INSERT INTO " + row);
        EXPECT_GT(survey_.getLastInsertRowid(), last) << row;
    }
}

} // namespace
} // namespace pollarix::test
