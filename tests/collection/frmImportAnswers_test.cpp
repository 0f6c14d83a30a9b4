// The dialog "Import Answers", as it is used: a file is chosen, columns are looked at and changed,
// and what can't be matched is told before anything is written.
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include "collection/frmImportAnswers.h"
#include "platform/controls/ComboBox.h"
#include "platform/controls/Grid.h"
#include "platform/files/Files.h"
#include "statistics/GeneratedAnswers.h"
#include "support/Accessible.h"
#include "support/PrintQt.h"
#include "support/SurveyFiles.h"

namespace pollarix {
namespace {

class ImportAnswers : public testing::Test {
  protected:
    ImportAnswers() {
        Survey().Open(program_.BlankSurvey("survey.plxs"));
        test::GeneratedAnswers generated(Survey());
    }
    Connection& Survey() { return program_.state.SurveyConnection; }
    std::int64_t Respondents() { return Survey().Count("SELECT count(*) FROM respondent"); }
    QString Write(const QByteArray& bytes) {
        const QString path = program_.Path("answers.csv");
        WriteWholeFile(path, bytes);
        return path;
    }
    void Show(const QByteArray& bytes) {
        form_ = std::make_unique<frmImportAnswers>(program_.state, Write(bytes), nullptr);
        form_->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(form_.get()));
    }
    template <typename Control> Control& Find(const char* name) {
        return *form_->findChild<Control*>(name);
    }
    void Press(const char* name) { QTest::mouseClick(&Find<QPushButton>(name), Qt::LeftButton); }
    QStringList GoesTo() {
        QStringList names;
        const auto& grid = Find<Grid>("gColumns");
        for (int row = 1; row < grid.Rows(); ++row)
            names << grid.TextMatrix(row, 2).section(':', 0, 0);
        return names;
    }
    void Choose(int row, const QString& beginning) {
        Find<Grid>("gColumns").SetRow(row);
        auto& box = Find<ComboBox>("cboTarget");
        for (int i = 0; i < box.ListCount(); ++i)
            if (box.List(i).startsWith(beginning))
                return box.SetListIndex(i);
        FAIL() << "no such place: " << beginning.toStdString();
    }

    test::TestState program_;
    std::unique_ptr<frmImportAnswers> form_;
};

TEST_F(ImportAnswers, ShowsGuessesAndTellsWhatDoesNotFitBeforeItWrites) {
    Show("Region;Age;Notes;q7\nNorth;7;a;b\nEast;8;c;d\n\nwest;;;\n");
    test::CheckAccessible(*form_);
    EXPECT_EQ(GoesTo(), (QStringList{"(not imported)", "(not imported)", "(not imported)", "q7"}));
    EXPECT_EQ(Find<ComboBox>("cboSeparator").Text(), "Semicolon ;");
    EXPECT_EQ(Find<Grid>("gPreview").Rows(), 4);
    EXPECT_EQ(Find<Grid>("gPreview").TextMatrix(3, 1), "west");
    EXPECT_TRUE(Find<QLabel>("lblMissing").text().contains("(12)"));

    Choose(1, "q1:");
    Choose(2, "q3:");
    Choose(3, "q3:");
    Press("cmdImport");
    EXPECT_EQ(
        program_.dialogs.TakeTexts(),
        QStringList("The columns \"Age\" and \"Notes\" both go to \"How old are you?\". Please "
                    "choose another place for one of them."));
    Choose(3, "(not");
    EXPECT_EQ(GoesTo(), (QStringList{"q1", "q3", "(not imported)", "q7"}));
    Press("cmdCheck");
    EXPECT_EQ(program_.dialogs.TakeTexts(),
              QStringList("3 respondents with 6 answers can be imported. 1 value can't be matched, "
                          "and would be left empty; the list tells where."));
    EXPECT_EQ(Find<QTabWidget>("tabBelow").currentIndex(), 1);
    EXPECT_EQ(Find<Grid>("gProblems").TextMatrix(1, 0), "3");
    EXPECT_EQ(Find<Grid>("gProblems").TextMatrix(1, 1), "Region");
    test::CheckAccessible(*form_);

    program_.dialogs.answers = {MsgAnswer::No, MsgAnswer::Yes};
    Press("cmdImport");
    EXPECT_EQ(Respondents(), 0);
    Press("cmdImport");
    EXPECT_EQ(program_.dialogs.TakeTexts().last(), "Successfully imported 3 respondents.");
    EXPECT_FALSE(form_->isVisible());
    EXPECT_EQ(Respondents(), 3);
}

TEST_F(ImportAnswers, ReadsAnotherWayWhenTold) {
    Show("q1,q7\nNorth,a;b\n");
    auto& separator = Find<ComboBox>("cboSeparator");
    separator.setFocus();
    QTest::keyClick(&separator, Qt::Key_Down);
    EXPECT_EQ(separator.Text(), "Semicolon ;");
    EXPECT_EQ(GoesTo(), QStringList("(not imported)"));
    QTest::keyClick(&separator, Qt::Key_Up);
    EXPECT_EQ(GoesTo(), (QStringList{"q1", "q7"}));
    QTest::keyClick(form_.get(), Qt::Key_N, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return Find<Grid>("gColumns").TextMatrix(1, 0) == "Column 1"; }, 1000));
    EXPECT_EQ(Find<Grid>("gPreview").Rows(), 3);
}

