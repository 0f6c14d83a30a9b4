#include "exchange/SurveyReader.h"

#include <algorithm>
#include <charconv>
#include <initializer_list>
#include <set>
#include <string>

#include "exchange/CodePage.h"

namespace pollarix::exchange {

namespace {

constexpr std::string_view LineEnd = "\r\n";
constexpr std::size_t LongestText = 64U << 10U; // of one question, response or point
constexpr std::size_t MostQuestions = 32767;    // the program counts in 16 bits
constexpr std::size_t MostChoices = 32767;
// Buttons of all matrix questions together. Each is a line of a page that may show them all, and a
// page has to fit into memory many times over.
constexpr std::size_t MostCells = 20000;

class Reader {
  public:
    explicit Reader(std::string_view bytes) : all_(bytes) {}

    Questionnaire Read() {
        CheckBytes();
        Line("<app>", "Pollarix", "</app>", "this is no survey document of the program");
        Value("<user>", "</user>", {"<key>"});
        Value("<key>", "</key>", {"<version>"});
        Line("<version>", "1.4", "</version>", "this server reads version 1.4 only");
        Questionnaire survey;
        while (at_ < all_.size()) {
            if (survey.questions.size() == MostQuestions)
                Fail("there are too many questions");
            question_ = survey.questions.size() + 1;
            survey.questions.push_back(ReadQuestion());
        }
        question_ = 0;
        if (survey.questions.empty())
            throw DocumentFault("The survey has no questions.");
        return survey;
    }

  private:
    void CheckBytes() {
        if (all_.empty())
            throw DocumentFault("The survey document is empty.");
        if (all_.size() > LargestSurveyDocument)
            throw DocumentFault("The survey document is too long.");
        at_ = all_.find('\0');
        if (at_ != std::string_view::npos)
            Fail("there is a character of the number 0");
        at_ = 0;
        if (all_.find(LineEnd) == std::string_view::npos)
            throw DocumentFault("The lines of the survey document don't end in CR LF.");
    }

    Question ReadQuestion() {
        Question q;
        Expect("<q>\r\n");
        q.id = NewId("\t<DatabaseID>", "</DatabaseID>", questions_, "question");
        q.text = Text("\t<Question>", "</Question>", {"\t<QuestionNo>"});
        q.number = Text("\t<QuestionNo>", "</QuestionNo>", {"\t<QType>"});
        const std::size_t at = at_;
        const std::int32_t kind = Number("\t<QType>", "</QType>");
        if (kind < 0 || kind > 4)
            FailAt(at, "there is no kind " + std::to_string(kind) + " of questions");
        q.kind = static_cast<Kind>(kind);
        q.rows = Number("\t<OpenEnded_NoOfRows>", "</OpenEnded_NoOfRows>");
        Expect("\t<r>\r\n");
        if (q.kind != Kind::OpenEnded && q.kind != Kind::Text)
            ReadChoices(q);
        Expect("\t</r>\r\n");
        Expect("</q>\r\n");
        return q;
    }

    void ReadChoices(Question& q) {
        const std::size_t at = at_;
        const std::int32_t count = Number("\t<ResponsesCount>", "</ResponsesCount>");
        if (count < 0 || static_cast<std::size_t>(count) > MostChoices)
            FailAt(at, "it can't have " + std::to_string(count) + " responses");
        if (count == 0)
            return;
        Expect("\t\t<Response>\r\n");
        for (std::int32_t i = 1; i <= count; ++i) {
            if (q.kind == Kind::Matrix)
                ReadScale(q, i == 1);
            Number("\t\t\t<QuestionID>", "</QuestionID>", q.id, "the question's own id");
            Choice choice;
            choice.text = Text("\t\t\t<Name>", "</Name>", {"\t\t\t<DatabaseID>"});
            choice.id = NewId("\t\t\t<DatabaseID>", "</DatabaseID>", choices_, "response");
            Number("\t\t\t<Pos>", "</Pos>", i, "the place of this response");
            Number("\t\t\t<ResponseMatrixGroupID>", "</ResponseMatrixGroupID>");
            q.choices.push_back(std::move(choice));
        }
        Expect("\t\t</Response>\r\n");
    }

    // The whole scale stands before each sub question, always the same one.
    void ReadScale(Question& q, bool isFirst) {
        const std::size_t at = at_;
        const std::int32_t count = Number("\t\t\t<ReponseMatrixCount>", "</ReponseMatrixCount>");
        cells_ += static_cast<std::size_t>(std::max(count, 0));
        if (count < 0 || static_cast<std::size_t>(count) > MostChoices || cells_ > MostCells)
            FailAt(at, "its scales are too long");
        std::vector<Choice> scale;
        std::set<std::int32_t> ids;
        for (std::int32_t i = 0; i < count; ++i) {
            Choice point;
            point.id = NewId("\t\t\t\t<ResponseMatrixID>", "</ResponseMatrixID>", ids,
                             "point of the scale");
            point.text = Text("\t\t\t\t<ResponseMatrixName>", "</ResponseMatrixName>",
                              {"\t\t\t\t<ResponseMatrixID>", "\t\t\t<QuestionID>"});
            scale.push_back(std::move(point));
        }
        if (isFirst) {
            q.scale = std::move(scale);
            return;
        }
        const bool isSame = std::equal(
            scale.begin(), scale.end(), q.scale.begin(), q.scale.end(),
            [](const Choice& a, const Choice& b) { return a.id == b.id && a.text == b.text; });
        if (!isSame)
            FailAt(at, "its sub questions have different scales");
    }

