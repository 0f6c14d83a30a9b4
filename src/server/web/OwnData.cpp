#include "server/web/OwnData.h"

#include <memory>
#include <utility>
#include <vector>

#include "exchange/CodePage.h"

namespace pollarix::server {

using exchange::Answer;
using exchange::Kind;
using exchange::Question;

namespace {

constexpr std::size_t ChunkSize = 64U << 10U;

const char* Truth(bool value) {
    return value ? "true" : "false";
}

std::string Value(const Question& q, const Answer& answer) {
    std::string value;
    switch (q.kind) {
    case Kind::OpenEnded:
        return JsonText(answer.text);
    case Kind::Check:
    case Kind::Radio:
        for (const std::size_t place : answer.ticked)
            value += (value.empty() ? "" : ",") + std::to_string(q.choices[place].id);
        return '[' + value + ']';
    case Kind::Matrix:
        for (std::size_t row = 0; row < answer.points.size(); ++row)
            if (answer.points[row] >= 0)
                value += (value.empty() ? "\"" : ",\"") + std::to_string(q.choices[row].id) +
                         "\":" +
                         std::to_string(q.scale[static_cast<std::size_t>(answer.points[row])].id);
        break;
    case Kind::Text:
        break;
    }
    return '{' + value + '}';
}

// One account. Each call goes one step on: the head of a survey with its versions, or some of its
// answers.
class Document {
  public:
    Document(Store& store, Questionnaires& questionnaires, const Account& account)
        : store_(store), questionnaires_(questionnaires), surveys_(store.ListSurveys(account.id)) {
        head_ = "{\"account\":" + JsonText(account.name) +
                ",\"created\":" + std::to_string(account.created) + ",\"surveys\":[";
    }

    bool Next(std::string& chunk) {
        chunk = std::exchange(head_, "");
        if (isOver_)
            return false;
        if (rows_) {
            TakeAnswers(chunk);
        } else if (next_ < surveys_.size()) {
            Begin(chunk, surveys_[next_]);
        } else {
            chunk += "\n]}\n";
            isOver_ = true;
        }
        return true;
    }

  private:
    void Begin(std::string& chunk, const Survey& s) {
        chunk += next_ > 0 ? ",\n{" : "\n{";
        chunk += "\"id\":" + std::to_string(s.id) + ",\"name\":" + JsonText(s.name) +
                 ",\"address\":" + JsonText(s.address) + ",\"public\":" + Truth(s.isPublic) +
                 ",\"open\":" + Truth(s.isOpen) + ",\"onOnePage\":" + Truth(s.onOnePage) +
                 ",\"opens\":" + std::to_string(s.opens) +
                 ",\"closes\":" + std::to_string(s.closes) +
                 ",\"created\":" + std::to_string(s.created) +
                 ",\"deleted\":" + std::to_string(s.deleted) + ",\"documents\":[";
        bool isFirst = true;
        for (int version = 1; version <= s.version; ++version)
            if (const auto document = store_.FindVersion(s.id, version)) // some may be gone
                chunk += (std::exchange(isFirst, false) ? "\n" : ",\n") +
                         JsonText(exchange::Utf8FromWindows1252(*document));
        chunk += "],\"answers\":[";
        rows_ = store_.AllResults(s.id);
        isFirst_ = true;
    }

    void TakeAnswers(std::string& chunk) {
        const Survey& survey = surveys_[next_];
        while (chunk.size() < ChunkSize) {
            const auto row = rows_->Next();
            if (!row) {
                chunk += "]}";
                rows_.reset();
                ++next_;
                return;
            }
            const auto [questionnaire, answers] = questionnaires_.Read(survey.id, *row);
            chunk += std::exchange(isFirst_, false) ? "\n" : ",\n";
            chunk += "{\"received\":" + std::to_string(row->received) +
                     ",\"version\":" + std::to_string(row->version) +
                     ",\"sentAgain\":" + Truth(row->isConflict) + ",\"answers\":{";
            for (std::size_t i = 0; i < answers.size(); ++i)
                chunk += (i > 0 ? ",\"" : "\"") + std::to_string(questionnaire->questions[i].id) +
                         "\":" + Value(questionnaire->questions[i], answers[i]);
            chunk += "}}";
        }
    }

    Store& store_;
    Questionnaires& questionnaires_;
    const std::vector<Survey> surveys_;
    std::size_t next_ = 0;
    std::unique_ptr<Submissions> rows_; // of the survey that is next, once its head is written
    bool isFirst_ = true;
    bool isOver_ = false;
    std::string head_;
};

} // namespace

std::string JsonText(std::string_view text) {
    std::string json = "\"";
    while (!text.empty()) {
        const char32_t letter = exchange::TakeLetter(text);
        if (letter == '"' || letter == '\\') {
            json += '\\';
            json += static_cast<char>(letter);
        } else if (letter == '\n') {
            json += "\\n";
        } else if (letter < 0x20) {
            json += "\\u00";
            json += "01"[letter >> 4U];
            json += "0123456789abcdef"[letter & 15U];
        } else {
            exchange::AppendLetter(json, letter);
        }
    }
    return json + '"';
}

BodySource OwnData(Store& store, Questionnaires& questionnaires, const Account& account) {
    const auto document = std::make_shared<Document>(store, questionnaires, account);
    return [document](std::string& chunk) { return document->Next(chunk); };
}

} // namespace pollarix::server
