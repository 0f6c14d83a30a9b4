#include "SurveyScript.h"

#include <QFile>

#include <sqlite3.h>

#include <algorithm>
#include <iterator>
#include <string>

#include "FuzzProgram.h"

namespace pollarix::fuzz {

namespace {

// Ids, positions and the order of rows all differ, so that each jump and answer is a real look-up.
constexpr const char* EveryKind = R"sql(
INSERT INTO question (id, questionno, qtype, pos, question) VALUES
    (11, '1', 0, 1, '{\rtf1\ansi What do you \b think\b0  of us?}'),
    (12, NULL, 4, 2, '{\rtf1\ansi Now about \i soup\i0.}'),
    (15, '2', 1, 3, 'Which soups, if any?'),
    (14, '3', 2, 4, '{\rtf1\ansi The best one \u9786??}'),
    (13, '4', 3, 5, 'Rate us'),
    (16, NULL, 0, 6, 'Anything else?');
INSERT INTO response (id, questionid, name, pos, responseMatrixGroupID, LogicJumpToQuestionID)
VALUES
    (1, 15, 'Tomato', 2, 1, NULL), (2, 15, 'Pea, "green"', 1, 1, NULL), (3, 15, 'Leek', 3, 1, NULL),
    (4, 14, 'Tomato', 1, 1, 16), (5, 14, 'Leek', 2, 1, 11),
    (8, 13, 'Service', 1, 4, NULL), (7, 13, 'Price', 2, 4, NULL);
INSERT INTO respondent (id, submitteddate, source) VALUES
    (1, '2024-03-05 14:30:15.250', 'Manual Entry'), (2, '2024-03-04 00:00:00.000', 'Web');
INSERT INTO respondent_responses
    (RespondentID, QuestionID, ResponseID, SimpleResponse, ResponseMatrixID) VALUES
    (1, 11, 1, 'Fine, "really"', NULL), (1, 15, 3, '', NULL), (1, 15, 2, '', NULL),
    (1, 14, 5, '', NULL), (1, 13, 8, '', 11), (1, 13, 7, '', 12), (2, 11, 1, 'So so', NULL);
)sql";

constexpr const char* Tables[] = {"question",       "response",       "responsematrixgroup",
                                  "responsematrix", "respondent",     "respondent_responses",
                                  "version",        "sqlite_sequence"};

constexpr const char* Columns[] = {"id",
                                   "question",
                                   "questionno",
                                   "qtype",
                                   "pos",
                                   "Deleteme",
                                   "questionid",
                                   "name",
                                   "responseMatrixGroupID",
                                   "LogicJumpToQuestionID",
                                   "submitteddate",
                                   "source",
                                   "RespondentID",
                                   "ResponseID",
                                   "SimpleResponse",
                                   "ResponseMatrixID",
                                   "version",
                                   "seq"};

// Values that have broken a program before.
constexpr const char* Numbers[] = {"0",
                                   "1",
                                   "-1",
                                   "2",
                                   "3",
                                   "4",
                                   "5",
                                   "11",
                                   "14",
                                   "32766",
                                   "32767",
                                   "32768",
                                   "-32768",
                                   "-32769",
                                   "65536",
                                   "2147483647",
                                   "2147483648",
                                   "-2147483648",
                                   "9223372036854775807",
                                   "-9223372036854775808",
                                   "1.5",
                                   "-0.0",
                                   "1e300",
                                   "9e999",
                                   "NULL"};

constexpr const char* Texts[] = {"''",
                                 "'x'',1,1,1); DROP TABLE question; --'",
                                 "'{\\rtf1 '",
                                 "'{\\rtf1\\ansi\\bin4000000000 x}'",
                                 "'{\\rtf1' || replace(hex(zeroblob(2000)), '00', '{\\b') || 'x'",
                                 "hex(zeroblob(40000))",
                                 "zeroblob(100)",
                                 "CAST(x'fffe00d8' AS TEXT)",
                                 "CAST(x'610062' AS TEXT)",
                                 "'12'",
                                 "'2024-02-30 25:61:99'",
                                 "'9999999999-01-01'",
                                 "'%1 %2 %s %n'",
                                 "char(10, 13, 8232, 0, 34, 44)"};

constexpr const char* Schemas[] = {
    "DROP TABLE version",
    "DROP TABLE respondent",
    "DROP TABLE responsematrix",
    "ALTER TABLE question DROP COLUMN question",
    "ALTER TABLE question RENAME TO wasquestion",
    "CREATE VIEW question AS SELECT * FROM wasquestion",
    "ALTER TABLE response RENAME COLUMN name TO title",
    "CREATE TRIGGER harm AFTER UPDATE ON question BEGIN DELETE FROM respondent; END",
    "CREATE TABLE copy AS SELECT * FROM question",
    "DROP TABLE question",
    "CREATE TABLE question (id, question, questionno, qtype, pos, Deleteme)",
    "CREATE TABLE question (id INTEGER PRIMARY KEY, question AS (hex(zeroblob(9999))), questionno "
    "DEFAULT (hex(zeroblob(9999))), qtype, pos, Deleteme)",
    "INSERT INTO question SELECT * FROM copy",
    "INSERT INTO question (pos, qtype) VALUES (1, 2), (2, 3), (NULL, 0), (3, 7)",
    "ALTER TABLE question ADD COLUMN pos2 INTEGER DEFAULT 7",
    "CREATE UNIQUE INDEX one ON respondent_responses (QuestionID)",
    "DROP INDEX response_by_question",
    "CREATE INDEX odd ON question (hex(question)) WHERE pos > 2",
    "PRAGMA writable_schema = ON",
    "UPDATE sqlite_schema SET rootpage = 3 WHERE name = 'response'",
    "UPDATE sqlite_schema SET sql = 'CREATE TABLE question(id, pos, pos)' WHERE name = 'question'",
    "UPDATE sqlite_schema SET sql = replace(sql, 'TEXT', 'ANY'), type = 'index' WHERE rowid = 2",
    "PRAGMA journal_mode = WAL",
    "PRAGMA user_version = 99",
    "PRAGMA auto_vacuum = 2",
    "VACUUM",
    "INSERT INTO response (questionid, name, pos) SELECT id, question, pos FROM question",
    "INSERT INTO respondent DEFAULT VALUES",
    "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 300) INSERT INTO "
    "question (qtype, pos) SELECT i % 5, i FROM n",
    "UPDATE response SET LogicJumpToQuestionID = questionid",
    "UPDATE response SET questionid = 14",
    "UPDATE question SET qtype = 3"};

template <std::size_t Count> const char* OneOf(const char* const (&list)[Count], Script& script) {
    return list[script.Below(Count)];
}

std::string Value(Script& script) {
    switch (script.Below(4)) {
    case 0:
    case 1:
        return OneOf(Numbers, script);
    case 2:
        return OneOf(Texts, script);
    default:
        return "CAST(x'" + script.Text().toHex().toStdString() + "' AS TEXT)";
    }
}

void Run(sqlite3* file, const std::string& sql) {
    sqlite3_exec(file, sql.c_str(), nullptr, nullptr, nullptr);
}

// False for a change of the tables themselves.
bool Step(sqlite3* file, Script& script) {
    const std::uint8_t kind = script.Byte();
    if (kind % 4 == 3) {
        Run(file, OneOf(Schemas, script));
        return false;
    }
    const std::string table = OneOf(Tables, script);
    switch (kind % 4) {
    case 0: {
        const std::string column = OneOf(Columns, script);
        const std::string row = std::to_string(script.Below(8));
        Run(file, "UPDATE " + table + " SET " + column + " = " + Value(script) +
                      " WHERE rowid = (SELECT rowid FROM " + table + " LIMIT 1 OFFSET " + row +
                      ')');
        break;
    }
    case 1: {
        const std::string first = OneOf(Columns, script);
        const std::string second = OneOf(Columns, script);
        Run(file, "INSERT INTO " + table + " (" + first + ", " + second + ") VALUES (" +
                      Value(script) + ", " + Value(script) + ')');
        break;
    }
    default:
        Run(file, "DELETE FROM " + table + " WHERE rowid % 3 = " + std::to_string(script.Below(3)));
    }
    return true;
}

} // namespace

