// Opening, saving and closing, with the file as the judge.
#include "document/SurveyDocument.h"

#include <QDir>

#include <gtest/gtest.h>

#include "platform/base/Failure.h"
#include "platform/files/Files.h"
#include "support/FakeViews.h"
#include "support/SurveyFiles.h"

using namespace pollarix;
using namespace pollarix::test;

namespace {

class SurveyDocumentTest : public testing::Test {
  protected:
    TestState program;
    ApplicationState& state = program.state;
    QueuedDialogs& dialogs = program.dialogs;
    FakeViews views;
    SurveyDocument document{state, views};

    clsSurvey& Survey() { return state.CurrentSurvey; }

    QString OpenBlank(const QString& name = "survey.plxs") {
        const QString path = program.BlankSurvey(name);
        document.DoOpen(path, true, 1);
        EXPECT_EQ(dialogs.TakeTexts(), QStringList());
        return path;
    }

    std::shared_ptr<clsQ> Add(std::int32_t kind, const QString& text) {
        return Survey().GetQ(Survey().AddQ(text, kind, -1, 2));
    }

    QStringList Questions(const QString& path) {
        return SqlRows(path,
                       "SELECT id, question, questionno, qtype, pos, Deleteme FROM question "
                       "ORDER BY pos",
                       6);
    }

    QStringList Responses(const QString& path) {
        return SqlRows(path,
                       "SELECT id, questionid, name, pos, responseMatrixGroupID, "
                       "LogicJumpToQuestionID, Deleteme FROM response ORDER BY questionid, pos",
                       7);
    }
};

} // namespace

TEST_F(SurveyDocumentTest, ASaveWritesInListOrderSweepsAndReadsBack) {
    const QString path = OpenBlank();
    Add(0, "What's new?");
    auto radio = Add(2, "Which?");
    auto text = Add(4, "Read this");
    auto matrix = Add(3, "Rate");
    radio->AddResponse("It's \\ fine", -1, -1, "");
    radio->AddResponse("Καλημέρα العربية 日本 😀", -1, -1, matrix->Key); // forward, to a new one
    matrix->AddResponse("row", -1, -1, "");
    matrix->ResponseMatrixGroupID = 3;
    text->AddResponse("kept in memory only", -1, -1, "");
    views.selected = radio->Key;
    document.DoSave();
    const QStringList saved = {"1|What's new?|1|0|1|0", "2|Which?|2|2|2|0", "3|Read this||4|3|0",
                               "4|Rate|3|3|4|0"};
    EXPECT_EQ(Questions(path), saved);
    const QStringList responses = {"1|2|It's \\ fine|1|2|NULL|0",
                                   "2|2|Καλημέρα العربية 日本 😀|2|2|4|0", "3|4|row|1|3|NULL|0"};
    EXPECT_EQ(Responses(path), responses);
    EXPECT_EQ(views.selected, Survey().GetQIndex(2)->Key); // the same question under a new key
    EXPECT_NE(views.selected, radio->Key);
    EXPECT_EQ(Survey().GetQIndex(2)->GetResponse(2)->LogicJumpToQuestionKey,
              Survey().GetQIndex(4)->Key);
    EXPECT_EQ(Survey().GetQIndex(4)->ResponseMatrixGroupID, 3);
    EXPECT_EQ(Survey().GetQIndex(3)->ResponsesCount, 0);

    // The second save updates the same rows and changes nothing.
    document.DoSave();
    EXPECT_EQ(Questions(path), saved);
    EXPECT_EQ(Responses(path), responses);

    // A change to a kind without responses sweeps them; ids are never used again.
    Survey().GetQIndex(2)->qType = 0;
    Survey().DeleteQ(Survey().GetQIndex(4)->Key);
    document.DoSave();
    Survey().GetQIndex(2)->qType = 2;
    Survey().GetQIndex(2)->AddResponse("again", -1, -1, "");
    Add(0, "fifth");
    document.DoSave();
    EXPECT_EQ(Responses(path), QStringList("4|2|again|1|1|NULL|0"));
    EXPECT_EQ(Questions(path).last(), "5|fifth|3|0|4|0");
}

