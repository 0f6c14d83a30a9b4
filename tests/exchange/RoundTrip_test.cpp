// What the program writes is read here, and what is written here the program imports.
#include <QFile>

#include <random>

#include "document/SurveyDocument.h"
#include "exchange/CodePage.h"
#include "exchange/ResultsWriter.h"
#include "exchange/SurveyReader.h"
#include "platform/base/Windows1252.h"
#include "platform/files/Files.h"
#include "platform/richtext/RichText.h"
#include "support/Bytes.h"
#include "support/FakeViews.h"
#include "support/PrintQt.h"
#include "support/SurveyFiles.h"
#include "web/ResultsReader.h"
#include "web/SurveyXmlWriter.h"

using namespace pollarix;
using namespace pollarix::test;
using AnswerKind = exchange::Kind;

namespace {

class RoundTrip : public testing::Test {
  protected:
    RoundTrip() {
        path = program.BlankSurvey("survey.plxs");
        SurveyDocument(program.state, views).DoOpen(path, true, 1);
        views.selected = QString(RootKey);
    }

    int Below(int bound) { return static_cast<int>(random() % static_cast<unsigned>(bound)); }
    // Of pieces that could be taken for something else.
    QString Text() {
        static const QStringList pieces = {"</Name>",  "<q>",
                                           "</q>\r\n", "</Question>\r\n",
                                           "a & b",    "\u20ac",
                                           "<r>",      "</r>",
                                           "\r\n",     "\t",
                                           "\r\n\t",   "</text>",
                                           "<text>",   "<Response>",
                                           "\\s\\n;",  "<userresponse>",
                                           "\u00e9",   "</userresponse>",
                                           "<QType>x", "=1,2:3",
                                           " ",        "<",
                                           "<<r>",     "</ResponseMatrixName>"};
        QString text;
        for (int i = Below(5); i > 0; --i)
            text += pieces[Below(static_cast<int>(pieces.size()))];
        return text;
    }
    std::string Written() {
        DoSaveXML(program.state, views);
        return BytesOf(SurveyXmlPath(program.state)).toStdString();
    }
    static std::string Utf8(QString text) { return text.replace("\r\n", "\n").toStdString(); }

    TestState program;
    FakeViews views;
    QString path;
    std::mt19937 random{20260723};
};

} // namespace

