#include "server/web/ResultTable.h"

#include <array>
#include <ctime>

namespace pollarix::server {

using exchange::Answer;
using exchange::Kind;
using exchange::Question;

namespace {

constexpr std::size_t ChunkSize = 64U << 10U;

std::string Moment(Time seconds) {
    const auto time = static_cast<std::time_t>(seconds);
    std::tm parts{};
    gmtime_r(&time, &parts);
    std::array<char, 32> text{};
    return {text.data(), std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &parts)};
}

class Table {
  public:
    Table(Store& store, Questionnaires& questionnaires, const Survey& survey)
        : questionnaires_(questionnaires), survey_(survey), rows_(store.AllResults(survey.id)) {
        head_ = "\xEF\xBB\xBF"
                "Received (UTC),Version,Sent again with other answers";
        for (int version = survey.version; version > 0; --version)
            if (const auto questionnaire = questionnaires_.Find(survey.id, version))
                for (const Question& q : questionnaire->questions)
                    AddColumns(q);
        head_ += "\r\n";
    }

    bool Next(std::string& chunk) {
        chunk = std::exchange(head_, "");
        while (chunk.size() < ChunkSize) {
            const auto row = rows_->Next();
            if (!row)
                break;
            Append(chunk, *row);
        }
        return !chunk.empty();
    }

  private:
    // A question, and one of its boxes or sub questions, or 0.
    using Key = std::pair<std::int32_t, std::int32_t>;

    void AddColumns(const Question& q) {
        const std::string title = (q.number.empty() ? "" : q.number + ". ") + q.text;
        if (q.kind == Kind::OpenEnded || q.kind == Kind::Radio)
            AddColumn({q.id, 0}, title);
        else if (q.kind != Kind::Text)
            for (const exchange::Choice& choice : q.choices)
                AddColumn({q.id, choice.id}, title + " [" + choice.text + "]");
    }

    void AddColumn(const Key& key, const std::string& title) {
        if (columns_.emplace(key, columns_.size()).second)
            head_ += ',' + CsvCell(title);
    }

    void Append(std::string& chunk, const Submission& row) const {
        const auto [questionnaire, answers] = questionnaires_.Read(survey_.id, row);
        std::vector<std::string> cells(columns_.size());
        for (std::size_t i = 0; i < answers.size(); ++i)
            Fill(cells, questionnaire->questions[i], answers[i]);
        chunk += Moment(row.received) + ',' + std::to_string(row.version) + ',' +
                 (row.isConflict ? "yes" : "");
        for (const std::string& cell : cells)
            chunk += ',' + CsvCell(cell);
        chunk += "\r\n";
    }

    void Fill(std::vector<std::string>& cells, const Question& q, const Answer& answer) const {
        if (q.kind == Kind::OpenEnded)
            cells[columns_.at({q.id, 0})] = answer.text;
        for (const std::size_t place : answer.ticked) {
            if (q.kind == Kind::Radio)
                cells[columns_.at({q.id, 0})] = q.choices[place].text;
            else
                cells[columns_.at({q.id, q.choices[place].id})] = "1";
        }
        for (std::size_t row = 0; row < answer.points.size(); ++row)
            if (answer.points[row] >= 0)
                cells[columns_.at({q.id, q.choices[row].id})] =
                    q.scale[static_cast<std::size_t>(answer.points[row])].text;
    }

    Questionnaires& questionnaires_;
    const Survey survey_;
    std::unique_ptr<Submissions> rows_;
    std::map<Key, std::size_t> columns_;
    std::string head_;
};

} // namespace

std::string CsvCell(std::string_view text) {
    std::string cell;
    // Spreadsheets look behind blanks, too.
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    if (first != std::string_view::npos &&
        std::string_view("=+-@|").find(text[first]) != std::string_view::npos)
        cell += '\'';
    // The full-width signs count as well for some.
    for (const std::string_view sign : {"\uFF1D", "\uFF0B", "\uFF0D", "\uFF20"})
        if (first != std::string_view::npos && text.substr(first).starts_with(sign))
            cell += '\'';
    cell += text;
    if (cell.find_first_of(",;\"\r\n\t") == std::string::npos)
        return cell;
    std::string quoted = "\"";
    for (const char c : cell)
        quoted += c == '"' ? "\"\"" : std::string(1, c);
    return quoted + '"';
}

BodySource ResultTable(Store& store, Questionnaires& questionnaires, const Survey& survey) {
    const auto table = std::make_shared<Table>(store, questionnaires, survey);
    return [table](std::string& chunk) { return table->Next(chunk); };
}

} // namespace pollarix::server
