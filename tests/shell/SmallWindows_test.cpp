// The small windows around the main one: splash, tips, about box; and what the start shows of them.
#include <QCheckBox>
#include <QDir>
#include <QElapsedTimer>
#include <QLabel>
#include <QTest>

#include <gtest/gtest.h>

#include "document/Kinds.h"
#include "document/SurveyDocument.h"
#include "platform/base/Handlers.h"
#include "platform/controls/TreeView.h"
#include "platform/files/Files.h"
#include "shell/Attendant.h"
#include "shell/MainBas.h"
#include "shell/frmMain.h"
#include "shell/frmSplash.h"
#include "shell/frmTip.h"
#include "shell/help/HelpWindow.h"
#include "support/FakeViews.h"
#include "support/NumberOf.h"
#include "support/PrintQt.h"
#include "support/SurveyFiles.h"

using namespace pollarix;
using namespace pollarix::test;

namespace {

// The program with a tip file of its own.
struct TipProgram {
    QTemporaryDir directory;
    Settings settings{directory.path() + "/settings"};
    QueuedDialogs dialogs;
    ApplicationState state{Directories{directory.path(), directory.path()}, settings, dialogs};

    void Write(const QByteArray& tips) {
        WriteWholeFile(directory.filePath("TipOfTheDay.txt"), tips);
    }
    void Set(const QString& key, const QString& value) {
        settings.SaveSetting(TipsApplication(), "Options", key, value);
    }
    QString Get(const QString& key) {
        return settings.GetSetting(TipsApplication(), "Options", key, "none");
    }
};

// The recovery files of a program.
QStringList Kept(const TestState& program) {
    return QDir(program.directory.path()).entryList({"*.recovery"}, QDir::Files);
}

QString TextOf(const frmTip& window) {
    return window.findChild<QLabel*>("lblTipText")->text();
}

TEST(frmTip, ShowsTheTipAfterTheStoredOne) {
    struct {
        QByteArray file;
        QString current; // "" for not stored
        QString shown;
        QString stored;
        int failure = 0;
    } const cases[] = {
        {"one\ntwo\n", "", "two", "2"},
        {"one\ntwo", "57", "one", "1"}, // a file that got shorter
        {"<b>one</b>\n", "1", "<b>one</b>", "1"},
        {"eins\n\xCE\xB4\xCF\x8D\xCE\xBF\n", "1", "δύο", "2"},
        {"one\n", "soon", "", "soon", failure::TypeMismatch},
        {"one\n", "-3", "", "-2", failure::Subscript}, // stored before it is shown
    };
    for (const auto& [file, current, shown, stored, failure] : cases) {
        TipProgram program;
        program.Write(file);
        if (!current.isEmpty())
            program.Set("Current Tip", current);
        EXPECT_EQ(NumberOf([&] {
                      const frmTip window(program.state, nullptr);
                      EXPECT_EQ(TextOf(window), shown);
                  }),
                  failure);
        EXPECT_EQ(program.Get("Current Tip"), stored) << file.toStdString();
    }
}

TEST(frmTip, AMissingFileIsNoFailure) {
    TipProgram program;
    const frmTip window(program.state, nullptr);
    EXPECT_TRUE(TextOf(window).startsWith("That the TipOfTheDay.txt file was not found? \n\n"));
    EXPECT_EQ(program.Get("Current Tip"), "none");
}

TEST(frmTip, OnlyTheUsersClickStoresTheTick) {
    TipProgram program;
    program.Write("one\ntwo\nthree\n");
    program.Set("Show Tips at Startup", "0");
    frmTip window(program.state, nullptr);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    auto* const box = window.findChild<QCheckBox*>("chkLoadTipsAtStartup");
    EXPECT_TRUE(box->isChecked());
    EXPECT_EQ(program.Get("Show Tips at Startup"), "0");
    QTest::keyClick(box, Qt::Key_Space);
    QTest::keyClick(box, Qt::Key_Space);
    EXPECT_EQ(program.Get("Show Tips at Startup"), "1");
    QTest::keyClick(box, Qt::Key_Space);
    EXPECT_EQ(program.Get("Show Tips at Startup"), "0");

    QTest::keyClick(&window, Qt::Key_N, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor([&] { return TextOf(window) == "three"; }));
    QTest::keyClick(&window, Qt::Key_Return);
    EXPECT_FALSE(window.isVisible());
}

TEST(frmSplash, EndsByItselfOrByAKeyOrAClick) {
    frmSplash alone;
    alone.show();
    QElapsedTimer clock;
    clock.start();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !alone.isVisible(); }, 5000));
    EXPECT_GE(clock.elapsed(), 2990);
    for (const char* place : {"", "Frame1", "Picture5"}) {
        frmSplash splash;
        splash.show();
        if (*place)
            QTest::mouseClick(splash.findChild<QWidget*>(place), Qt::LeftButton);
        else
            QTest::keyClick(&splash, Qt::Key_Shift);
        EXPECT_FALSE(splash.isVisible()) << place;
    }
}

