#include <gtest/gtest.h>

#include "server/survey/SentAnswers.h"
#include "server/survey/StoredAnswers.h"

using namespace pollarix::exchange;
using namespace pollarix::server;

namespace {

using Fields = std::vector<std::pair<std::string, std::string>>;

const Questionnaire Survey = {{
    {12, Kind::OpenEnded, "What?", "1", 0, {}, {}},
    {13, Kind::Check, "Which?", "2", 0, {{40, "a"}, {41, "b"}, {42, "c"}}, {}},
    {14, Kind::Text, "Read", "", 0, {}, {}},
    {15, Kind::Radio, "Who?", "3", 0, {{50, "a"}, {51, "b"}}, {}},
    {16, Kind::Matrix, "How?", "4", 0, {{60, "x"}, {61, "y"}}, {{300, "good"}, {301, "bad"}}},
}};
constexpr QuestionRange All = {0, 5};

// What is stored of what was sent; "foreign" in front of what no form of ours sends.
std::string Sent(const Fields& fields, QuestionRange shown = All, const std::string& before = "") {
    const SentAnswers sent =
        ReadSentAnswers(Survey, shown, ReadStoredAnswers(Survey, before).value(), fields);
    return (sent.isForeign ? "foreign " : "") + StoredAnswers(Survey, sent.answers);
}

} // namespace

TEST(Answers, FieldsBecomeAnswers) {
    const std::string all = "12=a;13=40,42;15=51;16=61:300";
    const struct {
        Fields fields;
        QuestionRange shown;
        std::string before;
        std::string stored;
    } cases[] = {
        {{{"q12", "a"}, {"q13", "42"}, {"q13", "40"}, {"q15", "51"}, {"q16.61", "300"}},
         All,
         "",
         all},
        {{{"go", "next"}}, All, all, ""}, // all boxes unticked
        {{{"go", "next"}}, {1, 2}, all, "12=a;15=51;16=61:300"},
        {{{"q15", "50"}}, {3, 4}, all, "12=a;13=40,42;15=50;16=61:300"},
        {{{"q12", "a;\\n\r\nb\rc\td\x01\xff\x7f"}}, All, "", "12=a\\s\\\\n\\nb\\nc\td\xef\xbf\xbd"},
        // What no form of ours sends is told from what a person may do.
        {{{"q13", "40"}}, {0, 1}, "13=41", "foreign 13=41"},
        {{{"q15", "50"}, {"q15", "51"}}, All, "", "foreign 15=50"},
        {{{"q13", "40"}, {"q13", "40"}}, All, "", "foreign 13=40"},
        {{{"q13", "50"}}, All, "", "foreign "},
        {{{"q16", "300"}}, All, "", "foreign "},
        {{{"q16.60", "40"}}, All, "", "foreign "},
        {{{"q16.60", "300"}, {"q16.60", "301"}}, All, "", "foreign 16=60:300"},
        {{{"q14", "x"}}, All, "", "foreign "},
        {{{"q99", "x"}}, All, "", "foreign "},
        {{{"q", ""}}, All, "", "foreign "},
        {{{"q12.1", "x"}}, All, "", "foreign "},
    };
    for (const auto& [fields, shown, before, stored] : cases) {
        EXPECT_EQ(Sent(fields, shown, before), stored);
        const auto again = ReadStoredAnswers(Survey, Sent(fields, shown, before));
        EXPECT_EQ(again.has_value(), !stored.starts_with("foreign"));
    }

    // As long as the longest is fine, whatever its letters; one more is kept to be shown again.
    std::string longest;
    for (std::size_t i = 0; i < LongestAnswer; ++i)
        longest += "\u20ac";
    const SentAnswers fine =
        ReadSentAnswers(Survey, All, NoAnswers(Survey), Fields{{"q12", longest}});
    EXPECT_TRUE(fine.tooLong.empty());
    const SentAnswers more =
        ReadSentAnswers(Survey, All, NoAnswers(Survey), Fields{{"q12", longest + "x"}});
    EXPECT_EQ(more.tooLong, std::vector<std::size_t>{0});
    EXPECT_EQ(more.answers[0].text, longest + "x");
}

TEST(Answers, WhatWasNotStoredHereIsNotReadBack) {
    for (const char* stored :
         {"12",    "12=",      "12=a;12=b", "13=42,40",  "13=40,40",         "13=40,",
          "13=43", "15=50,51", "16=60",     "16=60:302", "16=60:300,60:301", "15=51;13=40",
          "14=x",  "99=x",     "12=a\\q",   "12=a\r",    "12=\xff",          "12=a;",
          ";",     "013=40",   "12=a\\"})
        EXPECT_FALSE(ReadStoredAnswers(Survey, stored).has_value()) << stored;
    EXPECT_FALSE(ReadStoredAnswers(Survey, "12=" + std::string(LongestAnswer + 1, 'x')));
}
