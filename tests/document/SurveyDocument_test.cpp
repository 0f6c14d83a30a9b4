// Opening, saving and closing, with the file as the judge. What a save makes of a design, the
// random edits see.
#include "document/SurveyDocument.h"

#include <QDir>
#include <QEventLoop>
#include <QTimer>

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "document/SurveyBatch.h"
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
    QString path_; // as the status bar shows it
    int refreshes = 0;

    SurveyDocumentTest() {
        document.ShowPath = [this](const QString& text) { path_ = text; };
        document.Opened = [this] { ++refreshes; };
    }

    clsSurvey& Survey() { return state.CurrentSurvey; }
    bool MayWrite() { return bool(SurveyBatch(state)); }

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
    EXPECT_EQ(refreshes, 1);
    EXPECT_EQ(views.clicks, QStringList(*views.selected));
    EXPECT_EQ(Survey().GetQIndex(3)->ResponseMatrixGroupID, 1);
    EXPECT_EQ(Survey().GetQIndex(4)->ResponseMatrixGroupID, 4);
    EXPECT_EQ(Survey().GetQIndex(4)->GetResponse(1)->Text, "first");
    EXPECT_EQ(Survey().GetQIndex(4)->GetResponse(2)->Text, "");
    EXPECT_EQ(path_, path);

    const QString key = Survey().GetQIndex(1)->Key;
    document.DoClose();
    EXPECT_EQ(state.CurrentFilename(), "");
    EXPECT_EQ(path_, "");
    EXPECT_EQ(Survey().QCount(), 4); // the model stays until the next opening
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
        EXPECT_EQ(state.CurrentFilename(), path);
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
    ASSERT_EQ(Survey().QCount(), 32767);
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
    EXPECT_EQ(Survey().QCount(), 1);
    document.DoClose();
    RunSql(path, {"DELETE FROM version"});
    document.DoOpen(path, true, 1);
    EXPECT_EQ(dialogs.TakeTexts(), QStringList()); // no row, no check
}

TEST_F(SurveyDocumentTest, SaveAsCopiesTheFileAndWritesTheModelOverIt) {
    const QString old = OpenBlank("HC3.tmp");
    EXPECT_EQ(path_, ""); // an unnamed survey shows none
    RunSql(old, {"INSERT INTO respondent (source) VALUES ('Web')"});
    Add(0, "hello");
    state.MarkFileChanged();
    const QString named = program.Path("named.plxs");

    dialogs.fileNames = {{""}}; // cancelled
    document.mnuFileSave_Click();
    EXPECT_EQ(state.CurrentFilename(), old);
    EXPECT_TRUE(state.FileChanged());
    EXPECT_TRUE(state.SurveyConnection.IsOpen());

    dialogs.fileNames = {{named}};
    document.mnuFileSave_Click();
    EXPECT_EQ(dialogs.fileRequests.back().fileName, "");
    EXPECT_EQ(state.CurrentFilename(), named);
    EXPECT_EQ(path_, named);
    EXPECT_EQ(Questions(named), QStringList("1|hello|1|0|1|0"));
    EXPECT_EQ(SqlRows(named, "SELECT source FROM respondent", 1), QStringList("Web"));
    EXPECT_EQ(Questions(old), QStringList()); // left as it was, and left behind
    EXPECT_EQ(views.selected, Survey().GetQIndex(1)->Key);

    // Onto the open file itself, and to where nothing can be written: all is as it was.
    Survey().GetQIndex(1)->Question = "changed";
    for (const QString& target :
         {named, program.Path("no/such/directory.plxs"), program.Path("")}) {
        dialogs.fileNames = {{target}};
        document.mnuFileSaveAs_Click();
        EXPECT_EQ(dialogs.fileRequests.back().fileName, named);
        const QStringList shown = dialogs.TakeTexts();
        ASSERT_EQ(shown.size(), 1);
        EXPECT_TRUE(shown[0].startsWith("Unable to write to file " + target + " "));
        EXPECT_EQ(state.CurrentFilename(), named);
        EXPECT_TRUE(state.SurveyConnection.IsOpen());
        EXPECT_EQ(Questions(named), QStringList("1|hello|1|0|1|0"));
    }
    document.mnuFileSave_Click();
    EXPECT_EQ(Questions(named), QStringList("1|changed|1|0|1|0"));
}