TEST_F(SurveyDocumentTest, ADeadJumpInheritsWhatTheUpdateBeforeWorkedOut) {
    const QString path = OpenBlank();
    auto target = Add(0, "target");
    auto radio = Add(2, "radio");
    auto check = Add(1, "check");
    for (const char* name : {"a", "b"})
        radio->AddResponse(name, -1, -1, "");
    check->AddResponse("c", -1, -1, "DEAD"); // a new row: the column stays Null
    document.DoSave();
    EXPECT_EQ(SqlRows(path, "SELECT LogicJumpToQuestionID FROM response ORDER BY id", 1),
              QStringList({"NULL", "NULL", "NULL"}));

    // The variable starts at 0, lives across questions, and only an update sets it.
    const auto jumps = [&](const QString& a, const QString& b, const QString& c) {
        Survey().GetQIndex(2)->GetResponse(1)->LogicJumpToQuestionKey = a;
        Survey().GetQIndex(2)->GetResponse(2)->LogicJumpToQuestionKey = b;
        Survey().GetQIndex(3)->GetResponse(1)->LogicJumpToQuestionKey = c;
        document.DoSave();
        return SqlRows(path, "SELECT LogicJumpToQuestionID FROM response ORDER BY id", 1).join(' ');
    };
    EXPECT_EQ(jumps("DEAD", "", "DEAD"), "0 NULL NULL");
    EXPECT_EQ(jumps("DEAD", Survey().GetQIndex(1)->Key, "DEAD"), "0 1 1");
    // A jump to a question that is not in the file keeps its number but has no key.
    RunSql(path, {"UPDATE response SET LogicJumpToQuestionID = 99 WHERE id = 1"});
    document.DoClose();
    document.DoOpen(path, true, 1);
    EXPECT_EQ(Survey().GetQIndex(2)->GetResponse(1)->LogicJumpToQuestionID, 99);
    EXPECT_EQ(Survey().GetQIndex(2)->GetResponse(1)->LogicJumpToQuestionKey, "");
}

TEST_F(SurveyDocumentTest, OpeningFollowsTheFile) {
    const QString path = program.BlankSurvey("survey.plxs");
    RunSql(path, {"INSERT INTO question (question, questionno, qtype, pos) VALUES "
                  "('{\\rtf1 one\\par two}', NULL, 0, 2), ('text', '5', 4, 1), (NULL, '2', 1, 3), "
                  "('m', '3', 3, 4)",
                  "INSERT INTO response (questionid, name, pos, responseMatrixGroupID) VALUES "
                  "(4, NULL, 2, 5), (4, 'first', 1, 4)"});
    document.DoOpen(path, true, 3);
    EXPECT_EQ(views.Texts(), QStringList({"Survey", "text", "one\r\ntwo", "2. ", "3. m"}));
    EXPECT_EQ(views.selected, Survey().GetQIndex(3)->Key);
    EXPECT_EQ(views.calls, QStringList({"scales", "summary", "respondents"}));
    EXPECT_EQ(views.clicks.size(), 5); // each question as it is read, then the one selected
    EXPECT_EQ(Survey().GetQIndex(3)->ResponseMatrixGroupID, 1);
    EXPECT_EQ(Survey().GetQIndex(4)->ResponseMatrixGroupID, 4);
    EXPECT_EQ(Survey().GetQIndex(4)->GetResponse(1)->Text, "first");
    EXPECT_EQ(Survey().GetQIndex(4)->GetResponse(2)->Text, "");
    EXPECT_EQ(views.path, path);

    const QString key = Survey().GetQIndex(1)->Key;
    document.DoClose();
    EXPECT_EQ(state.CurrentFilename, "");
    EXPECT_EQ(views.path, "");
    EXPECT_EQ(Survey().QCount, 4); // the model stays until the next opening
    EXPECT_EQ(views.clicks.last(), RootKey);
    document.DoClose(); // nothing open: no failure
    document.DoOpen(path, true, 99);
    EXPECT_EQ(views.selected, Survey().GetQIndex(4)->Key); // where the loading left it
    EXPECT_NE(Survey().GetQIndex(1)->Key, key);
}

TEST_F(SurveyDocumentTest, BadFilesAreNamedAndTheProgramGoesOn) {
    WriteWholeFile(program.Path("empty.plxs"), {});
    const auto damaged = [&](const QString& name, std::initializer_list<const char*> sql) {
        const QString path = program.BlankSurvey(name);
        RunSql(path, sql);
        return path;
    };
    const QString truncated =
        damaged("truncated.plxs", {"INSERT INTO question (question, qtype, "
                                   "pos) VALUES (hex(randomblob(25000)), 0, 1)"});
    QFile(truncated).resize(6000);
    QDir().mkdir(program.Path("directory.plxs"));

    const QStringList bad = {
        program.Path("missing.plxs"),
        program.Path("directory.plxs"),
        program.Path("empty.plxs"),
        truncated,
        damaged("noversion.plxs", {"DROP TABLE version"}),
        damaged("noquestion.plxs", {"DROP TABLE question"}),
    };
    for (const QString& path : bad) {
        const bool existed = QFile::exists(path);
        document.DoOpen(path, true, 1);
        const QStringList shown = dialogs.TakeTexts();
        ASSERT_EQ(shown.size(), 1) << path.toStdString();
        EXPECT_TRUE(shown[0].startsWith("Unable to open " + path + ". ")) << shown[0].toStdString();
        EXPECT_EQ(state.CurrentFilename, path);
        EXPECT_EQ(QFile::exists(path), existed) << "no file is made in its place";
        document.DoClose();
    }
    OpenBlank("good.plxs");
}

