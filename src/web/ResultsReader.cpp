#include "web/ResultsReader.h"

#include <QFile>

#include <array>
#include <charconv>
#include <optional>
#include <vector>

#include "platform/base/Failure.h"
#include "platform/base/Windows1252.h"

namespace pollarix {

namespace {

// The tags of a line. A closing tag follows its opening one.
enum Tag {
    UserResponse,
    UserResponseEnd,
    Record,
    RecordEnd,
    DatabaseID,
    DatabaseIDEnd,
    QuestionNo,
    QuestionNoEnd,
    QType,
    QTypeEnd,
    Response,
    ResponseEnd,
    Text,
    TextEnd,
    TagCount
};

constexpr std::array<std::string_view, TagCount> TagTexts = {
    "<userresponse>", "</userresponse>", "<r>",           "</r>",    "<DatabaseID>",
    "</DatabaseID>",  "<QuestionNo>",    "</QuestionNo>", "<QType>", "</QType>",
    "<Response>",     "</Response>",     "<text>",        "</text>"};

// Where each tag first stands in a line, found in one walk over its "<".
class Line {
  public:
    explicit Line(std::string_view line) : line_(line) {
        first_.fill(std::string_view::npos);
        for (std::size_t at = line.find('<'); at != std::string_view::npos;
             at = line.find('<', at + 1)) {
            const std::string_view rest = line.substr(at);
            for (int tag = 0; tag < TagCount; ++tag)
                if (first_[tag] == std::string_view::npos && rest.starts_with(TagTexts[tag]))
                    first_[tag] = at;
        }
    }

    bool Holds(Tag tag) const { return first_[tag] != std::string_view::npos; }

    // The value between a tag and its closing tag; none unless the line holds both.
    std::optional<std::string_view> Value(Tag tag) const {
        const auto closing = static_cast<Tag>(tag + 1);
        if (!Holds(tag) || !Holds(closing))
            return std::nullopt;
        const std::size_t begin = first_[tag] + TagTexts[tag].size();
        if (first_[closing] < begin)
            throw Failure(failure::InvalidArgument,
                          QString("%1 stands before %2")
                              .arg(QLatin1String(TagTexts[closing].data()),
                                   QLatin1String(TagTexts[tag].data())));
        return line_.substr(begin, first_[closing] - begin);
    }

  private:
    std::string_view line_;
    std::array<std::size_t, TagCount> first_;
};

QString ToText(std::string_view bytes) {
    return FromWindows1252(QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size())));
}

// A value for a number column: blanks around it are dropped; what is no number goes out as text,
// which the database refuses.
DbValue ToNumber(std::string_view bytes) {
    while (!bytes.empty() && bytes.front() == ' ')
        bytes.remove_prefix(1);
    while (!bytes.empty() && bytes.back() == ' ')
        bytes.remove_suffix(1);
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(bytes.data(), bytes.data() + bytes.size(), number);
    if (error == std::errc() && end == bytes.data() + bytes.size())
        return number;
    return ToText(bytes);
}

class Importer {
  public:
    explicit Importer(Connection& file) : file_(file) {}

    int Count() const { return count_; }

    // The tests run in this order, each on the whole line.
    void Take(const Line& line) {
        if (line.Holds(UserResponse))
            state_ = State::InBlock;
        if (line.Holds(Record) && state_ == State::InBlock) {
            state_ = State::InRecord;
            record_ = {};
        }
        if (state_ == State::InRecord)
            TakeValues(line);
        if (line.Holds(RecordEnd) && state_ == State::InRecord) {
            state_ = State::InBlock;
            Store();
        }
        if (line.Holds(UserResponseEnd)) {
            state_ = State::Outside;
            respondent_ = 0;
        }
    }

  private:
    enum class State { Outside, InBlock, InRecord };

    struct Values {
        std::string_view databaseId;
        std::string_view questionNo;
        std::string_view kindText;
        std::int32_t kind = 0;
        std::vector<std::string_view> responses;
        std::string_view text;
    };

