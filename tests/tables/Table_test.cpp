// Files as tables: what is guessed of them, and what is refused, with the file and the spot.
#include <gtest/gtest.h>

#include <zip.h>

#include "labelled/LabelledFile.h"
#include "platform/files/Files.h"
#include "statistics/GeneratedAnswers.h"
#include "support/Bytes.h"
#include "support/NumberOf.h"
#include "support/PrintQt.h"
#include "support/SurveyFiles.h"
#include "tables/OpenTable.h"

namespace pollarix::tables {
namespace {

class Tables : public testing::Test {
  protected:
    QString Path(const char* name) const { return program_.Path(name); }
    QString Write(const char* name, const QByteArray& bytes) const {
        WriteWholeFile(Path(name), bytes);
        return Path(name);
    }
    // All of a table, cells joined with "|", rows by number.
    static QStringList Rows(Table& table) {
        QStringList rows;
        table.Read([&](const TableRow& row) {
            QStringList cells;
            for (const Cell& cell : row.cells)
                cells << cell.text + (cell.fault.isEmpty() ? "" : '!' + cell.fault);
            rows << QString("%1 ").arg(row.number) + cells.join('|');
            return true;
        });
        return rows;
    }
    static QStringList Names(const Table& table) {
        QStringList names;
        for (const TableColumn& column : table.Columns())
            names << column.name;
        return names;
    }
    // Why a file can't be read, without the path, which stands in front.
    static QString Refusal(const QString& path) {
        const QString text = test::FailureOf([&] { Rows(*OpenTable(path)); }).Description();
        EXPECT_TRUE(text.startsWith(path)) << text.toStdString();
        return text.mid(path.size());
    }
    // A workbook of one sheet, from the inside of its <sheetData>.
    QString Workbook(const QByteArray& rows, const QByteArray& sharedTexts = "") const {
        return Zip({{"_rels/.rels", "<Relationships><Relationship Id='a' Type='x/officeDocument' "
                                    "Target='xl/workbook.xml'/></Relationships>"},
                    {"xl/workbook.xml",
                     "<x:workbook xmlns:x='m' xmlns:r='n'><x:sheets><x:sheet name='One' "
                     "sheetId='1' r:id='b'/></x:sheets></x:workbook>"},
                    {"xl/_rels/workbook.xml.rels",
                     "<Relationships><Relationship Id='b' Type='x/worksheet' "
                     "Target='worksheets/s.xml'/><Relationship Id='c' Type='x/sharedStrings' "
                     "Target='/xl/t.xml'/><Relationship Id='d' Type='x/styles' "
                     "Target='styles.xml'/></Relationships>"},
                    {"xl/styles.xml",
                     "<styleSheet><numFmts><numFmt numFmtId='170' formatCode='[Red]yyyy'/>"
                     "</numFmts><cellXfs><xf numFmtId='0'/><xf numFmtId='170'/></cellXfs>"
                     "</styleSheet>"},
                    {"xl/t.xml", "<sst>" + sharedTexts + "</sst>"},
                    {"xl/worksheets/s.xml",
                     "<worksheet><sheetData>" + rows + "</sheetData></worksheet>"}});
    }
    QString Zip(const std::vector<std::pair<const char*, QByteArray>>& parts) const {
        const QString path = Path("book.xlsx");
        zip_t* zip = zip_open(path.toUtf8().constData(), ZIP_CREATE | ZIP_TRUNCATE, nullptr);
        for (const auto& [name, bytes] : parts)
            zip_file_add(zip, name,
                         zip_source_buffer(zip, bytes.constData(),
                                           static_cast<zip_uint64_t>(bytes.size()), 0),
                         ZIP_FL_OVERWRITE);
        EXPECT_EQ(zip_close(zip), 0);
        return path;
    }

