// Survey files made to harm, opened in the real main window and then used for everything there is.
#include "shell/MainWindow.h"
#include "support/FakeViews.h"
#include "support/NumberOf.h"
#include "web/SurveyXmlWriter.h"

using namespace pollarix;
using namespace pollarix::test;

namespace {

// A small whole survey: a radio question whose answers lead around in a circle, an open ended one,
// a matrix, a check question, an instruction text and two respondents.
constexpr const char* Whole[] = {
    "INSERT INTO question (id, question, questionno, qtype, pos) VALUES (1, 'Again?', '1', 2, 1), "
    "(2, 'Why?', '2', 0, 2), (3, 'Rate', '3', 3, 3), (4, 'Which?', '4', 1, 4), (5, 'Bye', '', 4, "
    "5)",
    "INSERT INTO response (id, questionid, name, pos, responseMatrixGroupID, LogicJumpToQuestionID)"
    " VALUES (1, 1, 'yes', 1, 1, NULL), (2, 1, 'no', 2, 1, 3), (3, 3, 'food', 1, 4, NULL), "
    "(4, 3, 'staff', 2, 4, NULL), (5, 4, 'this', 1, 1, NULL), (6, 4, 'that', 2, 1, NULL)",
    "INSERT INTO respondent (id, source) VALUES (1, 'Manual Entry'), (2, 'Web')",
    "INSERT INTO respondent_responses (RespondentID, QuestionID, ResponseID, SimpleResponse, "
    "ResponseMatrixID) VALUES (1, 1, 2, '', NULL), (1, 2, 1, 'so', NULL), (1, 3, 3, '', 11), "
    "(2, 4, 5, '', NULL), (2, 4, 6, '', NULL)"};

class HostileFiles : public MainWindow {
  protected:
    int pages = 0; // that manual entry showed, where the user answers each

    HostileFiles() {
        user.tasks["frmManualResponse"] = [this](QWidget& entry) {
            const auto press = [&](const char* button) {
                auto* const found = entry.findChild<QAbstractButton*>(button);
                if (found && found->isVisible())
                    QTest::mouseClick(found, Qt::LeftButton, {}, {8, found->height() / 2});
            };
            for (pages = 0; pages < 30 && entry.isVisible(); ++pages) {
                press("optDCRadio(0)");
                press("cmdDCAnswersNext");
            }
        };
        Start();
    }

    QString MakeFile(const char* name, const std::vector<const char*>& harm) {
        const QString path = program.BlankSurvey(name);
        Connection file;
        file.Open(path, Connection::Mode::ReadWriteTrusted);
        WriteBatch batch(file);
        for (const char* sql : Whole)
            file.Run(sql);
        for (const char* sql : harm)
            file.Run(sql);
        batch.Commit();
        return path;
    }

    // What is shown on opening.
    QStringList SaidOf(const QString& path) {
        dialogs.TakeTexts();
        Open(path);
        return dialogs.TakeTexts();
    }

    // The design is saved, a respondent entered, everything counted, exported and published.
    void UseEverything() {
        // With no survey open, Save asks for a name; what was not read whole is never saved.
        dialogs.fileNames = {{""}};
        Menu("mnuFileSave");
        dialogs.answers = {MsgAnswer::No};
        Menu("mnuViewDataCollection");
        dialogs.answers.clear();
        Press("cmdCreateResponse");
        Menu("mnuViewAnalyse");
        Menu("mnuAnalyseTotRespondents");
        for (const auto& [menu, name, form] :
             {std::tuple("mnuFileExport", "export.csv", 0),
              std::tuple("mnuFileExport", "table.csv", 1),
              std::tuple("mnuFileExport", "answers.sav", 2),
              std::tuple("mnuFileExport", "answers.dta", 3),
              std::tuple("mnuFileExport", "answers.xlsx", 4),
              std::tuple("mnuFileExport", "answers.R", 5),
              std::tuple("mnuFileExport", "codebook.html", 6),
              std::tuple("mnuAnalyseDetail", "detail.rtf", 0),
              std::tuple("mnuDataCollectionPaperSurvey", "paper.rtf", 0)}) {
            dialogs.fileNames = {{program.Path(name), form}};
            dialogs.answers = {MsgAnswer::No};
            Menu(menu);
        }
        dialogs.answers.clear();
        FakeViews views;
        views.selected = RootKey;
        if (const int number = NumberOf([&] { DoSaveXML(program.state, views); }))
            failures.push_back(number);
        Menu("mnuViewDesign");
    }
};

// Everything that could be executed by mistake, or end the text it is put into.
constexpr const char* Sql =
    "'''; DROP TABLE question; UPDATE respondent SET source = ''gone''; --\"; <r></r>&amp; %1 %n'";

} // namespace