// Nothing that fails on the way to a file changes the survey, and so nothing that comes after it.
TEST_F(SurveyDocumentTest, ASaveThatFailsChangesNothing) {
    QString path;
    const QString copy = program.Path("copy.plxs");
    const auto lock = [&](const QString& file) {
        auto other = std::make_unique<Connection>();
        other->Open(file);
        other->Execute("BEGIN EXCLUSIVE").Close();
        return other;
    };
    std::unique_ptr<Connection> locker;
    const struct {
        const char* name;
        std::function<void()> fault, repair;
        bool saveAs;
    } faults[] = {
        {"an id beyond what the model holds",
         [&] { RunSql(path, {"UPDATE sqlite_sequence SET seq = 40000 WHERE name = 'question'"}); },
         [&] { RunSql(path, {"UPDATE sqlite_sequence SET seq = 2 WHERE name = 'question'"}); },
         true},
        {"a locked file", [&] { locker = lock(path); }, [&] { locker.reset(); }, false},
        {"a locked target",
         [&] {
             program.BlankSurvey("copy.plxs");
             locker = lock(copy);
             QFile(copy + "-journal").open(QIODevice::WriteOnly);
         },
         [&] {
             locker.reset();
             QFile::remove(copy);
             QFile::remove(copy + "-journal");
         },
         true},
        {"a text that no file takes",
         [&] { Survey().GetQIndex(1)->Question = QString(Connection::LongestText - 100, 'x'); },
         [&] { Survey().GetQIndex(1)->Question = "first"; }, true},
    };
    for (const auto& fault : faults) {
        SCOPED_TRACE(fault.name);
        path = OpenBlank(QString(fault.name).replace(' ', '-') + ".plxs");
        Add(0, "first");
        const auto radio = Add(2, "second");
        radio->AddResponse("a", -1, -1, "");
        radio->AddResponse("b", -1, -1, radio->Key);
        ASSERT_TRUE(document.DoSave());
        const QStringList questions = Questions(path), responses = Responses(path);
        // New ones, a response twice, and another order.
        const auto third = Add(0, "third");
        const auto fourth = Add(2, "fourth");
        fourth->AddResponse("twice", -1, -1, "");
        fourth->AddResponse("twice", -1, -1, third->Key);
        Survey().SwapQ(Survey().GetQIndex(1)->Key, third->Key);
        state.MarkFileChanged();
        fault.fault();
        const SurveySnapshot before = SurveySnapshot::Take(Survey());
        if (QString(fault.name) != "a locked target") {
            EXPECT_THROW(document.DoSave(), Failure);
        }
        if (fault.saveAs) {
            dialogs.fileNames = {{copy}};
            EXPECT_FALSE(document.mnuFileSaveAs_Click());
            EXPECT_TRUE(dialogs.TakeTexts().value(0).startsWith("Unable to write to file " + copy));
        }
        EXPECT_EQ(SurveySnapshot::Take(Survey()), before);
        EXPECT_TRUE(state.FileChanged());
        EXPECT_EQ(state.CurrentFilename(), path);
        EXPECT_EQ(state.SurveyConnection.Path(), path);
        fault.repair();
        EXPECT_EQ(Questions(path), questions);
        EXPECT_EQ(Responses(path), responses);
        EXPECT_EQ(QDir(program.directory.path()).entryList({"*.tmp*", "copy*"}), QStringList());

        // A reorder, then the save: every question is its own.
        Survey().SwapQ(fourth->Key, third->Key);
        QStringList texts;
        for (std::int16_t i = 1; i <= Survey().QCount(); ++i)
            texts << Survey().GetQIndex(i)->Question;
        ASSERT_TRUE(document.DoSave());
        EXPECT_EQ(SqlRows(path, "SELECT question FROM question ORDER BY pos", 1), texts);
        EXPECT_FALSE(state.FileChanged());
        document.DoClose();
    }
}

