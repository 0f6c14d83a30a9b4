#include "web/ResultsReader.h"

#include <QRandomGenerator>

#include <array>
#include <string>

#include "platform/files/Files.h"
#include "support/NumberOf.h"
#include "support/PrintQt.h"
#include "support/SurveyFiles.h"
#include "web/ResultsLines.h"

using namespace pollarix;
using namespace pollarix::test;

namespace {

class Results : public testing::Test {
  protected:
    Results() { program.state.SurveyConnection.Open(path); }

    int Import(const QByteArray& bytes) {
        WriteWholeFile(program.Path("3-7.txt"), bytes);
        return NumberOf([&] { DoLoadXML(program.state, program.Path("3-7.txt")); });
    }
    // What the file holds, respondents first; then it holds nothing.
    QStringList Taken() {
        QStringList rows = SqlRows(path, "SELECT id, source FROM respondent ORDER BY id", 2);
        rows += SqlRows(path,
                        "SELECT RespondentID, QuestionID, ResponseID, SimpleResponse, "
                        "ResponseMatrixID FROM respondent_responses ORDER BY id",
                        5);
        RunSql(path, {"DELETE FROM respondent", "DELETE FROM respondent_responses",
                      "DELETE FROM sqlite_sequence"});
        return rows;
    }
    static QString Told(int count) {
        return QString("Successfully imported %1 respondent(s).").arg(count);
    }

    TestState program;
    QString path = program.BlankSurvey("survey.plxs");
};

// One record in one line, and one respondent's block.
QByteArray Record(const QByteArray& question, const QByteArray& kind, const QByteArray& values) {
    return "<r><DatabaseID>99</DatabaseID><QuestionNo>" + question + "</QuestionNo><QType>" + kind +
           "</QType>" + values + "</r>\r\n";
}
QByteArray Block(const QByteArray& records) {
    return "<userresponse>\r\n" + records + "</userresponse>\r\n";
}
QByteArray Values(std::initializer_list<const char*> values) {
    QByteArray lines;
    for (const char* value : values)
        lines += "\r\n  <Response>" + QByteArray(value) + "</Response>";
    return lines + "\r\n";
}

} // namespace

TEST_F(Results, AnswersOfEveryKindBecomeRows) {
    EXPECT_EQ(Import("<results>\r\n" +
                     Block(Record("5", "0", "<text>Caf\xe9 <b> \x80</text>") +
                           Record("6", "1", Values({"61", " 62 "})) +
                           Record("7", "2", Values({"71", "72"})) +
                           Record("8", "3", Values({"301,81", "302, 82 ,x"})) +
                           Record("9", "4", Values({"91"})) + Record("10", " 2.0 ", "")) +
                     "between\r\n" + Block(Record("5", "0", "")) +
                     Block(Record("9", "4", ""))), // an instruction text makes a respondent as well
              0);
    EXPECT_EQ(Taken(),
              QStringList({"1|Web", "2|Web", "3|Web", u"1|5|1|Caf\u00e9 <b> \u20ac|NULL"_qs,
                           "1|6|61||NULL", "1|6|62||NULL", "1|7|71||NULL", "1|8|81||301",
                           "1|8|82||302", "2|5|1||NULL"}));
    EXPECT_EQ(program.dialogs.TakeTexts(), QStringList(Told(3)));
    EXPECT_FALSE(program.state.FileChanged());
}

