// The blank questionnaires. How the page behaves was tried in a browser; here is what it is made
// of, and that its answers are those that the import knows.
#include <QRegularExpression>

#include "analysis/AnsweredSurvey.h"
#include "analysis/HtmlQuestionnaire.h"
#include "analysis/PdfQuestionnaire.h"
#include "tables/Targets.h"

namespace pollarix {
namespace {

class Questionnaires : public test::AnsweredSurvey {
  protected:
    QByteArray Page() {
        HtmlQuestionnaire::Write(Survey(), Path("a.html"), step_);
        return test::BytesOf(Path("a.html"));
    }
    QByteArray Pdf() {
        PdfQuestionnaire::Write(Survey(), Path("a.pdf"), step_);
        return test::BytesOf(Path("a.pdf"));
    }
    static int Pages(const QByteArray& pdf) {
        static const QRegularExpression page(R"(/Type\s*/Page\b)");
        int count = 0;
        for (auto found = page.globalMatch(QString::fromLatin1(pdf)); found.hasNext(); found.next())
            ++count;
        return count;
    }

    const ProgressStep step_ = [](std::int64_t, std::int64_t) {};
};

TEST_F(Questionnaires, AskForWhatTheImportKnows) {
    Sql("UPDATE response SET LogicJumpToQuestionID = 16 WHERE id = 4;\n"
        "UPDATE response SET LogicJumpToQuestionID = 99 WHERE id = 5;\n"
        "UPDATE question SET question = '</script><b>\"&' WHERE id = 11");
    const QString page = QString::fromUtf8(Page());
    EXPECT_TRUE(page.contains(">1. &lt;/script&gt;&lt;b&gt;&quot;&amp;</h2>"));
    EXPECT_TRUE(page.contains(">Now about soup.</h2>"));

    static const QRegularExpression input(R"re(data-key="([^"]*)"( value="([^"]*)")?)re");
    std::vector<tables::TableColumn> columns;
    QStringList values;
    for (auto found = input.globalMatch(page); found.hasNext();) {
        const auto match = found.next();
        if (columns.empty() || columns.back().name != match.captured(1))
            columns.push_back({match.captured(1), {}});
        values << match.captured(3);
    }
    const statistics::SurveyVariables survey(Survey());
    EXPECT_EQ(WithoutColumn(GuessTargets(columns, survey), survey), QStringList());
    EXPECT_EQ(values,
              (QStringList{"", "1", "1", "1", "id:4", "id:5", "id:502", "id:501", "id:502",
                           "id:501", "id:502", "id:501", "id:511", "id:512", "id:513", ""}));
    // The target's place among the pages, and the mark of one that is gone.
    EXPECT_TRUE(page.contains("value=\"id:4\" data-jump=\"5\""));
    EXPECT_TRUE(page.contains("value=\"id:5\" data-jump=\"-2\""));
}

TEST_F(Questionnaires, AreWholeWhateverTheSurveyHolds) {
    EXPECT_TRUE(Page().endsWith("</html>\n"));
    const QByteArray pdf = Pdf();
    EXPECT_TRUE(pdf.startsWith("%PDF-") && pdf.trimmed().endsWith("%%EOF"));
    const int pages = Pages(pdf);
    EXPECT_LE(pages, 2);
    // A question, a response, a sub question and a point that are longer than a page, and more
    // points than there is room for.
    Survey().Run("UPDATE question SET question = ? WHERE id IN (11, 12)",
                 {QString("word ").repeated(2000)});
    EXPECT_GT(Pages(Pdf()), pages + 4);
    Survey().Run("UPDATE response SET name = ? WHERE id IN (2, 4, 8)", {QString(9000, 'x')});
    EXPECT_GT(Pages(Pdf()), pages + 8);
    Survey().Run("UPDATE responsematrix SET name = ? WHERE id = 501", {QString(9000, 'y')});
    EXPECT_GT(Pages(Pdf()), pages + 10);
    Sql("UPDATE response SET name = ''");
    EXPECT_TRUE(Pdf().startsWith("%PDF-"));
    Sql("DELETE FROM response;\nUPDATE question SET qtype = 7 WHERE id = 12");
    EXPECT_TRUE(Pdf().startsWith("%PDF-"));
    EXPECT_TRUE(Page().endsWith("</html>\n"));
    Sql("DELETE FROM question");
    EXPECT_EQ(Pages(Pdf()), 1);
    EXPECT_TRUE(Page().endsWith("</html>\n"));
}

TEST_F(Questionnaires, ReplaceAFileOnlyByAWholeOne) {
    const ProgressStep stop = [](std::int64_t done, std::int64_t) {
        if (done == 3)
            throw Failure(failure::DialogCancelled);
    };
    const QByteArray page = Page();
    const QByteArray pdf = Pdf();
    EXPECT_THROW(HtmlQuestionnaire::Write(Survey(), Path("a.html"), stop), Failure);
    EXPECT_THROW(PdfQuestionnaire::Write(Survey(), Path("a.pdf"), stop), Failure);
    EXPECT_EQ(test::BytesOf(Path("a.html")), page);
    EXPECT_EQ(test::BytesOf(Path("a.pdf")), pdf);
    EXPECT_THROW(PdfQuestionnaire::Write(Survey(), Path("no/such/a.pdf"), step_), Failure);
}

} // namespace
} // namespace pollarix