TEST_F(SurveyDocumentTest, ASurveyThatWasNotReadWholeIsNeverWritten) {
    const QString path = program.BlankSurvey("survey.plxs");
    RunSql(path, {"INSERT INTO question (id, question, qtype, pos) VALUES (1, 'a', 0, 1), "
                  "(2, 'b', 2, 2), (40000, 'c', 0, 3)"});
    const QStringList questions = Questions(path);
    document.DoOpen(path, true, 1);
    EXPECT_EQ(dialogs.TakeTexts().size(), 1);
    EXPECT_EQ(views.Texts(), QStringList({"Survey", "a", "b"})); // as far as it got
    state.MarkFileChanged();
    Add(0, "d");
    const QString copy = program.Path("copy.plxs");
    dialogs.answers = {MsgAnswer::Yes};
    EXPECT_FALSE(document.mnuFileSave_Click());
    EXPECT_FALSE(document.mnuFileSaveAs_Click());
    EXPECT_FALSE(document.AskToSave(Qt::CaseSensitive));
    const QString told = path + " was not read whole. Saving would delete the rest of it, so "
                                "nothing was saved or changed.";
    EXPECT_EQ(dialogs.TakeTexts(),
              QStringList({told, told, "Do you want to save the changes you made?", told}));
    EXPECT_EQ(Questions(path), questions);
    EXPECT_EQ(Survey().QCount(), 3);
    EXPECT_TRUE(state.FileChanged());
    EXPECT_TRUE(MayWrite()); // answers do it no harm

    // Nor one that can't be told from another, for a row of no question can't be read.
    document.DoClose();
    const QString strange = program.BlankSurvey("strange.plxs");
    RunSql(strange, {"DROP TABLE response",
                     "CREATE TABLE response (id INTEGER PRIMARY KEY, questionid, name, pos, "
                     "responseMatrixGroupID, LogicJumpToQuestionID, Deleteme)",
                     "INSERT INTO response (questionid, name) VALUES (99, x'00')"});
    document.DoOpen(strange, true, 1);
    EXPECT_EQ(dialogs.TakeTexts(),
              QStringList("Unable to open " + strange + ". Type mismatch. 13"));
    EXPECT_FALSE(document.DoSave());
    EXPECT_FALSE(MayWrite());
    EXPECT_EQ(dialogs.TakeTexts().size(), 2);
}

// With no survey open, what was typed is no dead end.
TEST_F(SurveyDocumentTest, WithoutAFileSaveAsMakesOne) {
    OpenBlank();
    Add(0, "of the survey before");
    document.DoClose();
    const QString letter = program.Path("letter.plxs");
    WriteWholeFile(letter, "This is a letter and no survey.");
    document.DoOpen(letter, true, 1);
    EXPECT_EQ(dialogs.TakeTexts().size(), 1);

    Add(0, "typed");
    state.MarkFileChanged();
    const QString named = program.Path("named.plxs");
    dialogs.fileNames = {{letter}, {named}};
    EXPECT_FALSE(document.mnuFileSave_Click()); // not over what could not be read
    EXPECT_TRUE(dialogs.TakeTexts().value(0).startsWith("Unable to write to file " + letter));
    EXPECT_EQ(QFileInfo(letter).size(), 31);
    EXPECT_TRUE(document.mnuFileSave_Click());
    EXPECT_EQ(SqlRows(named, "SELECT question FROM question", 1), QStringList("typed"));
    EXPECT_EQ(views.Texts(), QStringList({"Survey", "2. typed"}));
    EXPECT_FALSE(document.IsFileChanged());
}

TEST_F(SurveyDocumentTest, SaveAsRescuesASurveyWhoseFileIsGone) {
    const QString path = OpenBlank();
    RunSql(path, {"INSERT INTO respondent (source) VALUES ('Web')"});
    Add(0, "hello");
    state.MarkFileChanged();
    QFile::remove(path);
    EXPECT_THROW(document.DoSave(), Failure);
    dialogs.fileNames = {{path}}; // under the same name
    EXPECT_TRUE(document.mnuFileSaveAs_Click());
    EXPECT_EQ(Questions(path), QStringList("1|hello|1|0|1|0"));
    EXPECT_EQ(SqlRows(path, "SELECT source FROM respondent", 1), QStringList("Web"));
    EXPECT_EQ(dialogs.TakeTexts(), QStringList());
}

