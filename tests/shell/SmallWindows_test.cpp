// The small windows around the main one: splash, tips, about box; and what the start shows of them.
#include <QCheckBox>
#include <QDir>
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

QString TextOf(const frmTip& window) {
    return window.findChild<QLabel*>("lblTipText")->text();
}

TEST(frmTip, ShowsTheTipAfterTheStoredOne) {
    for (const auto& [file, current, shown, stored, failure] :
         {std::tuple("one\ntwo\n", "", "two", "2", 0),
          {"<b>one</b>\nδύο", "57", "<b>one</b>", "1", 0}, // a file that got shorter
          {"one\nδύο\n", "1", "δύο", "2", 0},
          {"one\n", "soon", "", "soon", failure::TypeMismatch},
          {"one\n", "-3", "", "-2", failure::Subscript}}) { // stored before it is shown
        TipProgram program;
        program.Write(file);
        if (*current)
            program.Set("Current Tip", current);
        const auto look = [&, text = QString(shown)] {
            const frmTip window(program.state, nullptr);
            EXPECT_EQ(TextOf(window), text);
        };
        EXPECT_EQ(NumberOf(look), failure);
        EXPECT_EQ(program.Get("Current Tip"), stored) << file;
    }
    TipProgram program;
    const frmTip missing(program.state, nullptr);
    EXPECT_TRUE(TextOf(missing).startsWith("That the TipOfTheDay.txt file was not found? \n\n"));
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
    for (const char* place : {"", "Key", "Frame1", "Picture5"}) {
        frmSplash splash;
        splash.show();
        if (place == QString("Key"))
            QTest::keyClick(&splash, Qt::Key_Shift);
        else if (*place)
            QTest::mouseClick(splash.findChild<QWidget*>(place), Qt::LeftButton);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !splash.isVisible(); }, *place ? 0 : 60000))
            << place;
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

// Which surveys are kept, and what comes back of them, the document's tests see.
TEST(StartUp, WhatWasNotSavedIsOfferedBeforeTheTip) {
    TestState program;
    const QString path = program.BlankSurvey("tea.plxs");
    {
        // A program that goes down with a question that was not saved.
        ApplicationState other(program.state.directories, program.settings, program.dialogs);
        FakeViews views;
        SurveyDocument document(other, views, 20);
        document.DoOpen(path, true, 1);
        other.CurrentSurvey.AddQ("Tea?", kind::OpenEnded, -1, 2);
        views.editor = "Tea?";
        other.MarkFileChanged();
        const QDir directory(program.directory.path());
        ASSERT_TRUE(
            QTest::qWaitFor([&] { return !directory.entryList({"*.recovery"}).isEmpty(); }));
    }
    program.settings.SaveSetting("Quillmark", "Config", "FirstRun", "False");
    Attendant user;
    for (const MsgAnswer answer : {MsgAnswer::Cancel, MsgAnswer::Yes}) {
        const bool comesBack = answer == MsgAnswer::Yes;
        user.seen.clear();
        program.dialogs.answers = {answer};
        program.dialogs.onBox = [&] { user.seen << "question"; };
        ApplicationState next(program.state.directories, program.settings, program.dialogs);
        frmMain window(next);
        StartUp(next, window, {});
        program.dialogs.onBox = {};
        EXPECT_EQ(user.seen, QStringList({"frmSplash", "question", "frmTip"}));
        EXPECT_EQ(program.dialogs.TakeTexts().size(), 1);
        EXPECT_EQ(window.findChild<TreeView*>("tvTreeView")->Item(2).Text(),
                  comesBack ? "1. Tea?" : "1. <Text not yet entered>");
        EXPECT_EQ(window.findChild<QLabel*>("StatusBar")->text(), comesBack ? path : QString());
        program.dialogs.answers = {MsgAnswer::Cancel};
        EXPECT_EQ(window.close(), !comesBack) << "what was restored is changed";
    }
}

TEST(FailureText, SaysOfASurveyFileWhetherItIsThereAndCanBeWritten) {
    const TipProgram program;
    const QString there = program.directory.filePath("there.plxs");
    WriteWholeFile(there, "survey");
    for (const auto& [number, file, says] :
         {std::tuple(1544, there, "can only be read"), // because of its directory
          {13, there, "refused\n"},
          {8, there + "x", "no longer there"}})
        EXPECT_TRUE(FailureText(Failure(number, "refused", "SQLite"), file).contains(says));
}

} // namespace