TEST_F(ImportAnswers, CanBeStoppedAndTakesBackWhatItWrote) {
    Show("q1,q7\n" + QByteArray("North,\"a text that takes its time\"\n").repeated(200000));
    QTimer stop;
    QObject::connect(&stop, &QTimer::timeout, [&] {
        if (Find<QLabel>("lblProgress").text().startsWith("Importing: ") &&
            Find<QProgressBar>("prgImport").value() > 0) {
            stop.stop();
            EXPECT_FALSE(Find<QWidget>("picBody").isEnabled());
            Press("cmdCancel");
        }
    });
    stop.start(1);
    Press("cmdImport");
    EXPECT_FALSE(stop.isActive());
    EXPECT_TRUE(form_->isVisible());
    EXPECT_TRUE(Find<QPushButton>("cmdImport").isEnabled());
    EXPECT_EQ(program_.dialogs.TakeTexts(), QStringList());
    EXPECT_EQ(Respondents(), 0);
}

TEST_F(ImportAnswers, TellsWhatIsWrongWithAFile) {
    const auto import = [&](const QByteArray& bytes) {
        program_.dialogs.fileNames = {{Write(bytes), 0}};
        EXPECT_FALSE(frmImportAnswers::mnuDataCollectionImport_Click(program_.state, nullptr));
        return program_.dialogs.TakeTexts();
    };
    EXPECT_EQ(import(""),
              QStringList(program_.Path("answers.csv") + ": holds no table; it is empty"));
    program_.dialogs.fileNames = {{"", 0}};
    EXPECT_FALSE(frmImportAnswers::mnuDataCollectionImport_Click(program_.state, nullptr));
    EXPECT_EQ(program_.dialogs.TakeTexts(), QStringList());

    Show("q1\nNorth\n" + QByteArray("\n").repeated(1000000));
    Press("cmdImport");
    EXPECT_EQ(program_.dialogs.TakeTexts(), QStringList("Successfully imported 1 respondent."));
    Show("q1\n" + QByteArray("\n").repeated(1000000));
    Press("cmdImport");
    EXPECT_EQ(program_.dialogs.TakeTexts(),
              QStringList("The table holds no respondent: all of its rows are empty."));
    Show("q1\n" + QByteArray("North\n").repeated(20) + "\"South\n");
    Press("cmdImport");
    EXPECT_EQ(program_.dialogs.TakeTexts(),
              QStringList(program_.Path("answers.csv") +
                          ", row 22: the quoted text of column 1 that "
                          "begins in this row has no end\n\nNothing "
                          "was imported."));
    EXPECT_EQ(Respondents(), 1);
}

} // namespace
} // namespace pollarix