TEST_F(HostileFiles, NoTextIsEverTakenForSql) {
    const QString path = MakeFile("sql.plxs", {});
    for (const char* column :
         {"question SET question", "question SET questionno", "response SET name",
          "responsematrixgroup SET name", "responsematrix SET name", "respondent SET source",
          "respondent SET submitteddate", "respondent_responses SET SimpleResponse"})
        RunSql(path, {(QString("UPDATE %1 = ").arg(column) + Sql).toUtf8()});
    const char* const all =
        "SELECT 'q', id, question, questionno, qtype FROM question UNION ALL "
        "SELECT 'r', id, name, questionid, LogicJumpToQuestionID FROM response UNION ALL "
        "SELECT 'p', id, name, ResponseMatrixGroupID, pos FROM responsematrix UNION ALL "
        "SELECT 'a', id, SimpleResponse, QuestionID, ResponseID FROM respondent_responses "
        "WHERE RespondentID < 3 UNION ALL "
        "SELECT 'w', id, source, submitteddate, 0 FROM respondent WHERE id < 3";
    const QStringList before = SqlRows(path, all, 5);
    EXPECT_EQ(SaidOf(path), QStringList());
    UseEverything();
    EXPECT_EQ(pages, 5); // and the survey is completed
    EXPECT_EQ(failures, std::vector<int>());
    EXPECT_EQ(SqlRows(path, all, 5), before);
    EXPECT_EQ(SqlRows(path, "SELECT count(*) FROM respondent", 1), QStringList("3"));
    EXPECT_EQ(SqlRows(path, "SELECT count(*), sum(type = 'table') FROM sqlite_schema", 2),
              SqlRows(DataFile("blank.mdb"),
                      "SELECT count(*), sum(type = 'table') FROM sqlite_schema", 2));
}

struct Harm {
    const char* name;
    std::vector<const char*> sql;
    const char* says = ""; // what opening ends in, "" for a file that opens
    int pages = 5;         // of a new respondent; 30 is as far as the test goes
    friend void PrintTo(const Harm& harm, std::ostream* out) { *out << harm.name; }
};

class HostileFile : public HostileFiles, public testing::WithParamInterface<Harm> {};

TEST_P(HostileFile, IsRefusedWithAMessageOrUsedLikeAnyOther) {
    const Harm& harm = GetParam();
    const QString path = MakeFile("hostile.plxs", harm.sql);
    const QStringList respondents =
        SqlRows(path, "SELECT id, source FROM respondent WHERE id < 3", 2);
    const QString said = SaidOf(path).join('|');
    if (*harm.says) {
        EXPECT_TRUE(said.startsWith("Unable to open " + path + ". ")) << said.toStdString();
        EXPECT_TRUE(said.contains(harm.says)) << said.toStdString();
    } else {
        EXPECT_EQ(said, "");
    }
    UseEverything();
    EXPECT_TRUE(*harm.says || pages == harm.pages) << pages;
    EXPECT_EQ(SqlRows(path, "SELECT id, source FROM respondent WHERE id < 3", 2), respondents);

    // The program goes on as if nothing had been.
    program.state.MarkFileUnchanged();
    failures.clear();
    EXPECT_EQ(SaidOf(MakeFile("good.plxs", {})), QStringList());
    UseEverything();
    EXPECT_EQ(pages, 5);
    EXPECT_EQ(failures, std::vector<int>());
}

