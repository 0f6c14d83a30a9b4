#include "analysis/SurveyExport.h"

#include <QRegularExpression>

#include "analysis/AnsweredSurvey.h"
#include "analysis/TableExport.h"

namespace pollarix::test {
namespace {

class SurveyExportTest : public AnsweredSurvey {
  protected:
    std::string Exported() {
        SurveyExport::Write(Survey(), Path("export.csv"), [](std::int64_t, std::int64_t) {});
        return Read(Path("export.csv")).toStdString();
    }

    // The rows of the table, read strictly: text without its form fails.
    std::vector<QStringList> Table() {
        TableExport::Write(Survey(), Path("table.csv"), [](std::int64_t, std::int64_t) {});
        const QByteArray bytes = Read(Path("table.csv"));
        EXPECT_TRUE(bytes.startsWith("\xEF\xBB\xBF"));
        const QString text = QString::fromUtf8(bytes.mid(3));
        static const QRegularExpression form(R"re((?:"((?:[^"]|"")*)"|([^",\r\n]*))(,|\r\n))re");
        std::vector<QStringList> rows(1);
        qsizetype at = 0;
        for (const auto& cell : form.globalMatch(text)) {
            EXPECT_EQ(cell.capturedStart(), at);
            at = cell.capturedEnd();
            rows.back() << cell.captured(1).replace("\"\"", "\"") + cell.captured(2);
            if (cell.capturedView(3) == u"\r\n")
                rows.emplace_back();
        }
        EXPECT_EQ(at, text.size());
        rows.pop_back();
        return rows;
    }
};

TEST_F(SurveyExportTest, OneRecordARespondentInOneByteACharacter) {
    EXPECT_EQ(Exported(), "\"Web\", \"04.03.2024\", \"Data not found\", "
                          "\"Service\", \"Price\", \"Taste\", \"Data not found\"\r\n"
                          "\"Manual Entry\", \"05.03.2024 14:30:15\", \"Fine really\r\n"
                          "\x8Elu?ou?k\xFD \x80\", \"Leek\", \"Pea green\", \"Leek\", "
                          "\"Service\", \"Bad\", \"Price\", \"Taste\", \"No\", \"\"\r\n");
    Sql("DELETE FROM respondent");
    EXPECT_EQ(Exported(), "");
}

TEST_F(SurveyExportTest, TheTableHasTheSameColumnsInEveryRow) {
    // Two answers to a radio question, a Null answer, a cell that is all quotes, names alike.
    Sql("INSERT INTO respondent (id, submitteddate) VALUES (3, '2024-03-06 01:02:03.999');\n"
        "INSERT INTO respondent_responses (RespondentID, QuestionID, ResponseID, SimpleResponse) "
        "VALUES (3, 14, 5, ''), (3, 14, 4, ''), (3, 11, 1, NULL), (3, 16, 1, '\"'), (3, 15, 1, "
        "'');\n"
        "UPDATE response SET name = 'Leek%2' WHERE id IN (1, 3);\n"
        "UPDATE question SET question = 'Two' || char(13, 10) || 'lines' WHERE id = 16");
    const std::vector<QStringList> expected = {
        {"Respondent id", "Submitted", "Source", "1. What do you think of us?",
         "2. Which soups, if any?: Pea, \"green\"", "2. Which soups, if any?: Leek%2",
         "2. Which soups, if any?: Leek%2 (2)", "3. The best one ☺?", "4. Rate us: Service",
         "4. Rate us: Price", "4. Rate us: Taste", "Two lines"},
        {"2", "2024-03-04 00:00:00", "Web", "", "0", "0", "0", "", "", "", "", ""},
        {"1", "2024-03-05 14:30:15", "Manual Entry", "Fine, \"really\"\r\nŽluťoučký €", "1", "0",
         "1", "Leek", "Bad", "", "No", ""},
        {"3", "2024-03-06 01:02:03", "", "", "0", "1", "0", "Leek; Tomato", "", "", "", "\""}};
    EXPECT_EQ(Table(), expected);
}

TEST_F(SurveyExportTest, ManyBlocksAreWrittenInOrder) {
    AddRespondents(2000, 100);
    const std::vector<QStringList> rows = Table();
    ASSERT_EQ(rows.size(), 2003u);
    for (std::size_t i = 3; i < rows.size(); ++i)
        ASSERT_EQ(rows[i].value(0), QString::number(i));
    EXPECT_EQ(QString::fromStdString(Exported()).count("\r\n\"Web\", "), 2000);
}

} // namespace
} // namespace pollarix::test