TEST_F(RoundTrip, SurveysOfAnyTextsAreReadAsTheyAreMeantAndTheirAnswersComeBack) {
    RunSql(path, {"DELETE FROM responsematrix WHERE ResponseMatrixGroupID = 2",
                  "INSERT INTO responsematrix (id, name, ResponseMatrixGroupID, pos) VALUES"
                  "(301, 'So & so </ResponseMatrixName>', 2, 1), (300, '<Good>', 2, 0),"
                  "(302, NULL, 2, 2)"});
    const std::vector<std::string> scale = {"<Good>", "So & so </ResponseMatrixName>", ""};
    for (int round = 0; round < 60; ++round) {
        program.state.CurrentSurvey = clsSurvey();
        exchange::Questionnaire meant;
        int id = 0;
        for (int i = 1 + Below(6); i > 0; --i) {
            exchange::Question q;
            const QString text = Text();
            q.id = ++id;
            q.kind = static_cast<AnswerKind>(Below(5));
            q.text = Utf8(PlainTextOf(text));
            clsQ& written = *program.state.CurrentSurvey.GetQ(
                program.state.CurrentSurvey.AddQ(text, static_cast<int>(q.kind), q.id, 2));
            written.OpenEnded_NoOfRows = static_cast<std::int16_t>(q.rows = Below(9) - 2);
            for (int j = Below(4); j > 0; --j) {
                const QString name = Text();
                written.AddResponse(name, ++id, -1, "");
                if (q.kind != AnswerKind::OpenEnded && q.kind != AnswerKind::Text)
                    q.choices.push_back({id, Utf8(name)});
            }
            if (q.kind == AnswerKind::Matrix && !q.choices.empty())
                for (int point = 0; point < 3; ++point)
                    q.scale.push_back({300 + point, scale[static_cast<std::size_t>(point)]});
            meant.questions.push_back(q);
        }

        const exchange::Questionnaire read = exchange::ReadSurveyDocument(Written());
        ASSERT_EQ(read.questions.size(), meant.questions.size());
        exchange::Answers answers = exchange::NoAnswers(read);
        QStringList rows;
        for (std::size_t i = 0; i < meant.questions.size(); ++i) {
            const exchange::Question& q = read.questions[i];
            EXPECT_EQ(q.id, meant.questions[i].id);
            EXPECT_EQ(q.kind, meant.questions[i].kind);
            EXPECT_EQ(q.text, meant.questions[i].text);
            EXPECT_EQ(q.rows, meant.questions[i].rows);
            const auto same = [](const exchange::Choice& a, const exchange::Choice& b) {
                return a.id == b.id && a.text == b.text;
            };
            EXPECT_TRUE(std::equal(q.choices.begin(), q.choices.end(),
                                   meant.questions[i].choices.begin(),
                                   meant.questions[i].choices.end(), same));
            EXPECT_TRUE(std::equal(q.scale.begin(), q.scale.end(), meant.questions[i].scale.begin(),
                                   meant.questions[i].scale.end(), same));
            // An answer, and the row that the program has to make of it.
            exchange::Answer& answer = answers[i];
            const QString question = QString("1|%1|").arg(q.id);
            if (q.kind == AnswerKind::OpenEnded) {
                const QString text = Text();
                answer.text = text.toStdString();
                rows << question + "1|" + QString(text).remove(' ').replace("\r\n", "\n") + "|NULL";
            }
            for (std::size_t j = 0; j < q.choices.size(); ++j) {
                const QString response = question + QString::number(q.choices[j].id) + "||";
                if (q.kind == AnswerKind::Matrix) {
                    answer.points[j] = Below(4) - 1;
                    if (answer.points[j] >= 0)
                        rows << response + QString::number(300 + answer.points[j]);
                } else if (Below(2) == 0 &&
                           (q.kind == AnswerKind::Check || answer.ticked.empty())) {
                    answer.ticked.push_back(j);
                    rows << response + "NULL";
                }
            }
        }
        exchange::LostLetters lost;
        WriteWholeFile(program.Path("3-7.txt"),
                       QByteArray::fromStdString(exchange::ResultsOf(read, answers, lost)));
        DoLoadXML(program.state, program.Path("3-7.txt"));
        program.dialogs.TakeTexts();
        // Blanks break tags, and are left out of the comparison.
        QStringList taken =
            SqlRows(path,
                    "SELECT RespondentID, QuestionID, ResponseID, replace(SimpleResponse, ' ', ''),"
                    " ResponseMatrixID FROM respondent_responses ORDER BY id",
                    5);
        EXPECT_EQ(taken, rows) << "in round " << round;
        EXPECT_EQ(SqlRows(path, "SELECT id FROM respondent", 1), QStringList("1"));
        RunSql(path, {"DELETE FROM respondent", "DELETE FROM respondent_responses",
                      "DELETE FROM sqlite_sequence"});
    }
}

TEST_F(RoundTrip, BothSidesHaveTheSameCodePage) {
    QByteArray all;
    for (int byte = 0; byte < 256; ++byte)
        all += static_cast<char>(byte);
    const std::string utf8 = exchange::Utf8FromWindows1252(all.toStdString());
    EXPECT_EQ(QString::fromStdString(utf8), FromWindows1252(all));
    exchange::LostLetters lost;
    EXPECT_EQ(exchange::Windows1252FromUtf8(utf8, lost), all.toStdString());
    EXPECT_EQ(lost.count, 0U);

    EXPECT_EQ(exchange::Windows1252FromUtf8("a\u0416\U0001F600\u0416\xff\u20ac", lost),
              "a????\x80");
    EXPECT_EQ(lost.count, 4U);
    EXPECT_EQ(lost.Names(), "\u0416 \U0001F600 \ufffd");

    for (const char* broken : {"\x80", "\xc3", "\xc0\xaf", "\xed\xa0\x80", "\xf4\x90\x80\x80",
                               "\xe2\x82", "\xf8\x88\x80\x80\x80", "a\xff"})
        EXPECT_FALSE(exchange::IsUtf8(broken)) << broken;
    EXPECT_TRUE(exchange::IsUtf8("\xc3\xa9\xe2\x82\xac\xf0\x9f\x98\x80"));
}
