// The columns of a survey's answers as statistics programs want them: names, labels, what each
// number means, and what stands for no answer. The same for every file format; what differs is with
// the writer of each.
#pragma once

#include <QString>

#include <utility>
#include <vector>

#include "statistics/RespondentReader.h"
#include "statistics/Sample.h"

namespace pollarix::labelled {

// Words for the two reasons why there is no answer.
inline constexpr const char* LeftEmptyLabel = "No answer";
inline constexpr const char* NotAskedLabel = "Not asked";

struct Column {
    enum class Kind {
        Id,     // respondent.id
        Date,   // of the submission, to the second
        Text,   // the source, and typed answers
        Number, // a typed answer, where all answers to the question are numbers
        Codes,  // of radio questions, ticks and points of a scale
        Weight, // only where there are weights
    };
    Kind kind = Kind::Text;
    QString name;  // plain ASCII, unique: id, date, source, q1, q2_3, weight
    QString label; // the question in one line, and the item behind it
    statistics::Level level = statistics::Level::Nominal;
    std::size_t variable = 0;                    // in Codebook::survey; of no meaning for the id
    std::vector<std::pair<int, QString>> values; // of Codes: what each number means
    // Numbers of Codes and Number that stand for no answer; below all answers.
    int leftEmpty = -1;
    int notAsked = -2;
    std::size_t longest = 1; // bytes of the longest text in UTF-8

    bool IsNumeric() const { return kind != Kind::Text; }
    bool HasMissing() const { return kind == Kind::Number || kind == Kind::Codes; }
    // Of Codes: where a number stands in `values`.
    std::size_t PlaceOf(double number) const {
        return static_cast<std::size_t>(number - values.front().first);
    }
    const char* LevelName() const; // "nominal", "ordinal", "scale"; "text" for a text
};

struct Codebook {
    // Reads the survey, and goes through the typed answers once. With weights there is a column for
    // them at the end. Throws what the database throws.
    explicit Codebook(Connection& survey, bool weighted = false);

    statistics::SurveyVariables survey;
    std::vector<Column> columns;
};

struct Cell {
    enum class Kind { Number, Text, LeftEmpty, NotAsked };
    Kind kind = Kind::LeftEmpty;
    double number = 0; // of a date: seconds since 1970, of no time zone
    QString text;
};

// The answers in the columns of the codebook, a respondent at a time and in bounded memory, by date
// and id. Of a sample only those who are chosen; its respondents are in the same order.
class Rows {
  public:
    Rows(Connection& survey, const Codebook& codebook, const statistics::Sample& sample);

    bool Next();
    const std::vector<Cell>& Cells() const { return cells_; }
    std::int64_t Done() const { return read_; } // respondents read, chosen or not

  private:
    Cell CellOf(const Column& column) const;

    const Codebook& codebook_;
    const statistics::Sample& sample_;
    statistics::RespondentReader reader_;
    std::vector<Cell> cells_;
    std::int64_t read_ = 0;
};

// At most so many bytes of the text in UTF-8, cut between two characters.
QByteArray Utf8UpTo(const QString& text, std::size_t bytes);

} // namespace pollarix::labelled