// What a crash cut off in a file would be taken for a part of the one in its place.
TEST_F(SurveyDocumentTest, SaveAsOverALinkSettlesTheFileThatItLeadsTo) {
    const QString target = program.Path("target.plxs"), link = program.Path("link.plxs");
    {
        Connection cut;
        cut.Open(program.BlankSurvey("cut.plxs"));
        cut.Execute("PRAGMA cache_size = 5");
        const WriteBatch batch(cut, WriteBatch::OnFailure::TakeBack);
        cut.Run("UPDATE responsematrix SET name = 'half way'");
        for (int i = 0; i < 100; ++i)
            cut.Run(
                "INSERT INTO question (question, qtype, pos) VALUES (hex(zeroblob(2000)), 0, 1)");
        ASSERT_TRUE(QFile::copy(cut.Path(), target));
        ASSERT_TRUE(QFile::copy(cut.Path() + "-journal", target + "-journal"));
    }
    ASSERT_TRUE(QFile::link(target, link));
    OpenBlank();
    Add(0, "ours");
    dialogs.fileNames = {{link}};
    EXPECT_TRUE(document.mnuFileSaveAs_Click());
    EXPECT_EQ(dialogs.TakeTexts(), QStringList());
    EXPECT_FALSE(QFile::exists(target + "-journal"));
    EXPECT_EQ(Questions(target), QStringList("1|ours|1|0|1|0"));
    EXPECT_TRUE(QFileInfo(link).isSymLink());
}

TEST_F(SurveyDocumentTest, ANameThatEndsInTmpGetsTheSuffix) {
    OpenBlank("HC1.tmp");
    Add(0, "hello");
    for (const QString& name : {program.Path("a.tmp"), program.Path("b.TMP")}) {
        dialogs.fileNames = {{name}};
        EXPECT_TRUE(document.mnuFileSaveAs_Click());
        EXPECT_EQ(state.CurrentFilename(), name + ".plxs");
        EXPECT_FALSE(QFile::exists(name));
    }
    // The dialog has not asked about that name.
    dialogs.fileNames = {{program.Path("a.tmp")}};
    dialogs.answers = {MsgAnswer::No};
    EXPECT_FALSE(document.mnuFileSaveAs_Click());
    EXPECT_EQ(dialogs.TakeTexts().size(), 1);
}

// Yes means saved: else what was asked for does not go on.
TEST_F(SurveyDocumentTest, TheSaveQuestionIsAskedOnceAndObeyed) {
    OpenBlank("HC4.tmp");
    EXPECT_TRUE(document.AskToSave(Qt::CaseSensitive)); // nothing changed, nothing asked
    state.MarkFileChanged();
    Add(0, "");
    EXPECT_TRUE(document.AskToSave(Qt::CaseSensitive)); // nor for one question without a text
    Add(0, "");
    dialogs.answers = {MsgAnswer::Cancel, MsgAnswer::No, MsgAnswer::Yes, MsgAnswer::Yes,
                       MsgAnswer::Yes};
    EXPECT_FALSE(document.AskToSave(Qt::CaseSensitive));
    EXPECT_TRUE(document.AskToSave(Qt::CaseSensitive));
    dialogs.fileNames = {
        {""}, {program.Path("no/such/directory.plxs")}, {program.Path("named.plxs")}};
    EXPECT_FALSE(document.AskToSave(Qt::CaseSensitive));
    EXPECT_EQ(dialogs.TakeTexts(), QStringList(3, "Do you want to save the changes you made?"));
    EXPECT_FALSE(document.AskToSave(Qt::CaseSensitive));
    EXPECT_TRUE(dialogs.TakeTexts().value(1).startsWith("Unable to write to file "));
    EXPECT_TRUE(state.FileChanged());
    EXPECT_TRUE(document.AskToSave(Qt::CaseSensitive));
    EXPECT_FALSE(state.FileChanged());
}