// Counters and ids have 16 bits; what goes beyond is a failure and never a wrong number.
TEST_F(SurveyDocumentTest, AsManyQuestionsAndResponsesAs16BitsCount) {
    const QString path = program.BlankSurvey("long.plxs");
    RunSql(path, {"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 32767) "
                  "INSERT INTO question (questionno, qtype, pos) SELECT i, i = 7, i FROM n",
                  "INSERT INTO response (questionid, name, pos, responseMatrixGroupID, "
                  "LogicJumpToQuestionID) SELECT 7, questionno, pos, 1, 32767 FROM question"});
    document.DoOpen(path, true, 32767);
    ASSERT_EQ(dialogs.TakeTexts(), QStringList());
    ASSERT_EQ(Survey().QCount, 32767);
    const auto last = Survey().GetQIndex(32767);
    EXPECT_EQ(views.selected, last->Key);
    EXPECT_EQ(Survey().GetQIndex(7)->GetResponse(32767)->LogicJumpToQuestionKey, last->Key);
    document.DoSave();
    EXPECT_EQ(dialogs.TakeTexts(), QStringList());
    EXPECT_EQ(SqlRows(path, "SELECT count(*), max(pos) FROM question", 2),
              QStringList("32767|32767"));

    document.DoClose();
    RunSql(path, {"UPDATE question SET id = 0 WHERE id = 1",
                  "INSERT INTO question (id, qtype, pos) VALUES (1, 0, 40000)"});
    document.DoOpen(path, true, 1);
    EXPECT_EQ(dialogs.TakeTexts(), QStringList("Unable to open " + path + ". Overflow. 6"));
}

TEST_F(SurveyDocumentTest, AnotherVersionIsAWarningOnly) {
    const QString path = program.BlankSurvey("old.plxs");
    RunSql(path,
           {"UPDATE version SET version = 1.4",
            "INSERT INTO question (question, questionno, qtype, pos) VALUES ('q', '1', 0, 1)"});
    document.DoOpen(path, true, 1);
    EXPECT_EQ(dialogs.shown.at(0).icon, MsgIcon::Critical);
    EXPECT_EQ(dialogs.TakeTexts(),
              QStringList("Unable to open survey file - expecting version 1.7, "
                          "but found version 1.4"));
    EXPECT_EQ(Survey().QCount, 1);
    document.DoClose();
    RunSql(path, {"DELETE FROM version"});
    document.DoOpen(path, true, 1);
    EXPECT_EQ(dialogs.TakeTexts(), QStringList()); // no row, no check
}

TEST_F(SurveyDocumentTest, SaveAsCopiesTheFileAndWritesTheModelOverIt) {
    const QString old = OpenBlank("HC3.tmp");
    EXPECT_EQ(views.path, ""); // an unnamed survey shows none
    RunSql(old, {"INSERT INTO respondent (source) VALUES ('Web')"});
    Add(0, "hello");
    state.MarkFileChanged();
    const QString named = program.Path("named.plxs");

    dialogs.fileNames = {{""}}; // cancelled
    document.mnuFileSave_Click();
    EXPECT_EQ(state.CurrentFilename, old);
    EXPECT_TRUE(state.FileChanged);
    EXPECT_TRUE(state.SurveyConnection.IsOpen());

    dialogs.fileNames = {{named}};
    document.mnuFileSave_Click();
    EXPECT_EQ(dialogs.fileRequests.back().fileName, "");
    EXPECT_EQ(state.CurrentFilename, named);
    EXPECT_EQ(views.path, named);
    EXPECT_EQ(Questions(named), QStringList("1|hello|1|0|1|0"));
    EXPECT_EQ(SqlRows(named, "SELECT source FROM respondent", 1), QStringList("Web"));
    EXPECT_EQ(Questions(old), QStringList()); // left as it was, and left behind
    EXPECT_EQ(views.selected, Survey().GetQIndex(1)->Key);

    // Onto the open file itself, and to where nothing can be written: the old state comes back.
    Survey().GetQIndex(1)->Question = "changed";
    for (const QString& target :
         {named, program.Path("no/such/directory.plxs"), program.Path("")}) {
        dialogs.fileNames = {{target}};
        document.mnuFileSaveAs_Click();
        EXPECT_EQ(dialogs.fileRequests.back().fileName, named);
        const QStringList shown = dialogs.TakeTexts();
        ASSERT_EQ(shown.size(), 1);
        EXPECT_TRUE(shown[0].startsWith("Unable to write to file " + target + " "));
        EXPECT_EQ(state.CurrentFilename, named);
        EXPECT_TRUE(state.SurveyConnection.IsOpen());
        EXPECT_EQ(Questions(named), QStringList("1|hello|1|0|1|0"));
    }
    document.mnuFileSave_Click();
    EXPECT_EQ(Questions(named), QStringList("1|changed|1|0|1|0"));
}

