// What the commands that write files have in common: offering to look, cancelling, failing, and
// being left alone while they run.
#include <QDir>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMessageBox>
#include <QTest>
#include <QTimer>

#include <sys/stat.h>
#include <unistd.h>

#include "analysis/AnsweredSurvey.h"
#include "analysis/DetailedReport.h"
#include "analysis/PaperSurvey.h"
#include "analysis/SurveyExport.h"
#include "platform/base/Handlers.h"
#include "platform/files/Files.h"

namespace pollarix::test {
namespace {

struct Command {
    const char* name;
    const char* presetName;
    int filterIndex;
    const char* begin;    // of the file
    const char* question; // once it is written
    void (*start)(ApplicationState&, LongWork&);

    friend void PrintTo(const Command& command, std::ostream* out) { *out << command.name; }
};

const auto Export = [](ApplicationState& state, LongWork& work) {
    SurveyExport(state, work).mnuFileExport_Click();
};

const Command Commands[] = {
    {"Report", "DetailReport.rtf", 0, "{\\rtf1", "View detailed report now?",
     [](ApplicationState& state, LongWork& work) {
         DetailedReport(state, work).mnuAnalyseDetail_Click();
     }},
    {"Paper", "PaperSurvey.rtf", 0, "{\\rtf1", "View paper based survey now?",
     [](ApplicationState& state, LongWork& work) {
         PaperSurvey(state, work).mnuDataCollectionPaperSurvey_Click();
     }},
    {"Export", "SurveyExport.csv", 0, "\"Web\", \"", nullptr, Export},
    {"Table", "SurveyExport.csv", 1, "\xEF\xBB\xBFRespondent id,", nullptr, Export},
    {"Sav", "SurveyExport.csv", 2, "$FL2", nullptr, Export},
    {"Dta", "SurveyExport.csv", 3, "<stata_dta>", nullptr, Export},
    {"Xlsx", "SurveyExport.csv", 4, "PK", nullptr, Export},
    {"R", "SurveyExport.csv", 5, "# Reads the answers", nullptr, Export},
    {"Codebook", "SurveyExport.csv", 6, "<!DOCTYPE html>", nullptr, Export},
};

class SaveCommand : public AnsweredSurvey, public testing::WithParamInterface<Command> {
  protected:
    void StartWith(const QString& path) {
        dialogs_.fileNames.push_back({path, GetParam().filterIndex});
        GetParam().start(program_.state, work_);
    }
    // That the command fails so.
    void ExpectRefusal(const QString& path, const QString& why) {
        StartWith(path);
        EXPECT_EQ(dialogs_.TakeTexts(), QStringList("Unable to write to file " + path + ' ' + why));
    }
    QString OldFile() {
        QDir().mkpath(Path("d"));
        WriteWholeFile(Path("d/old"), "old");
        return Path("d/old");
    }
    // That the old file is as it was, and nothing lies beside it.
    void ExpectOldFile() {
        EXPECT_EQ(BytesOf(Path("d/old")), "old");
        EXPECT_EQ(QDir(Path("d")).entryList(QDir::Files | QDir::Hidden), QStringList("old"));
    }
};

TEST_P(SaveCommand, WritesAndOffersToLook) {
    if (GetParam().question)
        dialogs_.answers = {MsgAnswer::No, MsgAnswer::Yes};
    StartWith(Path("unseen"));
    StartWith(Path("seen"));
    EXPECT_TRUE(BytesOf(Path("seen")).startsWith(GetParam().begin));
    EXPECT_EQ(dialogs_.fileRequests.front().fileName, GetParam().presetName);
    const QString question = GetParam().question;
    EXPECT_EQ(dialogs_.TakeTexts(),
              GetParam().question ? QStringList({question, question}) : QStringList());
    EXPECT_EQ(dialogs_.openedFiles,
              GetParam().question ? QStringList(Path("seen")) : QStringList());
    StartWith(""); // cancels
    EXPECT_EQ(dialogs_.TakeTexts(), QStringList());
}

// The disk's other refusals, the tests of faults see.
TEST_P(SaveCommand, IsRefusedWhereNoFileCanStandAndWhereTheOpenSurveyDoes) {
    QFile::setPermissions(OldFile(), QFile::ReadOwner);
    ASSERT_EQ(mkfifo(qPrintable(Path("pipe")), 0600), 0);
    ASSERT_TRUE(QFile::link(Path("survey.plxs"), Path("link.csv")));
    ASSERT_EQ(link(qPrintable(Path("survey.plxs")), qPrintable(Path("second.rtf"))), 0);
    const QByteArray survey = BytesOf(Path("survey.plxs"));
    for (const auto& [name, why] : {std::pair("d", ": it is a directory"),
                                    {"x/y", ": No such file or directory"},
                                    {"d/old", ": it is read-only"},
                                    {"pipe", ": it is no regular file"},
                                    {"d/../survey.plxs", ": it is the open survey"},
                                    {"link.csv", ": it is the open survey"},
                                    {"second.rtf", ": it is the open survey"}})
        ExpectRefusal(Path(name), Path(name) + why + " 75 Pollarix");
    ExpectOldFile();
    EXPECT_EQ(BytesOf(Path("second.rtf")), survey);
    AddRespondents(1, 1); // it takes answers as before
}

TEST_P(SaveCommand, AFailureInTheMiddleKeepsTheOldFile) {
    if (GetParam().name == std::string("Codebook"))
        return; // it holds no answers, so there is no middle
    AddRespondents(3000, 100);
    Sql("UPDATE question SET question = NULL WHERE id = 16;\n"
        "UPDATE respondent_responses SET SimpleResponse = NULL "
        "WHERE id = (SELECT max(id) FROM respondent_responses)");
    const bool table = GetParam().filterIndex == 1; // takes a Null for an empty cell
    if (table)
        Sql("UPDATE respondent SET submitteddate = 'never' WHERE id = 3000");
    OldFile();
    if (GetParam().filterIndex < 2) // files with labels take all of that for missing values
        ExpectRefusal(Path("d/old"), table ? "\"never\" is not a date 13 Pollarix"
                                           : "Invalid use of Null 94 Pollarix");
    ExpectOldFile();
    progress_.meanwhile = [] { throw std::bad_alloc(); };
    ExpectRefusal(Path("d/old"), "Out of memory 7 Pollarix");
    ExpectOldFile();
    EXPECT_FALSE(work_.IsRunning() || QGuiApplication::overrideCursor());
}

TEST_F(AnsweredSurvey, WhatIsPressedDuringLongWorkIsLost) {
    QLineEdit edit;
    edit.show();
    bool answered = false;
    progress_.meanwhile = [&] {
        EXPECT_TRUE(work_.IsRunning() && QGuiApplication::overrideCursor());
        work_.Do("other work", [](const ProgressStep&) { ADD_FAILURE() << "two at a time"; });
        QTest::keyClick(&edit, 'a');
        QMessageBox box; // a failure that is shown, say
        QTimer::singleShot(0, &box, [&] { QTest::keyClick(&box, Qt::Key_Return); });
        QTimer::singleShot(5000, &box, &QDialog::reject);
        answered = box.exec() == QMessageBox::Ok;
    };
    work_.Do("work", [&](const ProgressStep& step) {
        step(0, 1);
        QCoreApplication::postEvent(
            &edit, new QKeyEvent(QEvent::KeyPress, Qt::Key_B, Qt::NoModifier, "b"));
    });
    DoEvents();
    QTest::keyClick(&edit, 'c');
    EXPECT_EQ(edit.text(), "c");
    EXPECT_TRUE(answered);
    EXPECT_EQ(progress_.shown, QStringList("work 0 of 1"));
    EXPECT_EQ(progress_.cleared, 1);
    EXPECT_FALSE(work_.IsRunning() || QGuiApplication::overrideCursor());
}

INSTANTIATE_TEST_SUITE_P(, SaveCommand, testing::ValuesIn(Commands),
                         [](const auto& info) { return std::string(info.param.name); });

} // namespace
} // namespace pollarix::test
