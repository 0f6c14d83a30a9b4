// Files with labels, read back by the library that statistics programs read them with. What R, PSPP
// and a spreadsheet make of them is checked by scripts/check-statistics.sh.
#include <gtest/gtest.h>

#include <readstat.h>

#include <QMap>

#include <cmath>

#include "labelled/Codebook.h"
#include "labelled/LabelledFile.h"
#include "platform/base/Failure.h"
#include "statistics/GeneratedAnswers.h"
#include "support/Bytes.h"
#include "support/PrintQt.h"
#include "support/SurveyFiles.h"

namespace pollarix::labelled {
namespace {

// What a file holds: the cells of each variable, ".a" and ".b" for tagged missing values.
struct ReadBack {
    QMap<QString, QString> labels;
    QMap<QString, QStringList> cells;
    QMap<QString, QStringList> valueLabels; // by the name of their set
    QMap<QString, int> measures;
    QMap<QString, int> missing; // values that count as missing

    readstat_error_t error = READSTAT_OK;
};

int TakeVariable(int, readstat_variable_t* variable, const char*, void* target) {
    auto& read = *static_cast<ReadBack*>(target);
    const QString name = readstat_variable_get_name(variable);
    read.labels[name] = QString::fromUtf8(readstat_variable_get_label(variable));
    read.measures[name] = readstat_variable_get_measure(variable);
    read.missing[name] = readstat_variable_get_missing_ranges_count(variable);
    return READSTAT_HANDLER_OK;
}

int TakeValue(int, readstat_variable_t* variable, readstat_value_t value, void* target) {
    QString text;
    if (readstat_value_is_tagged_missing(value))
        text = QString(".") + readstat_value_tag(value);
    else if (readstat_value_is_system_missing(value))
        text = ".";
    else if (readstat_value_type(value) == READSTAT_TYPE_STRING)
        text = QString::fromUtf8(readstat_string_value(value));
    else
        text = QString::number(readstat_double_value(value), 'g', 15);
    static_cast<ReadBack*>(target)->cells[readstat_variable_get_name(variable)] << text;
    return READSTAT_HANDLER_OK;
}

int TakeValueLabel(const char* set, readstat_value_t value, const char* label, void* target) {
    const QString key = readstat_value_is_tagged_missing(value)
                            ? QString(".") + readstat_value_tag(value)
                            : QString::number(readstat_double_value(value));
    static_cast<ReadBack*>(target)->valueLabels[set] << key + '=' + QString::fromUtf8(label);
    return READSTAT_HANDLER_OK;
}

template <auto Parse> ReadBack Read(const QString& path) {
    ReadBack read;
    readstat_parser_t* parser = readstat_parser_init();
    readstat_set_variable_handler(parser, TakeVariable);
    readstat_set_value_handler(parser, TakeValue);
    readstat_set_value_label_handler(parser, TakeValueLabel);
    read.error = Parse(parser, path.toUtf8().constData(), &read);
    readstat_parser_free(parser);
    return read;
}
constexpr auto ReadSav = Read<readstat_parse_sav>;
constexpr auto ReadDta = Read<readstat_parse_dta>;

class LabelledFiles : public testing::Test {
  protected:
    LabelledFiles() {
        file_.Open(program_.BlankSurvey("survey.plxs"));
        test::GeneratedAnswers(file_).Add(12);
    }
    QString Path(const char* name) const { return program_.Path(name); }

