// A survey of every kind of question with respondents, all of it by chance: what a person may write
// into it, and what makes trouble in a table.
#pragma once

#include <QStringList>

#include <random>
#include <set>

#include "platform/database/Database.h"

namespace pollarix::test {

class RandomSurvey {
  public:
    RandomSurvey(Connection& survey, unsigned seed) : survey_(survey), random_(seed) {}

    void Fill(int questions, int respondents) {
        WriteBatch batch(survey_);
        const std::int64_t scale = AddScale();
        const std::int64_t otherScale = AddScale();
        for (int pos = 1; pos <= questions; ++pos)
            AddQuestion(pos, pos <= 5 ? pos - 1 : Below(5), Below(2) ? scale : otherScale);
        for (int i = 0; i < respondents; ++i)
            AddRespondent(i);
        batch.Commit();
    }

  private:
    struct Question {
        std::int64_t id = 0;
        int kind = 0;
        std::int64_t scale = 0;
        std::vector<std::int64_t> responses;
    };

    int Below(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }

    QString Text(int longest) {
        static const QStringList parts = {
            "a", "Ž",          "word", " ",  ",",    ";",  "\"", "'",      "=1",
            "+", "-",          "@",    "\t", "\r\n", "\n", "|",  "0",      "12.5",
            "€", "\U0001F600", "No",   "1",  "<b>",  "&",  "\\", "_x0041_"};
        QString text;
        for (int i = Below(longest + 1); i > 0; --i)
            text += parts[Below(static_cast<int>(parts.size()))];
        return text;
    }
    // Told apart by letters and digits alone, as two answers of one question should be.
    QString Name(std::set<QString>& taken) {
        for (;;) {
            const QString name = Text(3) + QString("n%1").arg(Below(1000)) + Text(1);
            if (taken.insert(name.simplified().toCaseFolded()).second)
                return name;
        }
    }

    std::int64_t AddScale() {
        const std::int64_t id =
            TableInsert(survey_, "responsematrixgroup", {"name"}).Add({Text(3)});
        std::set<QString> taken;
        std::vector<std::int64_t>& points = points_[id];
        for (int pos = 0; pos < 2 + Below(5); ++pos)
            points.push_back(
                TableInsert(survey_, "responsematrix", {"name", "ResponseMatrixGroupID", "pos"})
                    .Add({Name(taken), id, pos}));
        return id;
    }

    void AddQuestion(int pos, int kind, std::int64_t scale) {
        Question question;
        question.kind = kind;
        question.scale = scale;
        question.id = TableInsert(survey_, "question", {"question", "questionno", "qtype", "pos"})
                          .Add({Text(6) + "?",
                                kind == 4 ? DbValue() : DbValue(QString::number(pos)), kind, pos});
        std::set<QString> taken;
        if (kind > 0 && kind < 4)
            for (int i = 1 + Below(5); i > 0; --i)
                question.responses.push_back(
                    TableInsert(survey_, "response",
                                {"questionid", "name", "pos", "responseMatrixGroupID"})
                        .Add({question.id, Name(taken), 6 - i,
                              kind == 3 ? DbValue(scale) : DbValue(1)}));
        questions_.push_back(std::move(question));
    }

    void AddRespondent(int number) {
        const std::int64_t id = TableInsert(survey_, "respondent", {"submitteddate", "source"})
                                    .Add({QString("2024-%1-%2 %3:07:0%4.000")
                                              .arg(1 + Below(12), 2, 10, QChar('0'))
                                              .arg(1 + Below(28), 2, 10, QChar('0'))
                                              .arg(Below(24), 2, 10, QChar('0'))
                                              .arg(number % 10),
                                          Below(2) ? "Web" : "Manual Entry"});
        TableInsert answers(
            survey_, "respondent_responses",
            {"RespondentID", "QuestionID", "ResponseID", "SimpleResponse", "ResponseMatrixID"});
        for (const Question& question : questions_) {
            if (Below(5) == 0)
                continue;
            if (question.kind == 0)
                answers.Add({id, question.id, 1, Text(8), nullptr});
            for (const std::int64_t response : question.responses) {
                if (Below(2))
                    continue;
                const std::vector<std::int64_t>& points = points_[question.scale];
                answers.Add({id, question.id, response, "",
                             question.kind == 3 ? DbValue(points[static_cast<std::size_t>(
                                                      Below(static_cast<int>(points.size())))])
                                                : DbValue()});
                if (question.kind == 2)
                    break;
            }
        }
    }

    Connection& survey_;
    std::mt19937 random_;
    std::vector<Question> questions_;
    std::map<std::int64_t, std::vector<std::int64_t>> points_;
};

} // namespace pollarix::test