TEST_F(Results, LinesAreTakenAsTheyStand) {
    const QByteArray good = Record("5", "1", Values({"51"}));
    const QStringList taken = {"1|Web", "1|5|51||NULL"};
    const QStringList none;
    struct {
        const char* what;
        QByteArray bytes;
        QStringList rows;
        int failure = 0;
    } const cases[] = {
        {"LF only", Block(good).replace("\r\n", "\n"), none},
        {"no CR LF at the end", Block(good).chopped(2), taken},
        {"no end of the record", Block(QByteArray(good).replace("</r>", "")) + Block(good), taken},
        {"other case", Block(QByteArray(good).replace("QType", "qtype")), none},
        {"the last value wins",
         Block("<r><QuestionNo>4</QuestionNo><QType>0</QType>\r\n<DatabaseID>1</DatabaseID>\r\n"
               "<QuestionNo>5</QuestionNo>\r\n<QType>1</QType>\r\n<Response>51</Response></r>\r\n"),
         taken},
        {"a record does not open where one ends",
         Block("<r>\r\n</r><r>" + Record("6", "1", Values({"61"})).mid(3) + good), taken},
        {"a block in a block goes on with its respondent",
         "<userresponse>\r\n" + good + Block(good),
         {"1|Web", "1|5|51||NULL", "1|5|51||NULL"}},
        // Failures: what came before stays.
        {"empty kind", Block(good + Record("5", "", "")), taken, failure::TypeMismatch},
        {"matrix without a comma",
         Block(good + Record("8", "3", Values({"7,41", "7"}))),
         {"1|Web", "1|5|51||NULL", "1|8|41||7"},
         failure::Subscript},
        {"closing tag first", Block(good + "<r></text><text>\r\n"), taken,
         failure::InvalidArgument},
    };
    for (const auto& [what, bytes, rows, failure] : cases) {
        EXPECT_EQ(Import(bytes), failure) << what;
        EXPECT_EQ(program.dialogs.TakeTexts(),
                  failure ? QStringList() : QStringList(Told(rows.filter("|Web").size())))
            << what;
        EXPECT_EQ(Taken(), rows) << what;
    }
    for (const char* number : {"x", "", "5.5"}) {
        EXPECT_NE(Import(Block(good) + Block(Record("5", "1", Values({"51", number})))), 0);
        EXPECT_EQ(Taken(), QStringList({"1|Web", "2|Web", "1|5|51||NULL", "2|5|51||NULL"}))
            << number;
    }
    EXPECT_EQ(NumberOf([&] { DoLoadXML(program.state, program.Path("none.txt")); }),
              failure::FileNotFound);

    // A survey of another version takes what its tables have a place for.
    RunSql(path, {"ALTER TABLE respondent_responses RENAME COLUMN ResponseMatrixID TO OldID"});
    EXPECT_NE(Import(Block(good + Record("8", "3", Values({"7,41"})))), 0);
    RunSql(path, {"ALTER TABLE respondent_responses RENAME COLUMN OldID TO ResponseMatrixID"});
    EXPECT_EQ(Taken(), taken);
}

TEST_F(Results, TheLastMomentToStopAnImportIsWhenAllIsRead) {
    WriteWholeFile(program.Path("3-7.txt"), Block(Record("5", "1", Values({"51"}))));
    for (const bool stays : {false, true}) {
        EXPECT_EQ(DoLoadXML(program.state, program.Path("3-7.txt"),
                            [&](int respondents, auto bytes, auto size) {
                                EXPECT_EQ(bytes, size);
                                return respondents == 0 || stays;
                            }),
                  stays);
        EXPECT_EQ(program.dialogs.TakeTexts(), stays ? QStringList(Told(1)) : QStringList());
        EXPECT_EQ(Taken().size(), stays ? 2 : 0);
    }
}

// Whatever a file holds, and wherever its blocks end, each line says what it says when the whole
// file is looked at in one piece.
TEST_F(Results, BlocksChangeNothing) {
    const std::array<std::string, 14> tags = {
        "<userresponse>", "</userresponse>", "<r>",           "</r>",    "<DatabaseID>",
        "</DatabaseID>",  "<QuestionNo>",    "</QuestionNo>", "<QType>", "</QType>",
        "<Response>",     "</Response>",     "<text>",        "</text>"};
    QRandomGenerator random(4711);
    const QString name = program.Path("lines.txt");
    int lines = 0;
    for (int round = 0; round < 400; ++round) {
        std::string all;
        for (int piece = 0; piece < 60; ++piece) {
            const quint32 kind = random.bounded(8);
            if (kind < 4)
                all += tags[random.bounded(14)];
            else if (kind == 4)
                all += "\r\n";
            else if (kind == 5)
                all += random.bounded(2) ? '\r' : '\n';
            else
                all += std::string(random.bounded(20), 'x') + (kind == 6 ? "<" : "");
        }
        WriteWholeFile(name, QByteArrayView(all.data(), qsizetype(all.size())));
        ResultsLines read(name, 16 + random.bounded(120));
        std::size_t at = 0;
        for (std::size_t end = all.find("\r\n"); end != std::string::npos;
             end = all.find("\r\n", at), ++lines) {
            ASSERT_TRUE(read.Next());
            const std::string line = all.substr(at, end - at);
            at = end + 2;
            ASSERT_EQ(read.Position(), static_cast<std::int64_t>(at));
            for (std::size_t tag = 0; tag < tags.size(); ++tag) {
                const std::size_t opening = line.find(tags[tag]);
                ASSERT_EQ(read.Holds(ResultsTag(tag)), opening != std::string::npos) << line;
                const std::size_t closing = tag % 2 == 0 ? line.find(tags[tag + 1]) : line.npos;
                if (opening == line.npos || closing == line.npos)
                    continue;
                const std::size_t begin = opening + tags[tag].size();
                std::string value;
                if (closing < begin) {
                    ASSERT_EQ(NumberOf([&] { read.Value(ResultsTag(tag), value); }),
                              failure::InvalidArgument);
                    continue;
                }
                ASSERT_TRUE(read.Value(ResultsTag(tag), value));
                ASSERT_EQ(value, line.substr(begin, closing - begin));
            }
        }
        ASSERT_FALSE(read.Next());
    }
    EXPECT_GT(lines, 1000);
}
