// What the check finds in surveys that have it, and that it finds nothing in a sound one.
#include "document/SurveyCheck.h"

#include <gtest/gtest.h>

#include "document/Kinds.h"
#include "support/PrintQt.h"

using namespace pollarix;

namespace {

struct Answer {
    QString text;
    int jump = -1; // place of the target in the survey, from 0; -1 for none
};

// Keys are the places: "q0", "q1" ...
SurveySnapshot::Question Q(SurveySnapshot& survey, std::int32_t qType, const QString& text,
                           const std::vector<Answer>& answers = {}, std::int16_t scale = 2) {
    SurveySnapshot::Question q;
    q.Key = QString("q%1").arg(survey.questions.size());
    q.qType = qType;
    q.Text = text;
    q.ResponseMatrixGroupID = scale;
    for (const Answer& answer : answers)
        q.responses.push_back(
            {-1, answer.text, -1, answer.jump < 0 ? QString() : QString("q%1").arg(answer.jump)});
    survey.questions.push_back(q);
    return q;
}

const SurveyScales Scales{{{2, "Agreement"}, {7, "Empty"}},
                          {{1, "Good", 2, 0}, {2, "Bad \u2639", 2, 1}}};

// "place.response kind" of all findings; problems have a "!".
QStringList Found(const SurveySnapshot& survey) {
    static constexpr const char* Names[] = {
        "EmptyText",     "FewResponses", "EqualResponses", "NoSubQuestions", "NoPoints",
        "JumpToDeleted", "JumpToItself", "Loop",           "NotReached",     "LostLetters"};
    QStringList found;
    for (const Finding& finding : CheckSurvey(survey, Scales))
        found << QString("%1.%2 %3%4")
                     .arg(finding.key.mid(1))
                     .arg(finding.response)
                     .arg(Names[static_cast<int>(finding.kind)],
                          finding.gravity == Finding::Gravity::Problem ? "!" : "");
    return found;
}

} // namespace

TEST(SurveyCheckTest, ASoundSurveyHasNoFindings) {
    SurveySnapshot survey;
    Q(survey, kind::Radio, "Been here?", {{"yes"}, {"no", 2}});
    Q(survey, kind::OpenEnded, "When? \u20ac \u201cso\u201d");
    Q(survey, kind::Check, "Which?", {{"this"}, {"that"}});
    Q(survey, kind::Text, "{\\rtf1\\ansi Thank you.}");
    EXPECT_EQ(Found(survey), QStringList());
    EXPECT_EQ(Found({}), QStringList());
}

TEST(SurveyCheckTest, TextsAndResponses) {
    SurveySnapshot survey;
    Q(survey, kind::OpenEnded, "{\\rtf1\\ansi  \\par }");
    Q(survey, kind::Radio, "None");
    Q(survey, kind::Check, "One \u4f60\u597d", {{"only"}});
    Q(survey, kind::Radio, "Same", {{"Yes"}, {"  "}, {" yES "}, {"No"}});
    Q(survey, kind::Matrix, "Rows missing", {});
    Q(survey, kind::Matrix, "Points missing", {{"row"}}, 7);
    // The points of a scale that is in use are looked at as well. What a question of another kind
    // has kept from before is not.
    SurveySnapshot::Question& last = survey.questions[4];
    last.ResponseMatrixGroupID = 2;
    Q(survey, kind::OpenEnded, "Was a choice", {{"one"}, {"one"}, {"\u4f60"}});
    EXPECT_EQ(Found(survey),
              QStringList({"0.0 EmptyText!", "1.0 FewResponses!", "2.0 FewResponses",
                           "2.0 LostLetters!", "3.2 EmptyText!", "3.3 EqualResponses!",
                           "4.0 NoSubQuestions!", "4.0 LostLetters!", "5.0 NoPoints!"}));
    // Without a file, nothing is known of scales.
    const std::vector<Finding> unknown = CheckSurvey(survey, std::nullopt);
    EXPECT_EQ(unknown.size(), 7u);
    EXPECT_EQ(CountProblems(unknown), 6);
    EXPECT_TRUE(unknown[3].words.endsWith(": \u4f60 \u597d")) << unknown[3].words.toStdString();
}

TEST(SurveyCheckTest, JumpsAndTheWaysThroughTheSurvey) {
    SurveySnapshot survey;
    Q(survey, kind::Radio, "Past", {{"a", 2}, {"b", 3}});
    Q(survey, kind::OpenEnded, "Only who answers nothing comes here");
    Q(survey, kind::Radio, "Itself", {{"again", 2}, {"on"}});
    Q(survey, kind::Radio, "Back", {{"back", 2}, {"on"}, {"gone", 77}});
    Q(survey, kind::OpenEnded, "Into the circle");
    Q(survey, kind::Radio, "Nowhere out", {{"back", 4}, {"back too", 4}});
    Q(survey, kind::Check, "Many: no jumps", {{"a", 0}, {"b", 0}});
    survey.questions[0].responses[0].LogicJumpToQuestionID = 12; // as read; the key counts
    // As read from a file whose target is gone.
    survey.questions[2].responses[1].LogicJumpToQuestionID = 999;
    EXPECT_EQ(Found(survey),
              QStringList({"1.0 NotReached!", "2.1 JumpToItself!", "2.2 JumpToDeleted!", "3.1 Loop",
                           "3.3 JumpToDeleted!", "5.1 Loop!", "5.2 Loop!", "6.0 NotReached!"}));
}

// As many questions as a survey may hold, in one circle: neither recursion nor anything quadratic.
TEST(SurveyCheckTest, TheLongestSurvey) {
    SurveySnapshot survey;
    constexpr int Longest = 32767;
    for (int i = 0; i < Longest; ++i)
        Q(survey, kind::Radio, "Again?", {{"yes", 0}, {"no"}});
    const QStringList found = Found(survey);
    EXPECT_EQ(found.size(), Longest);
    EXPECT_EQ(found.first(), "0.1 JumpToItself!");
    EXPECT_EQ(found.last(), QString("%1.1 Loop").arg(Longest - 1));
}