// The file is not the one that was opened: nothing is written before the user has chosen.
TEST_F(SurveyDocumentTest, AFileThatSomebodyElseChangedIsNotWrittenOver) {
    const auto design = [](const QString& path) {
        return SqlRows(path, "SELECT id, question FROM question ORDER BY pos", 2);
    };
    const QString foreign = program.BlankSurvey("foreign.plxs");
    RunSql(foreign, {"INSERT INTO question (question, qtype, pos) VALUES ('theirs', 0, 1)",
                     "INSERT INTO respondent (source) VALUES ('theirs')"});
    int number = 0;
    for (const char* way : {"replaced", "overwritten", "patched", "redesigned"}) {
        for (const MsgAnswer answer : {MsgAnswer::Cancel, MsgAnswer::No, MsgAnswer::Yes}) {
            SCOPED_TRACE(testing::Message() << way << ' ' << static_cast<int>(answer));
            const QString path = OpenBlank(QString("survey%1.plxs").arg(++number));
            Add(0, "ours");
            Add(0, "second");
            ASSERT_TRUE(document.DoSave());
            if (number % 3 == 0) // whichever comes last before the file changes
                RunSql(path, {"INSERT INTO respondent (source) VALUES ('ours')"});
            EXPECT_TRUE(MayWrite()); // who only adds answers is welcome
            if (number % 3 != 0)
                RunOwnSql(state, {"INSERT INTO respondent (source) VALUES ('ours')"});
            Survey().GetQIndex(2)->Question = "changed";
            state.MarkFileChanged();
            if (QString(way) == "replaced") {
                QFile::remove(path);
                ASSERT_TRUE(QFile::copy(foreign, path));
            } else if (QString(way) == "overwritten") {
                QFile from(foreign), to(path);
                ASSERT_TRUE(from.open(QIODevice::ReadOnly) && to.open(QIODevice::ReadWrite));
                to.write(from.readAll());
                to.resize(from.size());
            } else if (QString(way) == "patched") {
                // What is tried and taken back is no write of ours that would explain it.
                RequireWritable(state.SurveyConnection);
                QFile file(path);
                ASSERT_TRUE(file.open(QIODevice::ReadWrite));
                const qint64 at = file.readAll().indexOf("second");
                ASSERT_GT(at, 0);
                file.seek(at);
                file.write("SECOND");
            } else {
                RunSql(path, {"DELETE FROM question WHERE id = 2",
                              "INSERT INTO question (question, qtype, pos) VALUES ('new', 0, 2)"});
            }
            const QStringList there = design(path);
            const QString own = program.Path(QString("own%1.plxs").arg(number));
            dialogs.answers = {answer, answer};
            dialogs.fileNames = {{own}};
            const bool saved = number % 2 == 0 ? document.DoSave() : MayWrite();
            EXPECT_EQ(saved, answer == MsgAnswer::Yes);
            QStringList asked = dialogs.TakeTexts();
            const bool lost = QString(way) == "overwritten" && answer == MsgAnswer::Yes;
            if (lost) {
                EXPECT_TRUE(asked.takeLast().startsWith(own + " was saved without answers"));
            }
            ASSERT_EQ(asked.size(), 1) << asked.join('\n').toStdString();
            EXPECT_TRUE(asked[0].startsWith(path + " was changed by another program"));
            EXPECT_EQ(design(path), there);
            if (answer == MsgAnswer::Cancel) {
                EXPECT_TRUE(state.FileChanged());
                EXPECT_EQ(Survey().GetQIndex(2)->Question, "changed");
            } else if (answer == MsgAnswer::No) {
                EXPECT_EQ(views.Texts().size(), there.size() + 1);
                EXPECT_FALSE(state.FileChanged());
            } else {
                EXPECT_EQ(state.CurrentFilename(), own);
                // Under the ids that their answers know, and with no answers of another survey.
                EXPECT_EQ(design(own), QStringList({"1|ours", "2|changed"}));
                EXPECT_EQ(SqlRows(own, "SELECT source FROM respondent", 1),
                          lost ? QStringList() : QStringList("ours"));
            }
            document.DoClose();
        }
    }
}

// Another window whose save is under way holds the file, and is through before ours begins.
TEST_F(SurveyDocumentTest, AWriteThatWaitsForAnotherSaveDoesNotGoOverIt) {
    for (const bool saves : {true, false}) {
        const QString path = OpenBlank(saves ? "saved.plxs" : "answered.plxs");
        Add(0, "ours");
        ASSERT_TRUE(document.DoSave());
        Connection other;
        other.Open(path);
        WriteBatch saving(other);
        other.Run("UPDATE question SET question = 'theirs'");
        std::thread end([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            saving.Commit();
        });
        dialogs.answers = {MsgAnswer::Cancel};
        EXPECT_FALSE(saves ? document.DoSave() : MayWrite());
        end.join();
        EXPECT_TRUE(dialogs.TakeTexts().value(0).startsWith(path + " was changed by another"));
        EXPECT_EQ(Questions(path), QStringList("1|theirs|1|0|1|0"));
        document.DoClose();
    }
}

