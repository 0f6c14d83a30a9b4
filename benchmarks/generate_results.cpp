#include "generate_results.h"

#include <QFile>

#include <array>
#include <fstream>
#include <stdexcept>
#include <string>

namespace pollarix::benchmarks {

namespace {

constexpr int FirstPoint = 1; // of scale 2, the template's first
constexpr int Points = 5;

struct Question {
    int id;
    int kind;
    int responses;
    int answers;
};
constexpr std::array<Question, 10> Questions = {{{1, 0, 0, 1},
                                                 {2, 2, 6, 1},
                                                 {3, 1, 7, 3},
                                                 {4, 4, 0, 0},
                                                 {5, 3, 3, 3},
                                                 {6, 0, 0, 1},
                                                 {7, 2, 4, 1},
                                                 {8, 1, 7, 3},
                                                 {9, 3, 3, 3},
                                                 {10, 0, 0, 1}}};

constexpr std::array<std::string_view, 6> Texts = {
    "The soup of the day.",
    "Friendly staff, good food, and a place to sit in the sun.",
    "Nothing",
    "Caf\xe9 cr\xe8me for 3 \x80, \x93please\x94",
    "More seats, please; in the evening it is hard to find one for a party of four or more.",
    "",
};

GeneratedAnswer AnswerOf(const Question& question, int respondent, int number) {
    const auto chance = static_cast<unsigned>(respondent * 31 + question.id * 7 + number);
    switch (question.kind) {
    case 0:
        return {0, question.id, 1, Texts[chance % Texts.size()], 0};
    case 3:
        return {3,
                question.id,
                question.id * 10 + 1 + number,
                {},
                FirstPoint + static_cast<int>(chance % Points)};
    default: // ticks run on from the first, around the end, so that none comes twice
        return {question.kind,
                question.id,
                question.id * 10 + 1 + (respondent + number) % question.responses,
                {},
                0};
    }
}

} // namespace

void ForEachAnswer(int respondent, const std::function<void(const GeneratedAnswer&)>& take) {
    for (const Question& question : Questions)
        for (int number = 0; number < question.answers; ++number)
            take(AnswerOf(question, respondent, number));
}

std::int64_t GenerateResults(const QString& path, int respondents) {
    std::ofstream file(QFile::encodeName(path).toStdString(), std::ios::binary);
    for (int respondent = 1; respondent <= respondents; ++respondent) {
        file << "<userresponse>\r\n";
        for (const Question& question : Questions) {
            file << "\t<r>\r\n\t\t<DatabaseID>" << question.id
                 << "</DatabaseID>\r\n\t\t<QuestionNo>" << question.id
                 << "</QuestionNo>\r\n\t\t<QType>" << question.kind << "</QType>\r\n";
            for (int number = 0; number < question.answers; ++number) {
                const GeneratedAnswer answer = AnswerOf(question, respondent, number);
                if (answer.kind == 0)
                    file << "\t\t<text>" << answer.text << "</text>\r\n";
                else if (answer.kind == 3)
                    file << "\t\t<Response>" << answer.point << ',' << answer.response
                         << "</Response>\r\n";
                else
                    file << "\t\t<Response>" << answer.response << "</Response>\r\n";
            }
            file << "\t</r>\r\n";
        }
        file << "</userresponse>\r\n";
    }
    const std::int64_t size = file.tellp();
    if (!file.flush())
        throw std::runtime_error("can't write " + path.toStdString());
    return size;
}

} // namespace pollarix::benchmarks
