// The small windows around the main one: splash, tips, about box; and what the start shows of them.
#include <QAbstractButton>
#include <QCheckBox>
#include <QElapsedTimer>
#include <QLabel>
#include <QTest>

#include <gtest/gtest.h>

#include "platform/Handlers.h"
#include "shell/Attendant.h"
#include "shell/HelpWindow.h"
#include "shell/MainBas.h"
#include "shell/SystemInformation.h"
#include "shell/frmAbout.h"
#include "shell/frmMain.h"
#include "shell/frmSplash.h"
#include "shell/frmTip.h"
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
        QFile file(directory.filePath("TipOfTheDay.txt"));
        ASSERT_TRUE(file.open(QFile::WriteOnly));
        file.write(tips);
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

struct TipCase {
    const char* name;
    QByteArray file;
    QString current; // "" for not stored
    QString shown;
    QString stored;
    int failure = 0;
};

class TipFile : public testing::TestWithParam<TipCase> {};

TEST_P(TipFile, ShowsTheTipAfterTheStoredOne) {
    TipProgram program;
    program.Write(GetParam().file);
    if (!GetParam().current.isEmpty())
        program.Set("Current Tip", GetParam().current);
    if (GetParam().failure != 0) {
        EXPECT_EQ(NumberOf([&] { frmTip window(program.state, nullptr); }), GetParam().failure);
        return;
    }
    const frmTip window(program.state, nullptr);
    EXPECT_EQ(TextOf(window), GetParam().shown);
    EXPECT_EQ(program.Get("Current Tip"), GetParam().stored);
}