class RecoveryTest : public SurveyDocumentTest {
  protected:
    // Another program on the same directory; this one holds what it has until it is gone.
    struct Program {
        explicit Program(TestState& of)
            : dialogs(of.dialogs), state(of.state.directories, of.settings, of.dialogs) {}
        QueuedDialogs& dialogs;
        ApplicationState state;
        FakeViews views;
        SurveyDocument document{state, views, 20};

        void Edit(const QString& path) {
            document.DoOpen(path, true, 1);
            clsSurvey& survey = state.CurrentSurvey;
            const auto q = survey.GetQ(survey.AddQ("Which?", kind::Radio, -1, 2));
            q->AddResponse("a", -1, -1, survey.AddQ("Then", kind::Matrix, -1, 56));
            views.selected = q->Key;
            views.editor = "Which?";
            state.MarkFileChanged();
            Wait();
        }
        // Until what is due has been written.
        static void Wait() {
            QEventLoop loop;
            QTimer::singleShot(200, &loop, &QEventLoop::quit);
            loop.exec();
        }
    };
    QStringList Kept() {
        return QDir(program.directory.path()).entryList({"*.recovery*"}, QDir::Files);
    }
};

TEST_F(RecoveryTest, ADesignThatWasNotSavedComesBack) {
    for (const QString& name : {QString("tea %2.plxs"), QString("HC7.tmp")}) {
        SCOPED_TRACE(qPrintable(name));
        const QString path = program.BlankSurvey(name);
        RunSql(path, {"INSERT INTO question (question, questionno, qtype, pos) VALUES "
                      "('First', '1', 0, 1)",
                      "INSERT INTO responsematrixgroup (name) VALUES ('mine')",
                      "INSERT INTO responsematrix (name, ResponseMatrixGroupID) VALUES "
                      "('Rarely', 13)"});
        const bool named = name.endsWith(".plxs");
        auto other = std::make_unique<Program>(program);
        other->Edit(path);
        const SurveySnapshot unsaved =
            SurveySnapshot::Take(other->state.CurrentSurvey, *other->views.selected);
        EXPECT_EQ(Kept().size(), 2);              // with its lock
        EXPECT_FALSE(document.OfferRecovery({})); // that of a running program
        other.reset();                            // gone, without a word

        const QString what = named ? path : QString("A survey without a name");
        dialogs.answers = {MsgAnswer::Cancel, MsgAnswer::Yes};
        EXPECT_FALSE(document.OfferRecovery({}));
        EXPECT_FALSE(document.OfferRecovery(program.Path("another.plxs")));
        EXPECT_TRUE(document.OfferRecovery(named ? path : QString()));
        const QStringList asked = dialogs.TakeTexts();
        ASSERT_EQ(asked.size(), 2);
        EXPECT_TRUE(asked[0].startsWith(what + " was not saved. Restore it? 3 questions, "));
        EXPECT_EQ(SurveySnapshot::Take(Survey(), views.selected.value_or("")), unsaved);
        EXPECT_TRUE(state.FileChanged());
        EXPECT_EQ(views.Texts(), QStringList({"Survey", "1. First", "2. Which?", "3. Then"}));
        EXPECT_EQ(EndsInTmp(state.CurrentFilename(), Qt::CaseSensitive), !named);
        EXPECT_EQ(SqlRows(state.CurrentFilename(),
                          "SELECT name FROM responsematrix WHERE ResponseMatrixGroupID = 13", 1),
                  QStringList("Rarely"));
        EXPECT_EQ(Kept().size(), 2); // now this program's

        dialogs.fileNames = {{program.Path("saved-" + name + ".plxs")}};
        EXPECT_TRUE(document.mnuFileSave_Click());
        EXPECT_EQ(Kept(), QStringList());
        document.DoClose();
    }
}

