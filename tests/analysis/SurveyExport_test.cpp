#include "analysis/SurveyExport.h"

#include "analysis/AnsweredSurvey.h"
#include "analysis/TableExport.h"

namespace pollarix::test {
namespace {

class SurveyExportTest : public AnsweredSurvey {
  protected:
    template <typename Form> std::string Exported() {
        Form::Write(Survey(), Path("export.csv"), [](std::int64_t, std::int64_t) {});
        return BytesOf(Path("export.csv")).toStdString();
    }
};

TEST_F(SurveyExportTest, OneRecordARespondentInOneByteACharacter) {
    EXPECT_EQ(Exported<SurveyExport>(),
              "\"Web\", \"04.03.2024\", \"Data not found\", "
              "\"Service\", \"Price\", \"Taste\", \"Data not found\"\r\n"
              "\"Manual Entry\", \"05.03.2024 14:30:15\", \"Fine really\r\n"
              "\x8Elu?ou?k\xFD \x80\", \"Leek\", \"Pea green\", \"Leek\", "
              "\"Service\", \"Bad\", \"Price\", \"Taste\", \"No\", \"\"\r\n");
    Sql("DELETE FROM respondent");
    EXPECT_EQ(Exported<SurveyExport>(), "");
}

TEST_F(SurveyExportTest, TheTableHasTheSameColumnsInEveryRow) {
    // Two answers to a radio question, a Null answer, a cell that is all quotes, names alike,
    // texts that a spreadsheet would work out.
    Sql("INSERT INTO respondent (id, submitteddate) VALUES (3, '2024-03-06 01:02:03.999');\n"
        "INSERT INTO respondent_responses (RespondentID, QuestionID, ResponseID, SimpleResponse) "
        "VALUES (3, 14, 5, ''), (3, 14, 4, ''), (3, 11, 1, NULL), (3, 16, 1, '\"'), (3, 15, 1, "
        "'');\n"
        "UPDATE response SET name = 'Leek%2' WHERE id IN (1, 3);\n"
        "UPDATE question SET question = 'Two' || char(13, 10) || 'lines' WHERE id = 16;\n"
        "UPDATE question SET questionno = '=3' WHERE id = 14;\n"
        "UPDATE responsematrix SET name = '@No' WHERE id = 512;\n"
        "INSERT INTO respondent (id, submitteddate, source) VALUES (4, '2024-03-07', '+1 2'), "
        "(5, '2024-03-08', '-1,5'), (6, '2024-03-09', '-A1')");
    EXPECT_EQ(
        Exported<TableExport>(),
        "\xEF\xBB\xBFRespondent id,Submitted,Source,1. What do you think of us?,"
        "\"2. Which soups, if any?: Pea, \"\"green\"\"\",\"2. Which soups, if any?: Leek%2\","
        "\"2. Which soups, if any?: Leek%2 (2)\",'=3. The best one ☺?,4. Rate us: Service,"
        "4. Rate us: Price,4. Rate us: Taste,Two lines\r\n"
        "2,2024-03-04 00:00:00,Web,,0,0,0,,,,,\r\n"
        "1,2024-03-05 14:30:15,Manual Entry,\"Fine, \"\"really\"\"\r\nŽluťoučký €\",1,0,1,Leek,"
        "Bad,,'@No,\r\n"
        "3,2024-03-06 01:02:03,,,0,1,0,Leek; Tomato,,,,\"\"\"\"\r\n"
        "4,2024-03-07 00:00:00,'+1 2,,0,0,0,,,,,\r\n"
        "5,2024-03-08 00:00:00,\"-1,5\",,0,0,0,,,,,\r\n"
        "6,2024-03-09 00:00:00,'-A1,,0,0,0,,,,,\r\n");
}

TEST_F(SurveyExportTest, ManyBlocksAreWrittenInOrder) {
    AddRespondents(2000, 100);
    const QStringList rows = QString::fromStdString(Exported<TableExport>()).split("\r\n");
    ASSERT_EQ(rows.size(), 2005); // one answer has two lines, and nothing stands behind the last
    for (int i = 3; i <= 2002; ++i)
        ASSERT_TRUE(rows[i + 1].startsWith(QString::number(i) + ',')) << i;
    EXPECT_EQ(QString::fromStdString(Exported<SurveyExport>()).count("\r\n\"Web\", "), 2000);
}

} // namespace
} // namespace pollarix::test
