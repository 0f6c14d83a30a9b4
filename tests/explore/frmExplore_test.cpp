// The Explore window as somebody uses it: a question is sought, looked at alone and by another one,
// of some respondents only, and copied.
#include "explore/frmExplore.h"

#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

#include "statistics/GeneratedAnswers.h"
#include "support/PrintQt.h"
#include "support/SurveyFiles.h"

namespace pollarix::test {
namespace {

class NoProgress : public ProgressDisplay {
  public:
    void ShowProgress(const QString&) override {}
    void ClearProgress() override {}
};

class Explore : public testing::Test {
  protected:
    Explore() {
        Open("first.plxs");
        GeneratedAnswers(program_.state.SurveyConnection).Add(100);
        window_.mnuAnalyseExplore_Click();
    }
    void Open(const char* name) {
        if (program_.state.SurveyConnection.IsOpen())
            program_.state.SurveyConnection.Close();
        program_.state.SurveyConnection.Open(program_.BlankSurvey(name));
    }
    template <typename Control> Control& Find(const char* name) {
        return *window_.findChild<Control*>(name);
    }
    void Search(const QString& text) {
        Find<QLineEdit>("txtSearch").clear();
        QTest::keyClicks(&Find<QLineEdit>("txtSearch"), text);
    }
    void Press(const char* name) { QTest::mouseClick(&Find<QPushButton>(name), Qt::LeftButton); }
    void Choose(const char* name, const QString& entry) {
        auto& box = Find<ComboBox>(name);
        const int place = box.findText(entry, Qt::MatchStartsWith);
        ASSERT_GE(place, 0) << entry.toStdString();
        box.SetListIndex(place);
    }
    QString Row(int row) {
        Grid& table = Find<Grid>("gTable");
        QStringList cells;
        for (int column = 0; column < table.Cols(); ++column)
            cells << table.TextMatrix(row, column);
        return cells.join('|');
    }
    QString Text(const char* name) { return Find<QLabel>(name).text(); }

    TestState program_;
    NoProgress progress_;
    LongWork work_{progress_};
    frmExplore window_{program_.state, work_, nullptr};
};

TEST_F(Explore, CountsOneQuestionAndItByAnother) {
    EXPECT_TRUE(window_.isVisible());
    EXPECT_EQ(window_.windowTitle(), "Explore - first");
    Search("SCHOOLING");
    ASSERT_EQ(Find<ListBox>("lstVariables").ListCount(), 1);
    EXPECT_EQ(Row(1), "Basic|24|24.0 %|24.0 %|24.0 %|16.7 % - 33.2 %");
    EXPECT_EQ(Row(4), "All|100||||");

    Choose("cboColumns", "by q5_1");
    EXPECT_EQ(Row(0), "|Not at all|Little|Half|Rather|Fully|All");
    EXPECT_EQ(Row(3), QString::fromUtf8("High|4|6|3 −|12 +|1|26"));
    EXPECT_TRUE(Text("lblNotes").contains("Chi-square 17.74 with 8 degrees of freedom, p = 0.023"));
    EXPECT_TRUE(Text("lblNotes").contains("Take care"));
    Choose("cboCells", "Percent of row");
    EXPECT_TRUE(Row(1).startsWith("Basic|22.7 %|"));

    // A number by groups, and what was not asked.
    Search("old are");
    Choose("cboColumns", "(frequencies");
    EXPECT_TRUE(Text("lblNotes").contains("n = 88, mean 47.81 (95 % interval 45.27 to 50.35)"));
    EXPECT_EQ(Row(Find<Grid>("gTable").Rows() - 2).section('|', 0, 1), "(not asked)|9");
    Choose("cboColumns", "by q1");
    EXPECT_TRUE(Text("lblNotes").contains("Analysis of variance: F 3.20 with 2 and 85"));

    Search("q5  ");
    EXPECT_EQ(Row(0), "|Mean|Std. deviation|With others|Alpha without");
    EXPECT_TRUE(Row(1).endsWith("|0.656"));
    EXPECT_EQ(Row(4).section('|', 3, 3), "0.552");
    EXPECT_TRUE(Text("lblNotes").startsWith("Cronbach's alpha 0.718, of "));
    EXPECT_TRUE(Text("lblNotes").contains("not shown by another question"));

    Search("no such question");
    EXPECT_EQ(Find<Grid>("gTable").Rows(), 1);
}

TEST_F(Explore, CountsWhomTheConditionsChooseAndCopiesThat) {
    EXPECT_EQ(Text("lblFilter"), "Only: everybody (100 of 100)");
    Choose("cboFilterVariable", "q1");
    Choose("cboFilterAnswer", "is North");
    Press("cmdFilterAdd");
    Choose("cboFilterAnswer", "is South");
    Press("cmdFilterAdd");
    Choose("cboFilterVariable", "q6");
    Choose("cboFilterAnswer", "is High");
    Press("cmdFilterAdd");
    EXPECT_TRUE(Text("lblFilter")
                    .startsWith("Only: Which region are you from? is \"North\" or \"South\", and "
                                "Your schooling? is "
                                "\"High\" ("));
    Search("schooling");
    EXPECT_EQ(Row(1), "Basic|0|0.0 %|0.0 %|0.0 %|" + Row(1).section('|', 5));
    Choose("cboFilterJoin", "Any");
    EXPECT_TRUE(Text("lblFilter").contains(", or Your schooling?"));
    Press("cmdCopy");
    const QMimeData* const copied = QApplication::clipboard()->mimeData();
    EXPECT_TRUE(copied->text().startsWith("q6 Your schooling?. Only: Which region"));
    EXPECT_TRUE(copied->text().contains("\nBasic\t"));
    EXPECT_TRUE(copied->html().contains("<td>Basic</td>"));
    Press("cmdFilterClear");
    EXPECT_EQ(Row(1).section('|', 0, 1), "Basic|24");
}

TEST_F(Explore, ShowsTheSurveyThatIsOpen) {
    Choose("cboFilterVariable", "q1");
    Press("cmdFilterAdd");
    Open("second.plxs");
    Press("cmdRefresh");
    EXPECT_EQ(window_.windowTitle(), "Explore - second");
    EXPECT_EQ(Find<ListBox>("lstVariables").ListCount(), 2); // date and source
    EXPECT_EQ(Text("lblFilter"), "Only: everybody (0 of 0)");
    EXPECT_EQ(Row(1), "All|0||||");
    Press("cmdClose");
    EXPECT_FALSE(window_.isVisible());
}

} // namespace
} // namespace pollarix::test