INSTANTIATE_TEST_SUITE_P(
    , HostileFile,
    testing::Values(
        Harm{"Trigger",
             {"CREATE TRIGGER harm AFTER UPDATE ON question BEGIN UPDATE respondent SET source = "
              "'gone'; END"},
             "views or triggers"},
        Harm{"ViewForATable",
             {"ALTER TABLE question RENAME TO hidden",
              "CREATE VIEW question AS SELECT * FROM hidden"},
             "views or triggers"},
        Harm{"ComputedColumn",
             {"ALTER TABLE question RENAME TO hidden",
              "CREATE TABLE question (id INTEGER PRIMARY KEY, pos, qtype, questionno, Deleteme, "
              "question AS (printf('%5000000d', id)))",
              "INSERT INTO question (pos, qtype) SELECT value, 0 FROM "
              "json_each('[1,2,3]')"},
             "computed columns"},
        Harm{"JumpBeyond16Bits",
             {"UPDATE response SET LogicJumpToQuestionID = 9223372036854775807 WHERE id = 2"},
             "Overflow"},
        Harm{"IdsAtTheirLimits",
             {"UPDATE question SET id = 32767 WHERE id = 5",
              "UPDATE question SET id = -32768 WHERE id = 2",
              "UPDATE response SET id = 32767, LogicJumpToQuestionID = 32767 WHERE id = 1",
              "UPDATE response SET id = -32768, LogicJumpToQuestionID = -32768 WHERE id = 2",
              "UPDATE respondent_responses SET id = 9223372036854775800 WHERE id = 5",
              "UPDATE question SET pos = pos + 9223372036854775800 WHERE pos = 5"},
             "",
             2},
        // The last respondent there can be: none is added.
        Harm{"RespondentIdAtItsLimit",
             {"INSERT INTO respondent (id, source) VALUES (9223372036854775807, 'Web')"},
             "",
             0},
        Harm{"JumpsInACircle",
             {"UPDATE question SET qtype = 2 WHERE id = 4",
              "UPDATE response SET LogicJumpToQuestionID = CASE questionid WHEN 4 THEN 1 ELSE 4 "
              "END"},
             "",
             30},
        Harm{"ResponsesOfNoQuestion",
             {"UPDATE response SET questionid = 77 WHERE questionid = 4",
              "INSERT INTO respondent_responses (RespondentID, QuestionID, ResponseID) VALUES "
              "(77, 77, 77), (1, 77, 1), (2, 1, 77)"}},
        Harm{"NullEverywhere",
             {"UPDATE question SET question = NULL, questionno = NULL",
              "UPDATE response SET name = NULL, responseMatrixGroupID = 1 WHERE questionid <> 3",
              "UPDATE response SET name = NULL WHERE questionid = 3",
              "UPDATE responsematrix SET name = NULL", "UPDATE responsematrixgroup SET name = NULL",
              "UPDATE respondent_responses SET ResponseID = NULL, SimpleResponse = NULL, "
              "ResponseMatrixID = NULL"}},
        Harm{"DeepGroups",
             {"UPDATE question SET question = '{\\rtf1 ' || replace(hex(zeroblob(100000)), '00', "
              "'{\\b') || 'deep' WHERE id = 2",
              "UPDATE question SET question = '{\\rtf1 ' || replace(hex(zeroblob(100000)), '00', "
              "'{\\*\\x{\\pict') || 'deep' WHERE id = 4"}},
        Harm{"TextBeyondItsBound",
             {"UPDATE question SET question = CAST(zeroblob(70000000) AS TEXT) WHERE id = 1"},
             "string or blob too big"},
        Harm{"LargeMatrix",
             {"WITH RECURSIVE n(i) AS (SELECT 10 UNION ALL SELECT i + 1 FROM n WHERE i < 200) "
              "INSERT INTO response (id, questionid, name, pos, responseMatrixGroupID) "
              "SELECT i, 3, 'the same', i, 4 FROM n",
              "WITH RECURSIVE n(i) AS (SELECT 10 UNION ALL SELECT i + 1 FROM n WHERE i < 200) "
              "INSERT INTO responsematrix (ResponseMatrixGroupID, pos, name) SELECT 4, i, 'p' "
              "FROM n"}}),
    [](const auto& info) { return std::string(info.param.name); });