TEST_F(RecoveryTest, WhatWasSavedOrLeftWithNoIsNotKept) {
    const QString path = program.BlankSurvey("tea.plxs");
    {
        Program other(program);
        other.Edit(path);
        other.document.DoSave();
        EXPECT_EQ(Kept(), QStringList());
        other.Edit(program.BlankSurvey("coffee.plxs"));
        dialogs.answers = {MsgAnswer::No};
        EXPECT_TRUE(other.document.AskToSave(Qt::CaseSensitive));
        other.document.DoClose();
        EXPECT_EQ(Kept(), QStringList());
        dialogs.TakeTexts();

        // A question without a text is left without a question; its responses are not.
        other.document.DoOpen(program.BlankSurvey("HC8.tmp"), true, 1);
        clsSurvey& survey = other.state.CurrentSurvey;
        const auto q = survey.GetQ(survey.AddQ("", kind::Radio, -1, 2));
        other.state.MarkFileChanged();
        Program::Wait();
        EXPECT_EQ(Kept(), QStringList()); // blank
        q->AddResponse("a", -1, -1, "");  // as a key's release, which marks nothing, ends an edit
        Program::Wait();
        EXPECT_EQ(Kept().size(), 2);
        EXPECT_TRUE(other.document.AskToSave(Qt::CaseSensitive));
        other.document.End();
        EXPECT_FALSE(QFile::exists(program.Path("HC8.tmp")));
    }
    dialogs.answers = {MsgAnswer::No};
    EXPECT_FALSE(document.OfferRecovery({}));
    EXPECT_TRUE(dialogs.TakeTexts().value(0).contains(" 1 question, "));
    EXPECT_EQ(Kept(), QStringList());
}

TEST_F(RecoveryTest, WhereItsFileIsAnotherItComesBackWithoutAName) {
    int number = 0;
    for (const char* fate : {"was changed", "is no longer there", "could not be read"}) {
        SCOPED_TRACE(fate);
        const QString path = program.BlankSurvey(QString("tea%1.plxs").arg(++number));
        {
            Program other(program);
            other.Edit(path);
            other.state.CurrentSurvey.AddQ("", kind::OpenEnded, -1, 2);
            Program::Wait();
        }
        if (number == 1)
            RunSql(path, {"INSERT INTO question (question, qtype, pos) VALUES ('since', 0, 1)"});
        else if (number == 2)
            QFile::remove(path);
        else
            RunSql(path, {"DROP TABLE response"});
        dialogs.answers = {MsgAnswer::Yes};
        EXPECT_TRUE(document.OfferRecovery({}));
        EXPECT_TRUE(dialogs.TakeTexts().last().startsWith(path + ' ' + fate));
        EXPECT_EQ(views.Texts().mid(1),
                  QStringList({"1. Which?", "2. Then", "3. <Text not yet entered>"}));
        EXPECT_TRUE(EndsInTmp(state.CurrentFilename(), Qt::CaseSensitive));
        document.DoClose();
    }

    // A design that belongs to no file that was read belongs to no file at all.
    const QString path = program.BlankSurvey("coffee.plxs");
    UnsavedSurvey survey;
    survey.path = path;
    survey.when = QDateTime::currentDateTime();
    survey.design.questions.resize(2);
    Recovery(program.directory.path()).Keep(survey);
    dialogs.answers = {MsgAnswer::Yes};
    EXPECT_TRUE(document.OfferRecovery(path));
    EXPECT_NE(state.CurrentFilename(), path);
}

TEST_F(RecoveryTest, WhatCannotBeRestoredIsKept) {
    const QString path = program.BlankSurvey("tea.plxs");
    {
        Program other(program);
        other.Edit(path);
    }
    QFile::remove(path);
    QDir().mkdir(program.Path("program"));
    RunSql(program.BlankSurvey("program/blank.mdb"), {"DROP TABLE response"});
    ApplicationState broken({program.Path("program"), program.directory.path()}, program.settings,
                            dialogs);
    {
        SurveyDocument other(broken, views, 20);
        dialogs.answers = {MsgAnswer::Yes};
        EXPECT_THROW(other.OfferRecovery({}), Failure);
        broken.MarkFileChanged();
        Program::Wait();
        EXPECT_EQ(dialogs.TakeTexts().size(), 2); // the question, and what DoOpen says
    }
    dialogs.answers = {MsgAnswer::Yes};
    EXPECT_TRUE(document.OfferRecovery({}));
    EXPECT_EQ(Survey().QCount(), 2);
}