    void TakeValues(const Line& line) {
        if (const auto value = line.Value(DatabaseID))
            record_.databaseId = *value;
        if (const auto value = line.Value(QuestionNo))
            record_.questionNo = *value;
        if (const auto value = line.Value(QType)) {
            record_.kindText = *value;
            record_.kind = ToNumber32(ToText(*value));
        }
        if (const auto value = line.Value(Response))
            record_.responses.push_back(*value);
        if (const auto value = line.Value(Text))
            record_.text = *value;
    }

    void Store() {
        if (record_.questionNo.empty() || record_.databaseId.empty() || record_.kindText.empty())
            return;
        // A respondent comes to life with its first whole record, before the kind is looked at.
        if (respondent_ == 0) {
            respondent_ = Insert(respondents_, "Respondent", {"Source"}).Add({"Web"});
            ++count_;
        }
        // The server puts the question's id into the tag of its number.
        const DbValue question = ToNumber(record_.questionNo);
        switch (record_.kind) {
        case 0:
            StoreAnswer(question, 1, ToText(record_.text));
            break;
        case 1:
            for (const std::string_view response : record_.responses)
                StoreAnswer(question, ToNumber(response), "");
            break;
        case 2:
            if (!record_.responses.empty())
                StoreAnswer(question, ToNumber(record_.responses[0]), "");
            break;
        case 3:
            for (const std::string_view response : record_.responses)
                StoreMatrix(question, response);
            break;
        default:
            break;
        }
    }

    void StoreAnswer(const DbValue& question, const DbValue& response, const DbValue& text) {
        Insert(answers_, "Respondent_Responses",
               {"QuestionID", "RespondentID", "ResponseID", "SimpleResponse"})
            .Add({question, respondent_, response, text});
    }

    // The point of the scale comes first, then the sub question; further parts are dropped.
    void StoreMatrix(const DbValue& question, std::string_view value) {
        const std::size_t comma = value.find(',');
        if (comma == std::string_view::npos)
            throw Failure(failure::Subscript);
        const std::string_view second = value.substr(comma + 1);
        Insert(matrixAnswers_, "Respondent_Responses",
               {"QuestionID", "RespondentID", "ResponseID", "SimpleResponse", "ResponseMatrixID"})
            .Add({question, respondent_, ToNumber(second.substr(0, second.find(','))), "",
                  ToNumber(value.substr(0, comma))});
    }

    // Made when its first row comes: a file of another version may lack what no row needs.
    TableInsert& Insert(std::optional<TableInsert>& insert, const char* table,
                        std::initializer_list<const char*> columns) {
        return insert ? *insert : insert.emplace(file_, table, columns);
    }

    Connection& file_;
    std::optional<TableInsert> respondents_;
    std::optional<TableInsert> answers_;
    std::optional<TableInsert> matrixAnswers_;
    State state_ = State::Outside;
    std::int64_t respondent_ = 0;
    int count_ = 0;
    Values record_;
};

} // namespace

void DoLoadXML(ApplicationState& state, const QString& path) {
    QFile file(path);
    if (!file.exists())
        throw Failure(failure::FileNotFound, "File not found: " + path);
    if (!file.open(QIODevice::ReadOnly))
        throw Failure(failure::PathOrFileAccess, path + ": " + file.errorString());
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        throw Failure(failure::PathOrFileAccess, path + ": " + file.errorString());
    file.close();

    int count = 0;
    {
        WriteBatch batch(state.SurveyConnection);
        Importer importer(state.SurveyConnection);
        const std::string_view all(bytes.constData(), static_cast<std::size_t>(bytes.size()));
        std::size_t at = 0;
        // Only text before a CR LF is a line; what stands behind the last one is never looked at.
        for (std::size_t end = all.find("\r\n"); end != std::string_view::npos;
             end = all.find("\r\n", at)) {
            importer.Take(Line(all.substr(at, end - at)));
            at = end + 2;
        }
        count = importer.Count();
        batch.Commit();
    }
    state.dialogs.MsgBox("Successfully imported " + QString::number(count) + " respondent(s).",
                         MsgIcon::Information);
}

} // namespace pollarix
