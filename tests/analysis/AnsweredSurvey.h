// A survey file of every kind of question with a few respondents, in a directory of its own, and
// what a command needs around it.
#pragma once

#include <QLocale>

#include "platform/desktop/LongWork.h"
#include "support/Bytes.h"
#include "support/PrintQt.h"
#include "support/SurveyFiles.h"

namespace pollarix::test {

// Keeps what was shown, and runs what a user might do meanwhile.
class RecordedProgress : public ProgressDisplay {
  public:
    void ShowProgress(const QString& text) override {
        shown << text;
        if (meanwhile)
            meanwhile();
    }
    void ClearProgress() override { ++cleared; }

    QStringList shown;
    int cleared = 0;
    std::function<void()> meanwhile;
};

// Question ids differ from positions, and the places of answers from the order of their ids, so
// that a mix-up shows. The second respondent is the older one and has answered nothing that is
// still asked. The first has given its answers from the last question to the first, ticked the last
// soup first, left out a sub question, and has a second text for an open question, a tick on
// another question's answer, and an answer to a question that is gone.
inline constexpr const char* SurveyOfEveryKind = R"sql(
INSERT INTO question (id, questionno, qtype, pos, question) VALUES
    (11, '1', 0, 1, '{\rtf1\ansi What do you \b think\b0  of us?}'),
    (12, NULL, 4, 2, '{\rtf1\ansi Now about \i soup\i0.}'),
    (15, '2', 1, 3, 'Which soups, if any?'),
    (14, '3', 2, 4, '{\rtf1\ansi The best one \u9786??}'),
    (13, '4', 3, 5, 'Rate us'),
    (16, NULL, 0, 6, 'Anything else?');
INSERT INTO response (id, questionid, name, pos, responseMatrixGroupID) VALUES
    (1, 15, 'Tomato', 2, 1), (2, 15, 'Pea, "green"', 1, 1), (3, 15, 'Leek', 3, 1),
    (4, 14, 'Tomato', 1, 1), (5, 14, 'Leek', 2, 1),
    (8, 13, 'Service', 1, 50), (7, 13, 'Price', 2, 50), (6, 13, 'Taste', 3, 51);
INSERT INTO responsematrix (id, name, ResponseMatrixGroupID, pos) VALUES
    (501, 'Bad', 50, 2), (502, 'Good', 50, 1), (511, 'Yes', 51, 0), (512, 'No', 51, 1),
    (513, 'Both', 51, 2);
INSERT INTO respondent (id, submitteddate, source) VALUES
    (1, '2024-03-05 14:30:15.250', 'Manual Entry'), (2, '2024-03-04 00:00:00.000', 'Web');
INSERT INTO respondent_responses
    (RespondentID, QuestionID, ResponseID, SimpleResponse, ResponseMatrixID) VALUES
    (1, 16, 1, '', NULL),
    (1, 13, 6, '', 512), (1, 13, 8, '', 501), (1, 13, 8, '', 502),
    (1, 14, 5, '', NULL),
    (1, 15, 3, '', NULL), (1, 15, 2, '', NULL), (1, 15, 4, '', NULL),
    (1, 11, 1, 'Fine, "really"' || char(13, 10) || 'Žluťoučký €', NULL),
    (1, 11, 1, 'second', NULL),
    (2, 99, 1, 'gone', NULL);
)sql";

class AnsweredSurvey : public testing::Test {
  protected:
    AnsweredSurvey() {
        QLocale::setDefault(QLocale("de_DE"));
        Survey().Open(program_.BlankSurvey("survey.plxs"));
        Sql(SurveyOfEveryKind);
    }
    ~AnsweredSurvey() override { QLocale::setDefault(QLocale::c()); }

    QString Path(const QString& name) const { return program_.Path(name); }
    Connection& Survey() { return program_.state.SurveyConnection; }

    // Runs statements that each end in ";" and a line end, but for the last.
    void Sql(const QString& statements) {
        WriteBatch batch(Survey());
        for (const QString& statement : statements.trimmed().split(";\n"))
            Survey().Run(statement.toUtf8());
        batch.Commit();
    }
    // Respondents with one answer, numbered on from those that are there.
    void AddRespondents(int count, int lengthOfAnswer) {
        WriteBatch batch(Survey());
        TableInsert respondents(Survey(), "respondent", {"source"});
        TableInsert answers(Survey(), "respondent_responses",
                            {"RespondentID", "QuestionID", "ResponseID", "SimpleResponse"});
        for (int i = 0; i < count; ++i)
            answers.Add({respondents.Add({"Web"}), 11, 1, QString(lengthOfAnswer, 'x')});
        batch.Commit();
    }

    TestState program_;
    QueuedDialogs& dialogs_ = program_.dialogs;
    RecordedProgress progress_;
    LongWork work_{progress_};
};

} // namespace pollarix::test
