#include "web/ResultsReader.h"

#include <charconv>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "document/SurveyBatch.h"
#include "platform/base/Failure.h"
#include "platform/base/Handlers.h"
#include "platform/base/Windows1252.h"
#include "web/ResultsLines.h"

namespace pollarix {

namespace {

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

// Some milliseconds of work.
constexpr std::int64_t LinesBetweenProgress = 256;

class Importer {
  public:
    explicit Importer(Connection& file) : file_(file) {}

    int Count() const { return count_; }

    // The tests run in this order, each on the whole line.
    void Take(ResultsLines& line) {
        if (line.Holds(ResultsTag::UserResponse))
            state_ = State::InBlock;
        if (line.Holds(ResultsTag::Record) && state_ == State::InBlock) {
            state_ = State::InRecord;
            record_.Clear();
        }
        if (state_ == State::InRecord)
            TakeValues(line);
        if (line.Holds(ResultsTag::RecordEnd) && state_ == State::InRecord) {
            state_ = State::InBlock;
            Store();
        }
        if (line.Holds(ResultsTag::UserResponseEnd)) {
            state_ = State::Outside;
            respondent_ = 0;
        }
    }

  private:
    enum class State { Outside, InBlock, InRecord };

    // Of the record that is being read. Its strings keep their memory from one record to the next.
    struct Values {
        std::string databaseId;
        std::string questionNo;
        std::string kindText;
        std::int32_t kind = 0;
        std::vector<std::string> responses;
        std::size_t count = 0; // of the responses that are this record's
        std::string text;

        void Clear() {
            databaseId.clear();
            questionNo.clear();
            kindText.clear();
            kind = 0;
            count = 0;
            text.clear();
        }
    };

    void TakeValues(ResultsLines& line) {
        line.Value(ResultsTag::DatabaseID, record_.databaseId);
        line.Value(ResultsTag::QuestionNo, record_.questionNo);
        if (line.Value(ResultsTag::QType, record_.kindText))
            record_.kind = ToNumber32(ToText(record_.kindText));
        if (record_.count == record_.responses.size())
            record_.responses.emplace_back();
        if (line.Value(ResultsTag::Response, record_.responses[record_.count]))
            ++record_.count;
        line.Value(ResultsTag::Text, record_.text);
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
            for (std::size_t i = 0; i < record_.count; ++i)
                StoreAnswer(question, ToNumber(record_.responses[i]), "");
            break;
        case 2:
            if (record_.count > 0)
                StoreAnswer(question, ToNumber(record_.responses[0]), "");
            break;
        case 3:
            for (std::size_t i = 0; i < record_.count; ++i)
                StoreMatrix(question, record_.responses[i]);
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

bool DoLoadXML(ApplicationState& state, const QString& path, const ImportProgress& progress) {
    ResultsLines lines(path);
    int count = 0;
    {
        SurveyBatch batch(state, WriteBatch::OnFailure::Keep);
        if (!batch)
            throw Failure(failure::PathOrFileAccess,
                          "The survey was changed by another program. Nothing was imported");
        Importer importer(state.SurveyConnection);
        const auto goesOn = [&](std::int64_t bytes) {
            return !progress || progress(importer.Count(), bytes, lines.Size());
        };
        bool stays = true;
        for (std::int64_t line = 1; stays && lines.Next(); ++line) {
            importer.Take(lines);
            if (line % LinesBetweenProgress == 0)
                stays = goesOn(lines.Position());
        }
        // Once more at the end: from the commit on there is nothing to stop.
        if (!stays || !goesOn(lines.Size())) {
            batch.TakeBack();
            return false;
        }
        count = importer.Count();
        batch.Commit();
    }
    DoEvents(); // what was pressed during the commit acts before the box, which would swallow it
    state.dialogs.MsgBox("Successfully imported " + QString::number(count) + " respondent(s).",
                         MsgIcon::Information);
    return true;
}

} // namespace pollarix
