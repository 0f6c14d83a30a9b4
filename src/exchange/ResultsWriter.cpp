#include "exchange/ResultsWriter.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace pollarix::exchange {

namespace {

// All that the program's reader looks for in a line.
constexpr std::array<std::string_view, 14> Tags = {
    "<userresponse>", "</userresponse>", "<r>",           "</r>",    "<DatabaseID>",
    "</DatabaseID>",  "<QuestionNo>",    "</QuestionNo>", "<QType>", "</QType>",
    "<Response>",     "</Response>",     "<text>",        "</text>"};

// The reader takes a line to end in CR LF; with LF alone an answer stays in its line. A tag is
// broken by a blank. Both are done last, on the bytes as they go out.
std::string OneLine(std::string_view answer, LostLetters& lost) {
    const std::string bytes = Windows1252FromUtf8(answer, lost);
    std::string line;
    line.reserve(bytes.size());
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const char c = bytes[i];
        if (c == '\r') {
            if (i + 1 == bytes.size() || bytes[i + 1] != '\n')
                line += '\n';
        } else if (c == '\n' || c == '\t' || static_cast<unsigned char>(c) >= 0x20) {
            line += c;
        }
    }
    for (std::size_t at = line.find('<'); at != std::string::npos; at = line.find('<', at + 1))
        if (std::any_of(Tags.begin(), Tags.end(), [&](std::string_view tag) {
                return std::string_view(line).substr(at).starts_with(tag);
            }))
            line.insert(at + 1, 1, ' ');
    return line;
}

void Value(std::string& file, const char* tag, std::string_view value) {
    file.append("\t\t<").append(tag).append(">").append(value);
    file.append("</").append(tag).append(">\r\n");
}

} // namespace

std::string ResultsOf(const Questionnaire& questionnaire, const Answers& answers,
                      LostLetters& lost) {
    std::string file = "<userresponse>\r\n";
    for (std::size_t i = 0; i < questionnaire.questions.size(); ++i) {
        const Question& q = questionnaire.questions[i];
        const Answer& answer = answers.at(i);
        const std::string id = std::to_string(q.id);
        file += "\t<r>\r\n";
        Value(file, "DatabaseID", id);
        // The program takes a question's id from the tag of its number.
        Value(file, "QuestionNo", id);
        Value(file, "QType", std::to_string(static_cast<int>(q.kind)));
        if (q.kind == Kind::OpenEnded)
            Value(file, "text", OneLine(answer.text, lost));
        for (const std::size_t place : answer.ticked)
            Value(file, "Response", std::to_string(q.choices.at(place).id));
        for (std::size_t row = 0; row < answer.points.size(); ++row)
            if (answer.points[row] >= 0)
                Value(file, "Response",
                      std::to_string(q.scale.at(static_cast<std::size_t>(answer.points[row])).id) +
                          "," + std::to_string(q.choices.at(row).id));
        file += "\t</r>\r\n";
    }
    return file + "</userresponse>\r\n";
}

} // namespace pollarix::exchange