std::uint8_t Script::Byte() {
    if (bytes_.empty())
        return 0;
    const std::uint8_t first = bytes_.front();
    bytes_ = bytes_.subspan(1);
    return first;
}

QByteArray Script::Text() {
    const std::size_t length = std::min<std::size_t>(Byte(), bytes_.size());
    const QByteArray text(reinterpret_cast<const char*>(bytes_.data()),
                          static_cast<qsizetype>(length));
    bytes_ = bytes_.subspan(length);
    return text;
}

QByteArray BaseSurvey(bool loose) {
    QByteArray sql = "PRAGMA page_size = 512;" + BlankSurveySql();
    if (loose)
        sql.replace(") STRICT;", ");").replace(" NOT NULL", "");
    const QString path = Path("base.plxs");
    QFile::remove(path);
    sqlite3* file = nullptr;
    Require(sqlite3_open(path.toUtf8().constData(), &file) == SQLITE_OK &&
                sqlite3_exec(file, sql.constData(), nullptr, nullptr, nullptr) == SQLITE_OK &&
                sqlite3_exec(file, EveryKind, nullptr, nullptr, nullptr) == SQLITE_OK,
            "a survey can be made");
    sqlite3_close(file);
    return ReadFile(path);
}

bool Damage(const QString& path, Script& script) {
    // The steps come first, then the bytes to write over the file.
    const std::size_t steps = script.Below(16);
    sqlite3* file = nullptr;
    sqlite3_open(path.toUtf8().constData(), &file);
    sqlite3_limit(file, SQLITE_LIMIT_LENGTH, 1 << 20);
    Run(file, "PRAGMA synchronous = OFF");
    Run(file, "BEGIN");
    bool rowsOnly = true;
    for (std::size_t i = 0; i < steps && !script.AtEnd(); ++i)
        rowsOnly = Step(file, script) && rowsOnly;
    Run(file, "COMMIT");
    sqlite3_close(file);
    if (script.AtEnd())
        return rowsOnly;

    QByteArray bytes = ReadFile(path);
    while (!script.AtEnd()) {
        const std::uint32_t at = script.Word();
        const char value = static_cast<char>(script.Byte());
        bytes[static_cast<qsizetype>(at) % bytes.size()] = value;
    }
    WriteFile(path, bytes);
    return false;
}

} // namespace pollarix::fuzz