TEST(StartUp, TheFirstStartAsksAndTheSecondDoesNot) {
    TestState program;
    Attendant user;
    const auto start = [&] {
        user.seen.clear();
        frmMain window(program.state);
        StartUp(program.state, window, {});
        const QUrl shown = window.Help().Window().Address();
        program.state.SurveyConnection.Close();
        program.state.LibraryConnection.Close();
        return shown.fileName();
    };
    program.dialogs.answers = {MsgAnswer::Yes};
    EXPECT_EQ(start(), "tutorial.html");
    EXPECT_EQ(user.seen, QStringList({"frmSplash", "frmTip"}));
    EXPECT_EQ(program.dialogs.TakeTexts().size(), 1);
    EXPECT_EQ(start(), "");
    EXPECT_EQ(program.dialogs.TakeTexts(), QStringList());

    // A step that fails is the last one: the first start is still to come.
    program.settings.SaveSetting("Quillmark", "Config", "FirstRun", "True");
    program.settings.SaveSetting(TipsApplication(), "Options", "Current Tip", "soon");
    QList<int> failures;
    SetFailureReporter([&](const Failure& failure) { failures << failure.Number(); });
    EXPECT_EQ(start(), "");
    SetFailureReporter({});
    EXPECT_EQ(failures, QList<int>{failure::TypeMismatch});

    // A refused tutorial is not offered again, and tips that were turned off stay away.
    program.settings.SaveSetting(TipsApplication(), "Options", "Show Tips at Startup", "0");
    program.dialogs.answers = {MsgAnswer::No};
    EXPECT_EQ(start(), "");
    EXPECT_EQ(user.seen, QStringList("frmSplash"));
    EXPECT_EQ(program.dialogs.TakeTexts().size(), 1);
    EXPECT_EQ(program.settings.GetSetting("Quillmark", "Config", "FirstRun", ""), "False");
}

TEST(StartUp, WhatWasNotSavedIsOfferedBeforeTheTip) {
    for (const bool named : {true, false}) {
        SCOPED_TRACE(named);
        TestState program;
        const QString path = program.BlankSurvey(named ? "tea.plxs" : "HC1.tmp");
        RunSql(path, {"INSERT INTO question (question, questionno, qtype, pos) VALUES "
                      "('Tea?', '1', 0, 1)"});
        const auto state = [&program] {
            return ApplicationState(program.state.directories, program.settings, program.dialogs);
        };
        {
            // A program that goes down with a second question, not saved.
            ApplicationState other = state();
            FakeViews views;
            SurveyDocument document(other, views, 20);
            document.DoOpen(path, true, 1);
            other.CurrentSurvey.AddQ("And why?", kind::OpenEnded, -1, 2);
            views.editor = "And why?";
            other.MarkFileChanged();
            ASSERT_TRUE(QTest::qWaitFor([&] { return !Kept(program).isEmpty(); }));
        }
        program.settings.SaveSetting("Quillmark", "Config", "FirstRun", "False");
        Attendant user;
        const auto start = [&](MsgAnswer answer, bool comesBack) {
            user.seen.clear();
            program.dialogs.answers = {answer};
            program.dialogs.onBox = [&] { user.seen << "question"; };
            ApplicationState next = state();
            frmMain window(next);
            StartUp(next, window, {});
            program.dialogs.onBox = {};
            EXPECT_EQ(user.seen, QStringList({"frmSplash", "question", "frmTip"}));
            QStringList asked = program.dialogs.TakeTexts();
            ASSERT_EQ(asked.size(), 1);
            EXPECT_TRUE(asked[0].startsWith((named ? path : QString("A survey without a name")) +
                                            " was not saved. Restore it? 2 questions, "))
                << asked[0].toStdString();
            auto& tree = *window.findChild<TreeView*>("tvTreeView");
            EXPECT_EQ(tree.Count(), comesBack ? 3 : 2);
            EXPECT_EQ(tree.Item(2).Text(), comesBack ? "1. Tea?" : "1. <Text not yet entered>");
            EXPECT_EQ(window.findChild<QLabel*>("StatusBar")->text(),
                      named && comesBack ? path : QString());
            EXPECT_EQ(SqlRows(path, "SELECT question FROM question", 1), QStringList("Tea?"));
            // What was restored is changed; the program is gone then without an answer.
            program.dialogs.answers = {MsgAnswer::Cancel};
            EXPECT_EQ(window.close(), !comesBack);
            EXPECT_EQ(program.dialogs.TakeTexts().size(), comesBack ? 1 : 0);
        };
        start(MsgAnswer::Cancel, false);
        start(MsgAnswer::Yes, true);
        start(MsgAnswer::No, false);
        EXPECT_EQ(Kept(program), QStringList());
    }
}

TEST(FailureText, SaysOfASurveyFileWhetherItIsThereAndCanBeWritten) {
    const TipProgram program;
    const QString there = program.directory.filePath("there.plxs");
    WriteWholeFile(there, "survey");
    const auto saysOf = [](int number, const QString& file) {
        const QString text = FailureText(Failure(number, "refused", "SQLite"), file);
        return QString(text.contains("can only be read") ? "read-only" : "") +
               (text.contains("no longer there") ? "gone" : "");
    };
    EXPECT_EQ(saysOf(8, there), "read-only");
    EXPECT_EQ(saysOf(1544, there), "read-only"); // because of its directory
    EXPECT_EQ(saysOf(13, there), "");
    EXPECT_EQ(saysOf(8, there + "x"), "gone");
}

} // namespace