INSTANTIATE_TEST_SUITE_P(
    Edges, TipFile,
    testing::Values(TipCase{"FirstStartShowsTheSecond", "one\ntwo\n", "", "two", "2"},
                    TipCase{"AfterTheLastComesTheFirst", "one\ntwo\n", "2", "one", "1"},
                    TipCase{"AFileThatGotShorter", "one\ntwo", "57", "one", "1"},
                    TipCase{"NoTips", "", "5", "", "1"},
                    TipCase{"AnEmptyLineIsAnEmptyTip", "one\n\nthree\n", "1", "", "2"},
                    TipCase{"LineEndsOfAnotherSystem", "one\r\ntwo\r\n", "1", "two", "2"},
                    TipCase{"MarkupIsText", "<b>one</b>\n", "1", "<b>one</b>", "1"},
                    TipCase{"AnyScript", "eins\n\xCE\xB4\xCF\x8D\xCE\xBF\n", "1", "δύο", "2"},
                    TipCase{"NoNumber", "one\n", "soon", "", "", failure::TypeMismatch},
                    TipCase{"BelowTheFirst", "one\n", "-3", "", "", failure::Subscript},
                    TipCase{"BeyondItsRange", "one\n", "32767", "", "", failure::Overflow}),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST(frmTip, AMissingFileIsNoFailure) {
    TipProgram program;
    const frmTip window(program.state, nullptr);
    EXPECT_EQ(TextOf(window),
              "That the TipOfTheDay.txt file was not found? \n\nCreate a text file named "
              "TipOfTheDay.txt using NotePad with 1 tip per line. Then place it in the same "
              "directory as the application. ");
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
    QElapsedTimer clock;
    {
        frmSplash splash;
        splash.show();
        clock.start();
        EXPECT_TRUE(splash.findChild<QWidget*>("Picture5")->isVisible());
        EXPECT_FALSE(splash.findChild<QWidget*>("Picture2")->isVisible());
        ASSERT_TRUE(QTest::qWaitFor([&] { return !splash.isVisible(); }, 5000));
        EXPECT_GE(clock.elapsed(), 2990);
        EXPECT_LE(clock.elapsed(), 4000);
    }
    for (const Qt::Key key : {Qt::Key_A, Qt::Key_Escape, Qt::Key_F1, Qt::Key_Tab, Qt::Key_Shift}) {
        frmSplash splash;
        splash.show();
        QTest::keyClick(&splash, key);
        EXPECT_FALSE(splash.isVisible()) << key;
    }
    for (const char* place : {"Frame1", "lblDisclaimer", "Picture5"}) {
        frmSplash splash;
        splash.show();
        QTest::mouseClick(splash.findChild<QWidget*>(place), Qt::LeftButton);
        EXPECT_FALSE(splash.isVisible()) << place;
    }
}

TEST(frmAbout, LeadsToTheWebPageAndKnowsNoSystemInformation) {
    QueuedDialogs dialogs;
    frmAbout window(dialogs, nullptr);
    window.show();
    EXPECT_TRUE(window.findChild<QWidget*>("Picture2")->isVisible());
    EXPECT_FALSE(window.findChild<QWidget*>("Picture5")->isVisible());
    QTest::mouseClick(window.findChild<QWidget*>("Picture4"), Qt::LeftButton);
    auto* const link = window.findChild<QLabel*>("Label2");
    link->setFocus();
    QTest::keyClick(link, Qt::Key_Tab); // selects the link
    link->setFocus();
    Q_EMIT link->linkActivated({});
    EXPECT_EQ(dialogs.openedUrls, QStringList(2, "https://www.pollarix.example/"));
    QTest::mouseClick(window.findChild<QAbstractButton*>("cmdSysInfo"), Qt::LeftButton);
    ASSERT_EQ(dialogs.shown.size(), 1u);
    EXPECT_EQ(dialogs.shown[0].text, "System Information Is Unavailable At This Time");
    QTest::keyClick(&window, Qt::Key_Return);
    EXPECT_FALSE(window.isVisible());
}

TEST(SystemInformation, RunsWhatTheRegistryNames) {
    QueuedDialogs dialogs;
    QTemporaryDir directory;
    const QString program = directory.filePath("show info");
    QFile file(program);
    ASSERT_TRUE(file.open(QFile::WriteOnly));
    file.write("#!/bin/sh\ntouch \"$0.ran\"\n");
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    file.close();
    StartSysInfo(dialogs, [&](const QString& key, const QString&) {
        return key.endsWith("MSINFO") ? std::optional(program) : std::nullopt;
    });
    EXPECT_TRUE(QTest::qWaitFor([&] { return QFile::exists(program + ".ran"); }));
    EXPECT_TRUE(dialogs.shown.empty());
    // What is named but isn't there.
    StartSysInfo(dialogs, [](const QString&, const QString&) { return QString("/no/such/thing"); });
    StartSysInfo(dialogs, [](const QString& key, const QString&) {
        return key.endsWith("Location") ? std::optional(QString("/no/such")) : std::nullopt;
    });
    EXPECT_EQ(dialogs.TakeTexts(),
              QStringList(2, "System Information Is Unavailable At This Time"));
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
    EXPECT_EQ(program.dialogs.TakeTexts(),
              QStringList("We've noticed that this is the first time you have launched Pollarix. "
                          "You may find it useful to follow the getting started tutorial. Would "
                          "you like to view it now?"));
    EXPECT_EQ(start(), "");
    EXPECT_EQ(program.dialogs.TakeTexts(), QStringList());

    // A refused tutorial is not offered again, and tips that were turned off stay away.
    program.settings.SaveSetting("Quillmark", "Config", "FirstRun", "True");
    program.settings.SaveSetting(TipsApplication(), "Options", "Show Tips at Startup", "0");
    program.dialogs.answers = {MsgAnswer::No};
    EXPECT_EQ(start(), "");
    EXPECT_EQ(user.seen, QStringList("frmSplash"));
    EXPECT_EQ(program.dialogs.TakeTexts().size(), 1);
    EXPECT_EQ(program.settings.GetSetting("Quillmark", "Config", "FirstRun", ""), "False");
}

} // namespace