    test::TestState program_;
    Connection file_;
};

TEST_F(LabelledFiles, HoldLabelsLevelsAndWhyThereIsNoAnswer) {
    WriteSav(file_, Path("a.sav"), {}, {});
    WriteDta(file_, Path("a.dta"), {}, {});
    const ReadBack sav = ReadSav(Path("a.sav"));
    const ReadBack dta = ReadDta(Path("a.dta"));
    ASSERT_EQ(sav.error, READSTAT_OK);
    ASSERT_EQ(dta.error, READSTAT_OK);
    for (const ReadBack& read : {sav, dta}) {
        EXPECT_EQ(read.cells.size(), 16);
        EXPECT_EQ(read.cells["id"].size(), 12);
        EXPECT_EQ(read.labels["q1"], "Which region are you from?");
        EXPECT_EQ(read.labels["q4_4"], "What do you use?: Kůň");
        EXPECT_EQ(read.cells["q7"][1], "Čau \"1\", line\r\nbreak");
        EXPECT_EQ(read.cells["source"].count("Manual Entry"), 4);
    }
    EXPECT_EQ(sav.measures["q1"], READSTAT_MEASURE_NOMINAL);
    EXPECT_EQ(sav.measures["q5_1"], READSTAT_MEASURE_ORDINAL);
    EXPECT_EQ(sav.measures["q3"], READSTAT_MEASURE_SCALE);
    EXPECT_EQ(sav.missing["q1"], 2);

    // Each cell of the one is that of the other.
    const auto reasons = [](const QStringList& cells, const char* empty, const char* notAsked) {
        QString text;
        for (const QString& cell : cells)
            text += cell == empty ? 'e' : cell == notAsked ? 'n' : '.';
        return text;
    };
    for (const char* name : {"q1", "q2", "q3", "q4_1", "q4_4", "q5_2", "q6"})
        EXPECT_EQ(reasons(sav.cells[name], "-1", "-2"), reasons(dta.cells[name], ".a", ".b"));
    for (int row = 0; row < 12; ++row)
        EXPECT_EQ(sav.cells["q4_1"][row] == "-2", sav.cells["q1"][row] == "4") << row;
    bool found = false;
    for (const QStringList& labels : sav.valueLabels)
        found |= labels == QStringList{"1=North",  "2=South",      "3=West",
                                       "4=Abroad", "-1=No answer", "-2=Not asked"};
    EXPECT_TRUE(found);
    EXPECT_TRUE(dta.valueLabels["q6_labels"].contains("3=High"));
    EXPECT_TRUE(dta.valueLabels["q6_labels"].contains(".b=Not asked"));
    // 2024-01-01 10:30, in seconds since 1582-10-14 and in milliseconds since 1960.
    EXPECT_EQ(sav.cells["date"][0].toDouble(), 13923484200.0);
    EXPECT_EQ(dta.cells["date"][0].toDouble(), 2019724200000.0);
}

TEST_F(LabelledFiles, TakeTextsOfAnyLengthAndNumbersBelowZero) {
    const QString text = QString(1500, QChar(0x159)) + "end"; // 3003 bytes
    file_.Run("UPDATE respondent_responses SET SimpleResponse = ? WHERE QuestionID = 7 AND "
              "RespondentID = 2",
              {text});
    file_.Run("UPDATE respondent_responses SET SimpleResponse = '-92' WHERE QuestionID = 3 AND "
              "RespondentID = 2");
    file_.Run("UPDATE respondent_responses SET SimpleResponse = ? WHERE QuestionID = 7 AND "
              "RespondentID = 3",
              {QString(20000, QChar(0x159))});
    WriteSav(file_, Path("a.sav"), {}, {});
    WriteDta(file_, Path("a.dta"), {}, {});
    const ReadBack sav = ReadSav(Path("a.sav"));
    const ReadBack dta = ReadDta(Path("a.dta"));
    EXPECT_EQ(sav.cells["q7"][1], text);
    EXPECT_EQ(dta.cells["q7"][1], text);
    EXPECT_EQ(sav.cells["q7"][2], QString(16383, QChar(0x159)));
    EXPECT_EQ(dta.cells["q7"][2].size(), 20000);
    EXPECT_EQ(sav.cells["q3"][1], "-92");
    EXPECT_EQ(dta.cells["q3"][1], "-92");
    const Codebook codebook(file_);
    EXPECT_EQ(codebook.columns[5].name, "q3");
    EXPECT_EQ(codebook.columns[5].leftEmpty, -991);
}

TEST_F(LabelledFiles, HoldTheChosenRespondentsAndTheirWeights) {
    statistics::Sample sample;
    for (int i = 0; i < 12; ++i) {
        sample.chosen.push_back(i % 2);
        sample.weights.push_back(i + 0.5);
    }
    WriteSav(file_, Path("a.sav"), sample, {});
    const ReadBack sav = ReadSav(Path("a.sav"));
    EXPECT_EQ(sav.cells["id"], (QStringList{"2", "4", "6", "8", "10", "12"}));
    EXPECT_EQ(sav.cells["weight"], (QStringList{"1.5", "3.5", "5.5", "7.5", "9.5", "11.5"}));
}

// That files are replaced only by whole ones, the tests of the command that writes them see.
TEST_F(LabelledFiles, AScriptHasItsAnswersBesideItAndReplacesNobodyElses) {
    WriteR(file_, Path("a.R"), {}, {});
    EXPECT_TRUE(test::BytesOf(Path("a-answers.csv")).startsWith("id,date,source,q1,"));
    EXPECT_TRUE(test::BytesOf(Path("a.R")).contains("\"a-answers.csv\""));
    WriteR(file_, Path("a.R"), {}, {}); // its own may go
    ASSERT_TRUE(QFile::remove(Path("a.R")));
    EXPECT_THROW(WriteR(file_, Path("a.R"), {}, {}), Failure);
}

TEST_F(LabelledFiles, ShowTextsAsTexts) {
    file_.Run("UPDATE response SET name = '<b>\"&' WHERE id = 11");
    WriteCodebook(file_, Path("a.html"), {}, {});
    EXPECT_TRUE(test::BytesOf(Path("a.html")).contains("<li>1 = &lt;b&gt;&quot;&amp;</li>"));
    WriteR(file_, Path("a.R"), {}, {});
    EXPECT_TRUE(test::BytesOf(Path("a.R")).contains("names(labels) <- c(\"<b>\\\"&\", \"South\""));
    EXPECT_EQ(Utf8UpTo(QString::fromUtf8("aé😀"), 6), "aé");
    EXPECT_EQ(Utf8UpTo(QString::fromUtf8("aé😀"), 7), "aé😀");
}

} // namespace
} // namespace pollarix::labelled