    void Expect(std::string_view line) {
        if (!all_.substr(at_).starts_with(line))
            Fail("there should be \"" + Quoted(line) + "\"");
        at_ += line.size();
    }

    // What stands between the tags; behind them one of those has to begin the next line.
    std::string_view Value(std::string_view opening, std::string_view closing,
                           std::initializer_list<std::string_view> next) {
        Expect(opening);
        const std::size_t begin = at_;
        for (std::size_t end = all_.find(closing, begin); end != std::string_view::npos;
             end = all_.find(closing, end + 1)) {
            std::string_view rest = all_.substr(end + closing.size());
            if (!rest.starts_with(LineEnd))
                continue;
            rest.remove_prefix(LineEnd.size());
            if (std::none_of(next.begin(), next.end(),
                             [&](std::string_view tag) { return rest.starts_with(tag); }))
                continue;
            const std::string_view value = all_.substr(begin, end - begin);
            // A missing closing tag is not to swallow the questions behind it.
            if (value.size() > LongestText)
                Fail("there is a text of more than 64 KB, or \"" + Quoted(closing) +
                     "\" is missing");
            if (value.find("\r\n</q>\r\n<q>\r\n") != std::string_view::npos)
                Fail("\"" + Quoted(closing) + "\" is missing");
            at_ = end + closing.size() + LineEnd.size();
            return value;
        }
        Fail("\"" + Quoted(closing) + "\" is missing");
    }

    std::string Text(std::string_view opening, std::string_view closing,
                     std::initializer_list<std::string_view> next) {
        const std::string bytes = Utf8FromWindows1252(Value(opening, closing, next));
        std::string text;
        text.reserve(bytes.size());
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            if (bytes[i] == '\r') {
                text += '\n';
                i += i + 1 < bytes.size() && bytes[i + 1] == '\n' ? 1 : 0;
            } else {
                text += bytes[i];
            }
        }
        return text;
    }

    std::int32_t Number(std::string_view opening, std::string_view closing) {
        Expect(opening);
        const std::size_t end = all_.find('<', at_);
        const std::string_view value =
            all_.substr(at_, end == std::string_view::npos ? end : end - at_);
        std::int32_t number = 0;
        const auto [stop, error] =
            std::from_chars(value.data(), value.data() + value.size(), number);
        if (error != std::errc() || stop != value.data() + value.size())
            Fail("\"" + Quoted(value) + "\" is no whole number");
        at_ += value.size();
        Expect(closing);
        Expect(LineEnd);
        return number;
    }

    void Number(std::string_view opening, std::string_view closing, std::int32_t wanted,
                const char* what) {
        const std::size_t at = at_;
        const std::int32_t number = Number(opening, closing);
        if (number != wanted)
            FailAt(at, std::to_string(number) + " is not " + what + ", " + std::to_string(wanted));
    }

    void Line(std::string_view opening, std::string_view value, std::string_view closing,
              const char* otherwise) {
        const std::size_t at = at_;
        if (!all_.substr(at_).starts_with(opening))
            Fail(otherwise);
        at_ += opening.size();
        if (!all_.substr(at_).starts_with(value) ||
            !all_.substr(at_ + value.size()).starts_with(closing))
            FailAt(at, otherwise);
        at_ += value.size() + closing.size();
        Expect(LineEnd);
    }

    // Without an id of its own, the answers could not be brought back into the survey.
    std::int32_t NewId(std::string_view opening, std::string_view closing,
                       std::set<std::int32_t>& known, const char* what) {
        const std::size_t at = at_;
        const std::int32_t id = Number(opening, closing);
        if (id == -1)
            FailAt(at, std::string("a ") + what +
                           " has no number yet; save the survey and publish again");
        if (id < 1)
            FailAt(at, std::to_string(id) + " can't be the id of a " + what);
        if (!known.insert(id).second)
            FailAt(at, std::string("a second ") + what + " has the id " + std::to_string(id));
        return id;
    }

    // The first characters, on one line.
    static std::string Quoted(std::string_view bytes) {
        std::string words;
        for (const char c : bytes.substr(0, 40))
            if (static_cast<unsigned char>(c) >= 0x20)
                words += c;
        return Utf8FromWindows1252(words);
    }

    [[noreturn]] void Fail(const std::string& what) const { FailAt(at_, what); }
    [[noreturn]] void FailAt(std::size_t at, const std::string& what) const {
        const auto line = 1 + std::count(all_.begin(), all_.begin() + static_cast<long>(at), '\n');
        std::string words = "The survey document is faulty in line " + std::to_string(line);
        if (question_ > 0)
            words += " (question " + std::to_string(question_) + ")";
        throw DocumentFault(words + ": " + what + ".");
    }

    std::string_view all_;
    std::size_t at_ = 0;
    std::size_t question_ = 0; // the one being read, from 1
    std::size_t cells_ = 0;    // points of all scales of the document, repeated ones as well
    std::set<std::int32_t> questions_;
    std::set<std::int32_t> choices_;
};

} // namespace

Questionnaire ReadSurveyDocument(std::string_view bytes) {
    return Reader(bytes).Read();
}

} // namespace pollarix::exchange
