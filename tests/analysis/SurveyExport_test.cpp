#include "analysis/SurveyExport.h"

#include <gtest/gtest.h>

#include <QLocale>

#include "analysis/AnsweredSurvey.h"
#include "analysis/TableExport.h"
#include "platform/Failure.h"
#include "support/PrintQt.h"

namespace pollarix::test {
namespace {

const ProgressStep NoProgress = [](std::int64_t, std::int64_t) {};

class SurveyExportTest : public testing::Test, protected AnsweredSurvey {
  protected:
    SurveyExportTest() { QLocale::setDefault(QLocale("de_DE")); }

    std::string Exported() {
        SurveyExport::Write(Survey(), Path("export.csv"), NoProgress);
        return Read(Path("export.csv")).toStdString();
    }
};

TEST_F(SurveyExportTest, OneRecordARespondentInOneByteACharacter) {
    EXPECT_EQ(Exported(), "\"Web\", \"04.03.2024\", \"Data not found\", "
                          "\"Service\", \"Price\", \"Taste\", \"Data not found\"\r\n"
                          "\"Manual Entry\", \"05.03.2024 14:30:15\", \"Fine really\r\n"
                          "\x8Elu?ou?k\xFD \x80\", \"Leek\", \"Pea green\", \"Leek\", "
                          "\"Service\", \"Bad\", \"Price\", \"Taste\", \"No\", \"\"\r\n");
}

TEST_F(SurveyExportTest, QuoteMeKeepsNeitherQuotesNorCommas) {
    EXPECT_EQ(SurveyExport::QuoteMe("a, \"b\"\r\n'c'"), "\"a b\r\n'c'\"");
    EXPECT_EQ(SurveyExport::QuoteMe(",,,"), "\"\"");
}

TEST_F(SurveyExportTest, WithoutRespondentsTheOldFileBecomesEmpty) {
    Exported();
    Sql("DELETE FROM respondent");
    EXPECT_EQ(Exported(), "");
}

TEST_F(SurveyExportTest, EndsSilentlyAndOffersBothForms) {
    for (const int form : {0, 1}) {
        Choose(Path("export.csv"), form);
        SurveyExport(state, work).mnuFileExport_Click();
        const bool isTable = Read(Path("export.csv")).startsWith("\xEF\xBB\xBFRespondent id,");
        EXPECT_EQ(isTable, form == 1);
    }
    EXPECT_EQ(dialogs.TakeTexts(), QStringList());
    EXPECT_EQ(dialogs.fileRequests.front().fileName, "SurveyExport.csv");
}

// Reads strictly: every fault of form fails.
std::vector<std::vector<QString>> ParseTable(const QByteArray& bytes) {
    EXPECT_TRUE(bytes.startsWith("\xEF\xBB\xBF"));
    const QString text = QString::fromUtf8(bytes.mid(3));
    std::vector<std::vector<QString>> rows;
    qsizetype at = 0;
    while (at < text.size()) {
        rows.emplace_back();
        for (bool more = true; more;) {
            QString cell;
            if (text[at] == '"') {
                while (++at < text.size()) {
                    if (text[at] == '"' && (++at >= text.size() || text[at] != '"'))
                        break;
                    cell += text[at];
                }
            } else {
                while (at < text.size() && !QString(",\r\n\"").contains(text[at]))
                    cell += text[at++];
            }
            rows.back().push_back(cell);
            more = at < text.size() && text[at] == ',';
            if (more)
                ++at;
        }
        if (text.mid(at, 2) != "\r\n") {
            ADD_FAILURE() << "no line end at " << at;
            return rows;
        }
        at += 2;
    }
    return rows;
}

TEST_F(SurveyExportTest, TheTableHasTheSameColumnsInEveryRow) {
    // Two answers to a radio question; a Null answer; names alike; a cell that is all quotes.
    Sql("INSERT INTO respondent (id, submitteddate) VALUES (3, '2024-03-06 01:02:03.999');\n"
        "INSERT INTO respondent_responses (RespondentID, QuestionID, ResponseID, SimpleResponse) "
        "VALUES (3, 14, 5, ''), (3, 14, 4, ''), (3, 11, 1, NULL), (3, 16, 1, '\"'), (3, 15, 1, "
        "'');\n"
        "UPDATE response SET name = 'Leek' WHERE id = 1;\n"
        "UPDATE question SET question = 'Two' || char(13, 10) || 'lines' WHERE id = 16");
    TableExport::Write(Survey(), Path("table.csv"), NoProgress);
    const std::vector<std::vector<QString>> expected = {
        {"Respondent id", "Submitted", "Source", "1. What do you think of us?",
         "2. Which soups, if any?: Pea, \"green\"", "2. Which soups, if any?: Leek",
         "2. Which soups, if any?: Leek (2)", "3. The best one \u263A?", "4. Rate us: Service",
         "4. Rate us: Price", "4. Rate us: Taste", "Two lines"},
        {"2", "2024-03-04 00:00:00", "Web", "", "0", "0", "0", "", "", "", "", ""},
        {"1", "2024-03-05 14:30:15", "Manual Entry", "Fine, \"really\"\r\nŽluťoučký €", "1", "0",
         "1", "Leek", "Bad", "", "No", ""},
        {"3", "2024-03-06 01:02:03", "", "", "0", "1", "0", "Leek; Tomato", "", "", "", "\""},
    };
    EXPECT_EQ(ParseTable(Read(Path("table.csv"))), expected);
}

TEST_F(SurveyExportTest, ManyBlocksAreWrittenInOrder) {
    AddRespondents(2000, QString(100, 'x'));
    TableExport::Write(Survey(), Path("table.csv"), NoProgress);
    const auto rows = ParseTable(Read(Path("table.csv")));
    ASSERT_EQ(rows.size(), 2003u);
    for (std::size_t i = 3; i < rows.size(); ++i) {
        ASSERT_EQ(rows[i].size(), 12u);
        ASSERT_EQ(rows[i][0], QString::number(i));
    }
    EXPECT_EQ(QString::fromStdString(Exported()).count("\r\n\"Web\", "), 2000);
}

} // namespace
} // namespace pollarix::test