TEST_F(SurveyDocumentTest, ASaveAsThatFailsAfterTheCopyGoesOnWithTheOldFile) {
    const QString old = OpenBlank();
    const QString copy = program.Path("copy.plxs");
    // The next question's id is beyond what the model holds.
    RunSql(old, {"INSERT INTO sqlite_sequence (name, seq) VALUES ('question', 40000)"});
    Add(0, "hello");
    state.MarkFileChanged();
    dialogs.fileNames = {{copy}};
    EXPECT_THROW(document.mnuFileSaveAs_Click(), Failure); // the connection is open
    EXPECT_TRUE(dialogs.TakeTexts().value(0).startsWith("Unable to write to file " + copy));
    EXPECT_EQ(state.CurrentFilename, old);
    EXPECT_EQ(state.SurveyConnection.Path(), old);
    EXPECT_EQ(Survey().QCount, 1);

    // A plain save that fails stops what was asked for as well.
    views.editor = "hello";
    dialogs.answers = {MsgAnswer::Yes};
    EXPECT_THROW(document.AskToSave(Qt::CaseSensitive), Failure);
    dialogs.TakeTexts();
}

TEST_F(SurveyDocumentTest, TheSaveQuestionIsAskedOnceAndObeyed) {
    OpenBlank("HC4.tmp");
    EXPECT_TRUE(document.AskToSave(Qt::CaseSensitive)); // nothing changed, nothing asked
    state.MarkFileChanged();
    Add(0, "");
    EXPECT_TRUE(document.AskToSave(Qt::CaseSensitive)); // nor for one question without a text
    Add(0, "");
    dialogs.answers = {MsgAnswer::Cancel, MsgAnswer::No, MsgAnswer::Yes, MsgAnswer::Yes};
    EXPECT_FALSE(document.AskToSave(Qt::CaseSensitive));
    EXPECT_TRUE(document.AskToSave(Qt::CaseSensitive));
    // Neither a cancelled Save As nor one that cannot write stops what was asked for.
    dialogs.fileNames = {{""}, {program.Path("no/such/directory.plxs")}};
    EXPECT_TRUE(document.AskToSave(Qt::CaseSensitive));
    EXPECT_EQ(dialogs.TakeTexts(), QStringList(3, "Do you want to save the changes you made?"));
    EXPECT_TRUE(document.AskToSave(Qt::CaseSensitive));
    EXPECT_TRUE(dialogs.TakeTexts().value(1).startsWith("Unable to write to file "));
    EXPECT_TRUE(state.FileChanged);
}

TEST_F(SurveyDocumentTest, WhatAFailedSaveHasWrittenTheNextOneUpdates) {
    const QString path = OpenBlank();
    Add(0, "first");
    Add(0, "second");
    const auto third = Add(0, "third");
    const auto radio = Add(2, "fourth");
    radio->AddResponse("a", -1, -1, "");
    radio->AddResponse("a", -1, -1, "");
    RunSql(path, {"CREATE UNIQUE INDEX once ON response (name) WHERE deleteme = 0"});
    EXPECT_THROW(document.DoSave(), Failure);
    const QStringList written = SqlRows(path, "SELECT id, question FROM question ORDER BY id", 2);
    EXPECT_EQ(written.size(), 4);
    EXPECT_EQ(third->DatabaseID, 3);
    radio->GetResponse(2)->Text = "b";
    document.DoSave();
    EXPECT_EQ(SqlRows(path, "SELECT id, question FROM question ORDER BY id", 2), written);
}