    test::TestState program_;
};

TEST_F(Tables, GuessHowATextIsWritten) {
    using Encoding = TextShape::Encoding;
    struct Case {
        QByteArray bytes;
        TextShape shape;
        QStringList rows;
    };
    const auto utf16 = [](const QString& text) {
        return QByteArray("\xFF\xFE") +
               QByteArray(reinterpret_cast<const char*>(text.utf16()), text.size() * 2);
    };
    for (const Case& given : {
             Case{"\xEF\xBB\xBFq1,q2\r\n\xC5\xBD,\"a;b\"\"\r\nc\"\r\n",
                  {Encoding::Utf8, u',', u'"'},
                  {"2 Ž|a;b\"\r\nc"}},
             Case{"q1;q2\n1,5;\x8E x\n\n3;",
                  {Encoding::Windows1252, u';', u'"'},
                  {"2 1,5|Ž x", "4 3|"}},
             Case{"q1\tq2\rdon't\t'=1", {Encoding::Utf8, u'\t', u'"'}, {"2 don't|=1"}},
             Case{"'q1'|'q2'\n'a|b'|'it''s'\n", {Encoding::Utf8, u'|', u'\''}, {"2 a|b|it's"}},
             Case{utf16("q1\tq2\nŽ\t1\n"), {Encoding::Utf16, u'\t', u'"'}, {"2 Ž|1"}},
             Case{"q1\n 7 \n", {Encoding::Utf8, u',', u'"'}, {"2  7 "}},
         }) {
        const auto table = OpenTable(Write("a.csv", given.bytes));
        EXPECT_EQ(*table->Shape().text, given.shape) << given.bytes.toStdString();
        EXPECT_EQ(Names(*table).front(), "q1");
        EXPECT_EQ(Rows(*table), given.rows);
    }
    // What was guessed can be overruled.
    TableShape shape;
    shape.text = TextShape{Encoding::Windows1252, u';', 0};
    shape.hasNames = false;
    const auto table = OpenTable(Write("a.csv", "\"a\";\xC5\xBD\n"), shape);
    EXPECT_EQ(Names(*table), (QStringList{"Column 1", "Column 2"}));
    EXPECT_EQ(Rows(*table), (QStringList{QString("1 \"a\"|Å") + QChar(0xBD)}));
}

TEST_F(Tables, ReadWorkbooksOfOtherPrograms) {
    const auto table = OpenTable(Workbook(
        "<row/><row r='3'><c t='s'><v>0</v></c><c r='C3' t='inlineStr'><is><t>q3</t></is></c></row>"
        "<row r='5'><c r='A5' s='1'><v>45292.5</v></c><c r='B5'><f>1+1</f><v>2</v></c>"
        "<c r='C5'><f>NOW()</f></c><c t='e'><v>#N/A</v></c><c t='b'><v>1</v></c></row>"
        "<row r='1000000'/><row><c t='s'><v>1</v></c><c t='s'><v>7</v></c><c s='1'><v>-1</v></c>"
        "<c t='str'><v>=x</v></c></row>",
        "<si><t>q1</t></si><si><r><t>a_x000D_&#10;</t></r><r><t xml:space='preserve'> b</t></r>"
        "<rPh><t>hint</t></rPh></si>"));
    EXPECT_EQ(table->Shape().sheets, QStringList("One"));
    EXPECT_EQ(Names(*table), (QStringList{"q1", "", "q3"}));
    EXPECT_EQ(
        Rows(*table),
        (QStringList{"5 2024-01-01 12:00:00|2|!is a formula without a result|#N/A!holds an "
                     "error|1",
                     "1000000 ",
                     "1000001 a\r\n b|!refers to a text that the workbook does not hold|!holds "
                     "no date, although it should|=x"}));
}

TEST_F(Tables, RefuseWhatIsDamagedOrMadeToHarm) {
    EXPECT_EQ(Refusal(Write("a.csv", "")), ": holds no table; it is empty");
    EXPECT_EQ(Refusal(Write("a.csv", "\n \n,,\n")), ": holds no table; it is empty");
    EXPECT_EQ(Refusal(Write("a.csv", QByteArray("q1\0\x01", 4))),
              ": is no table of text, no workbook (.xlsx) and no file of SPSS or Stata");
    EXPECT_EQ(Refusal(Write("a.csv", "q1" + QByteArray(20000, ','))),
              ", row 1: has more than 16384 columns");
    EXPECT_EQ(Refusal(Write("a.csv", "q1,q2\n\"" + QByteArray(17 << 20, 'x'))),
              ", row 2: column 1 holds more than 16 million characters. Is the closing quote of a "
              "text missing?");
    // Beyond what is looked at before, the encoding turns out to be wrong.
    TableShape utf8;
    utf8.text = TextShape{};
    EXPECT_EQ(test::FailureOf([&] {
                  Rows(*OpenTable(Write("a.csv", "q1\nx\nx\xFF"), utf8));
              }).Description(),
              Path("a.csv") + ", row 3: has letters that are not in this encoding. Please choose "
                              "another");

    EXPECT_TRUE(Refusal(Write("a.xlsx", "PK\x03\x04 cut off")).contains("no workbook"));
    EXPECT_EQ(Refusal(Zip({{"a.txt", "x"}})), ": is no workbook (.xlsx)");
    EXPECT_TRUE(
        Refusal(Workbook("<row><c><v>1</v></row>")).contains("xl/worksheets/s.xml, line 1"));
    EXPECT_EQ(Refusal(Workbook("<row r='2'/><row r='2'/>")),
              ": is damaged: behind row 2 comes row 2");
    EXPECT_EQ(Refusal(Workbook("<row><c r='ZZZZ1'><v>1</v></c></row>")),
              ": row 1 has more than 16384 columns");
    EXPECT_EQ(Refusal(Workbook("<row r='1' a='" + QByteArray(3 << 20, 'x') + "'/>")),
              ": its part xl/worksheets/s.xml has a tag that is longer than any table needs");
    const QString bomb =
        ": its part xl/worksheets/s.xml unpacks to far more than a table takes. Nothing of it was "
        "read";
    EXPECT_EQ(Refusal(Workbook(QByteArray(64 << 20, ' '))), bomb);
    EXPECT_EQ(Refusal(Workbook(QByteArray("<row/>").repeated(4 << 20))), bomb);
    EXPECT_EQ(Refusal(Zip({{"_rels/.rels", "<!DOCTYPE a [<!ENTITY b 'bb'>]><a>&b;</a>"}})),
              ": its part _rels/.rels has a document type, which no workbook has");

    Connection survey;
    survey.Open(program_.BlankSurvey("survey.plxs"));
    test::GeneratedAnswers(survey).Add(200);
    for (const char* name : {"a.sav", "a.dta"}) {
        (QByteArray(name) == "a.sav" ? labelled::WriteSav : labelled::WriteDta)(survey, Path(name),
                                                                                {}, {});
        const QByteArray whole = test::BytesOf(Path(name));
        for (const int share : {60, 10, 1})
            EXPECT_TRUE(
                Refusal(Write(name, whole.left(whole.size() * share / 100))).contains("cut off"))
                << name << share;
    }
}

} // namespace
} // namespace pollarix::tables