// A survey without a name is gone for its user when it is closed, whatever is in its file.
TEST_F(RecoveryTest, AnswersInASurveyWithoutANameAreNotLeftBehind) {
    const QString path = program.BlankSurvey("HC7.tmp");
    {
        Program other(program);
        other.document.DoOpen(path, true, -1);
        RunOwnSql(other.state, {"INSERT INTO respondent (source) VALUES ('Web')"});
        EXPECT_TRUE(other.document.AskToSave(Qt::CaseSensitive)); // no design was changed
        other.document.End();
    }
    dialogs.answers = {MsgAnswer::Yes};
    EXPECT_TRUE(document.OfferRecovery({}));
    EXPECT_EQ(state.CurrentFilename(), path);
    EXPECT_EQ(dialogs.TakeTexts().size(), 1);
    dialogs.fileNames = {{program.Path("named.plxs")}};
    EXPECT_TRUE(document.mnuFileSave_Click());
    EXPECT_EQ(SqlRows(program.Path("named.plxs"), "SELECT source FROM respondent", 1),
              QStringList("Web"));
    document.End();
    EXPECT_EQ(Kept(), QStringList());
}

TEST_F(RecoveryTest, OnlyUntouchedSurveysThatNobodyHasAreRemoved) {
    for (const char* name : {"HC1.tmp", "HC2.tmp", "HC3.tmp", "HC4.tmp", "HC5.tmp", "HC6.tmp"})
        program.BlankSurvey(name);
    RunSql(program.Path("HC2.tmp"), {"INSERT INTO respondent (source) VALUES ('Web')"});
    RunSql(program.Path("HC3.tmp"), {"INSERT INTO responsematrixgroup (name) VALUES ('mine')"});
    {
        Program gone(program);
        gone.Edit(program.Path("HC4.tmp"));
    }
    Program other(program);
    other.document.DoOpen(program.Path("HC5.tmp"), true, -1);
    const QString own = document.NewSurveyFile();
    document.DoOpen(own, true, -1);
    WriteWholeFile(program.Path("HC8.tmp"), {}); // its program went down before it was filled
    WriteWholeFile(program.Path("HC9.tmp"), "a note of the user's own");
    document.RemoveLeftSurveys();
    QStringList left = {"HC2.tmp", "HC3.tmp", "HC4.tmp",
                        "HC5.tmp", "HC9.tmp", QFileInfo(own).fileName()};
    left.sort();
    EXPECT_EQ(QDir(program.directory.path()).entryList({"HC*.tmp"}, QDir::Files, QDir::Name), left);
    EXPECT_EQ(QDir(program.directory.path()).entryList({"HC*.lock"}, QDir::Files).size(), 2);
}

TEST_F(RecoveryTest, WhatLiesAboutIsBoundedAndNothingElseIsTaken) {
    const auto leave = [&](int days) {
        Recovery files(program.directory.path());
        UnsavedSurvey survey;
        survey.path = QString::number(days);
        survey.when = QDateTime::currentDateTime().addDays(-days);
        files.Keep(survey);
        return survey.ToBytes();
    };
    const QByteArray whole = leave(31);
    for (int days = 25; days > 0; --days)
        leave(days);
    EXPECT_TRUE(UnsavedSurvey::FromBytes(whole));
    for (qsizetype at = 0; at < whole.size(); ++at) {
        QByteArray changed = whole;
        changed[at] = char(changed[at] ^ 1);
        for (const QByteArray& bytes : {whole.left(at), changed})
            EXPECT_FALSE(UnsavedSurvey::FromBytes(bytes)) << at;
    }
    const auto found = Recovery(program.directory.path()).Search();
    ASSERT_EQ(found.size(), std::size_t(Recovery::MostFiles));
    EXPECT_EQ(found.front().survey.path, "1");
    EXPECT_EQ(Kept().size(), 2 * Recovery::MostFiles); // each with its lock
}
