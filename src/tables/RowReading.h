// Takes the rows of a table for answers to a survey: each cell for what its column goes to. What
// can't be matched is told, cell by cell.
#pragma once

#include <QHash>

#include "tables/Targets.h"

namespace pollarix::tables {

// A row of respondent_responses without its respondent.
struct StoredAnswer {
    std::int64_t question = 0;
    std::int64_t response = 0;
    QString text;
    std::optional<std::int64_t> point;
};

struct ReadAnswers {
    QString date; // as stored; "" for none
    std::vector<StoredAnswer> answers;
};

class RowReading {
  public:
    // `column` is a place among the columns, or their count for cells beyond them.
    using Complain = std::function<void(std::size_t column, const Cell& cell, const QString& why)>;

    // The survey has to outlive the reading.
    RowReading(const statistics::SurveyVariables& survey, std::vector<Target> targets);

    // The answers of one row. They stand until the next call. What is complained of is left out.
    const ReadAnswers& Read(const TableRow& row, const Complain& complain);

    // Whether nothing at all stands in the row.
    static bool IsBlank(const TableRow& row);

  private:
    // The texts of a question's responses or of a scale's points, and what they are called.
    class Names {
      public:
        void Add(const QString& name, std::int64_t id);
        // The place of a text, of an id, or of a number from 1 on; else why there is none.
        std::optional<std::size_t> Find(const QString& text, QString& why) const;
        std::size_t Count() const { return count_; }

      private:
        static constexpr std::size_t Several = static_cast<std::size_t>(-1);
        QHash<QString, std::size_t> exact_;
        QHash<QString, std::size_t> folded_;
        QHash<QString, std::size_t> ids_;
        std::size_t count_ = 0;
    };
    struct Column {
        Target target;
        statistics::VariableKind kind = statistics::VariableKind::Open;
        std::int64_t question = 0;
        std::int64_t response = 0;     // of ticks and points
        std::vector<std::int64_t> ids; // by code: of responses, or of points
        Names names;                   // by code
        QString item;                  // of ticks
    };

    Column MakeColumn(const Target& target) const;
    // Gives why the cell can't be matched, "" where it can.
    QString TakeCell(const Column& column, const Cell& cell);
    QString TakeDate(const Cell& cell);
    QString TakeTick(const Column& column, const Cell& cell);
    QString TakeChoices(const Column& column, const Cell& cell);
    void Store(const Column& column, std::int64_t response, const QString& text = "",
               std::optional<std::int64_t> point = std::nullopt);

    const statistics::SurveyVariables& survey_;
    std::vector<Column> columns_;
    ReadAnswers read_;
};

} // namespace pollarix::tables
