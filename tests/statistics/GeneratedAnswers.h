// A survey of every kind of question with any number of respondents, the same ones each time: what
// they answer hangs together a little, so that tests find something and are not sure of it. For the
// tests of statistics and for the tool that holds them against other programs.
#pragma once

#include <QString>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

#include "platform/database/Database.h"

namespace pollarix::test {

// q1 region, q2 sex, q3 age, q4 uses (ticks), q5 four statements, q6 schooling, q7 remarks. Who is
// from Abroad skips q3 and q4.
class GeneratedAnswers {
  public:
    explicit GeneratedAnswers(Connection& survey) : survey_(survey) {
        for (const char* statement : Design)
            survey.Run(statement);
    }

    void Add(int respondents) {
        WriteBatch batch(survey_);
        TableInsert respondent(survey_, "respondent", {"submitteddate", "source"});
        TableInsert answer(
            survey_, "respondent_responses",
            {"RespondentID", "QuestionID", "ResponseID", "SimpleResponse", "ResponseMatrixID"});
        for (int i = 0; i < respondents; ++i) {
            const QString date = QString("2024-%1-%2 1%3:30:00.000")
                                     .arg(1 + i % 12, 2, 10, QChar('0'))
                                     .arg(1 + i % 28, 2, 10, QChar('0'))
                                     .arg(i % 10);
            const std::int64_t id = respondent.Add({date, i % 3 ? "Web" : "Manual Entry"});
            const auto give = [&](int question, int response, const QString& text = "",
                                  DbValue point = nullptr) {
                answer.Add({id, question, response, text, point});
            };
            const double mind = Normal();
            const int region = Pick({0.4, 0.3, 0.2, 0.1});
            const int sex = Below(0.5 + 0.1 * mind) ? 0 : 1;
            give(1, 11 + region);
            if (!Below(0.05))
                give(2, 21 + sex);
            if (region != 3) {
                const int age = std::clamp(
                    static_cast<int>(std::lround(45 + 12 * Normal() + 3 * sex + 2 * region)), 16,
                    95);
                give(3, 1, Below(0.06) ? "" : QString::number(age) + (Below(0.3) ? ".5" : ""));
                for (int use = 0; use < 4; ++use)
                    if (Below(0.25 + 0.1 * use + 0.05 * sex))
                        give(4, 41 + use);
            }
            for (int item = 0; item < 4; ++item)
                if (!Below(0.03))
                    give(5, 51 + item, "",
                         501 + std::clamp(
                                   static_cast<int>(std::lround(2 + 0.7 * mind + 0.9 * Normal())),
                                   0, 4));
            give(6, 61 + std::clamp(static_cast<int>(std::lround(1 + 0.2 * mind + 0.8 * Normal())),
                                    0, 2));
            give(7, 1, i % 4 ? QString("Čau \"%1\", line\r\nbreak").arg(i) : "");
        }
        batch.Commit();
    }

  private:
    static constexpr std::array<const char*, 4> Design = {
        R"sql(INSERT INTO question (id, questionno, qtype, pos, question) VALUES
            (1, '1', 2, 1, '{\rtf1\ansi Which \b region\b0  are you from?}'),
            (2, '2', 2, 2, 'And you are?'),
            (3, '3', 0, 3, 'How old are you?'),
            (4, '4', 1, 4, 'What do you use?'),
            (8, NULL, 4, 5, 'Now some statements.'),
            (5, '5', 3, 6, 'How far do you agree?'),
            (6, '6', 2, 7, 'Your schooling?'),
            (7, '7', 0, 8, 'Anything else?'))sql",
        R"sql(INSERT INTO response
            (id, questionid, name, pos, responseMatrixGroupID, LogicJumpToQuestionID) VALUES
            (11, 1, 'North', 1, 1, NULL), (12, 1, 'South', 2, 1, NULL), (13, 1, 'West', 3, 1, NULL),
            (14, 1, 'Abroad', 4, 1, 8), (21, 2, 'Woman', 1, 1, NULL), (22, 2, 'Man', 2, 1, NULL),
            (41, 4, 'Train', 1, 1, NULL), (42, 4, 'Bus', 2, 1, NULL), (43, 4, 'Bicycle', 3, 1, NULL),
            (44, 4, 'Kůň', 4, 1, NULL), (51, 5, 'It is easy', 1, 50, NULL),
            (52, 5, 'It is quick', 2, 50, NULL), (53, 5, 'It is cheap', 3, 50, NULL),
            (54, 5, 'It is nice', 4, 50, NULL), (61, 6, 'Basic', 1, 1, NULL),
            (62, 6, 'Middle', 2, 1, NULL), (63, 6, 'High', 3, 1, NULL))sql",
        "INSERT INTO responsematrixgroup (id, name) VALUES (50, 'Five points')",
        R"sql(INSERT INTO responsematrix (id, name, ResponseMatrixGroupID, pos) VALUES
            (501, 'Not at all', 50, 0), (502, 'Little', 50, 1), (503, 'Half', 50, 2),
            (504, 'Rather', 50, 3), (505, 'Fully', 50, 4))sql"};

    // Generators of our own: the standard library's distributions differ between systems.
    double Uniform() {
        state_ = state_ * 6364136223846793005ULL + 1442695040888963407ULL;
        return static_cast<double>(state_ >> 11U) / 9007199254740992.0;
    }
    bool Below(double chance) { return Uniform() < chance; }
    double Normal() { // nearly
        double sum = -6;
        for (int i = 0; i < 12; ++i)
            sum += Uniform();
        return sum;
    }
    int Pick(std::initializer_list<double> chances) {
        double left = Uniform();
        int place = 0;
        for (const double chance : chances) {
            if (left < chance)
                return place;
            left -= chance;
            ++place;
        }
        return 0;
    }

    Connection& survey_;
    std::uint64_t state_ = 20240305;
};

} // namespace pollarix::test
