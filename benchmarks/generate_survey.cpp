#include "generate_survey.h"

#include <SQLiteCpp/SQLiteCpp.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>

namespace pollarix::benchmarks {

namespace {

// Questions 1 to 10, responses numbered by tens behind their question, scale 2 of the template.
constexpr const char* Questions = R"sql(
INSERT INTO question (id, questionno, qtype, pos, question) VALUES
    (1, '1', 0, 1, '{\rtf1\ansi{\fonttbl{\f0 Arial;}}\f0\fs20 What do you \b like\b0  best?}'),
    (2, '2', 2, 2, '{\rtf1\ansi{\fonttbl{\f0 Arial;}}\f0\fs20 How did you hear of us?}'),
    (3, '3', 1, 3, '{\rtf1\ansi{\fonttbl{\f0 Arial;}}\f0\fs20 Which of these do you use?}'),
    (4, '', 4, 4, '{\rtf1\ansi{\fonttbl{\f0 Arial;}}\f0\fs20 Now a few questions on service.}'),
    (5, '4', 3, 5, '{\rtf1\ansi{\fonttbl{\f0 Arial;}}\f0\fs20 How far do you agree?}'),
    (6, '5', 0, 6, '{\rtf1\ansi{\fonttbl{\f0 Arial;}}\f0\fs20 What should we change?}'),
    (7, '6', 2, 7, '{\rtf1\ansi{\fonttbl{\f0 Arial;}}\f0\fs20 Would you come again?}'),
    (8, '7', 1, 8, '{\rtf1\ansi{\fonttbl{\f0 Arial;}}\f0\fs20 Which days suit you?}'),
    (9, '8', 3, 9, '{\rtf1\ansi{\fonttbl{\f0 Arial;}}\f0\fs20 And these?}'),
    (10, '9', 0, 10, '{\rtf1\ansi{\fonttbl{\f0 Arial;}}\f0\fs20 Anything else?}');
)sql";

struct Choices {
    int question;
    int responses;
    int answers; // ticks, or answered sub questions
    bool matrix;
};
constexpr std::array<Choices, 6> AllChoices = {{{2, 6, 1, false},
                                                {3, 7, 3, false},
                                                {5, 3, 3, true},
                                                {7, 4, 1, false},
                                                {8, 7, 3, false},
                                                {9, 3, 3, true}}};
constexpr std::array<int, 3> OpenEnded = {1, 6, 10};

constexpr std::array<const char*, 8> Texts = {
    "The soup of the day.",
    "Friendly staff, good food, and a place to sit in the sun.",
    "Nothing",
    "It takes \"a while\" until one is served, at noon at least.",
    "Žluťoučký kůň, přesně tak",
    "First line\r\nsecond line",
    "More seats, please; in the evening it is hard to find one for a party of four or more.",
    "",
};

// A small generator of our own: the standard library's distributions differ between systems.
class Numbers {
  public:
    int Below(int limit) {
        state_ = state_ * 6364136223846793005ULL + 1442695040888963407ULL;
        return static_cast<int>((state_ >> 33) % static_cast<std::uint64_t>(limit));
    }

  private:
    std::uint64_t state_ = 20240305;
};

std::string DateOf(int respondent) {
    std::array<char, 32> text{};
    const int minutes = respondent * 7;
    std::snprintf(text.data(), text.size(), "20%02d-%02d-%02d %02d:%02d:%02d.%03d",
                  10 + minutes / 60 / 24 / 28 / 12 % 80, 1 + minutes / 60 / 24 / 28 % 12,
                  1 + minutes / 60 / 24 % 28, minutes / 60 % 24, minutes % 60, respondent % 60,
                  respondent % 1000);
    return text.data();
}

class Generator {
  public:
    explicit Generator(SQLite::Database& survey)
        : survey_(survey),
          respondent_(survey, "INSERT INTO respondent (id, submitteddate, source) VALUES (?,?,?)"),
          answer_(survey, "INSERT INTO respondent_responses (RespondentID, QuestionID, ResponseID, "
                          "SimpleResponse, ResponseMatrixID) VALUES (?,?,?,?,?)") {
        SQLite::Statement points(
            survey, "SELECT min(id), count(*) FROM responsematrix WHERE ResponseMatrixGroupID = 2");
        points.executeStep();
        firstPoint_ = points.getColumn(0);
        points_ = points.getColumn(1);
    }

    void AddQuestions() {
        survey_.exec(Questions);
        SQLite::Statement response(survey_, "INSERT INTO response (id, questionid, name, pos, "
                                            "responseMatrixGroupID) VALUES (?,?,?,?,?)");
        for (const Choices& choices : AllChoices) {
            for (int i = 1; i <= choices.responses; ++i) {
                response.bind(1, choices.question * 10 + i);
                response.bind(2, choices.question);
                response.bind(3, (choices.matrix ? "Statement " : "Answer ") + std::to_string(i) +
                                     " of question " + std::to_string(choices.question));
                response.bind(4, i);
                response.bind(5, choices.matrix ? 2 : 1);
                response.exec();
                response.reset();
            }
        }
    }

    void AddRespondent(int id) {
        respondent_.bind(1, id);
        respondent_.bind(2, DateOf(id));
        respondent_.bindNoCopy(3, id % 3 ? "Manual Entry" : "Web");
        respondent_.exec();
        respondent_.reset();
        answer_.bind(1, id);
        std::size_t open = 0;
        for (const Choices& choices : AllChoices) {
            if (open < OpenEnded.size() && OpenEnded[open] < choices.question)
                AddOpenEnded(OpenEnded[open++]);
            AddChoices(choices);
        }
        while (open < OpenEnded.size())
            AddOpenEnded(OpenEnded[open++]);
    }

  private:
    void AddOpenEnded(int question) {
        Add(question, 1, Texts[numbers_.Below(static_cast<int>(Texts.size()))]);
    }

    // Ticks run on from the first, around the end, so that none comes twice.
    void AddChoices(const Choices& choices) {
        const int first = choices.matrix ? 0 : numbers_.Below(choices.responses);
        for (int i = 0; i < choices.answers; ++i) {
            const int response = choices.question * 10 + 1 + (first + i) % choices.responses;
            if (choices.matrix)
                answer_.bind(5, firstPoint_ + numbers_.Below(points_));
            else
                answer_.bind(5);
            Add(choices.question, response, "");
        }
        answer_.bind(5);
    }

    void Add(int question, int response, const char* text) {
        answer_.bind(2, question);
        answer_.bind(3, response);
        answer_.bindNoCopy(4, text);
        answer_.exec();
        answer_.reset();
    }

    SQLite::Database& survey_;
    SQLite::Statement respondent_;
    SQLite::Statement answer_;
    Numbers numbers_;
    int firstPoint_ = 0;
    int points_ = 0;
};

void CopyTemplate(const QString& blank, const QString& path) {
    using std::filesystem::perms;
    std::filesystem::copy_file(blank.toStdString(), path.toStdString(),
                               std::filesystem::copy_options::overwrite_existing);
    std::filesystem::permissions(path.toStdString(), perms::owner_read | perms::owner_write);
}

} // namespace

void GenerateSurvey(const QString& blank, const QString& path, int respondents) {
    CopyTemplate(blank, path);
    SQLite::Database survey(path.toStdString(), SQLite::OPEN_READWRITE);
    survey.exec("PRAGMA synchronous = OFF");
    SQLite::Transaction all(survey);
    {
        Generator generator(survey);
        generator.AddQuestions();
        for (int id = 1; id <= respondents; ++id)
            generator.AddRespondent(id);
    }
    all.commit();
}

void GenerateQuestions(const QString& blank, const QString& path, int questions, int responses) {
    CopyTemplate(blank, path);
    SQLite::Database survey(path.toStdString(), SQLite::OPEN_READWRITE);
    SQLite::Transaction all(survey);
    SQLite::Statement question(survey, "INSERT INTO question (id, questionno, qtype, pos, question)"
                                       " VALUES (?1, ?1, 1 + ?1 % 3, ?1, ?2)");
    SQLite::Statement response(survey, "INSERT INTO response (id, questionid, name, pos, "
                                       "responseMatrixGroupID, LogicJumpToQuestionID) VALUES "
                                       "((?1 - 1) * ?4 + ?2, ?1, 'Response ' || ?2, ?2, "
                                       "iif(?1 % 3 = 2, 2, 1), iif(?1 % 3 = 1, ?3, NULL))");
    for (int q = 1; q <= questions; ++q) {
        question.bind(1, q);
        question.bind(
            2, "{\\rtf1\\ansi{\\fonttbl{\\f0 Arial;}}\\f0\\fs20\\b How satisfied are you with "
               "item " +
                   std::to_string(q) + " of our list?\\b0\\par Please be frank.}");
        question.exec();
        question.reset();
        for (int r = 1; r <= responses; ++r) {
            response.bind(1, q);
            response.bind(2, r);
            response.bind(3, std::min(q + r, questions));
            response.bind(4, responses);
            response.exec();
            response.reset();
        }
    }
    all.commit();
}

} // namespace pollarix::benchmarks
