// All answers of a survey in memory, variable by variable: a byte each, or four for a variable of
// more than 250 values. Typed answers are kept as numbers where they are numbers; their texts stay
// in the file.
#pragma once

#include <functional>
#include <variant>
#include <vector>

#include "statistics/RespondentReader.h"
#include "statistics/Variables.h"

namespace pollarix::statistics {

// The codes of one variable, by respondent.
class Column {
  public:
    // Codes will be below `codes`; that decides the width.
    explicit Column(std::size_t codes);

    void Append(Code code);
    Code operator[](std::size_t row) const {
        if (wide_)
            return four_[row];
        const std::uint8_t value = one_[row];
        return value < FirstMissing ? value : value | 0xFFFFFF00U;
    }
    std::size_t Size() const { return wide_ ? four_.size() : one_.size(); }
    std::size_t Bytes() const { return wide_ ? 4 * four_.capacity() : one_.capacity(); }
    // Puts `codes[c]` in the place of each answer c; then there are `count` codes.
    Column Recoded(const std::vector<Code>& codes, std::size_t count) const;

  private:
    static constexpr std::uint8_t FirstMissing = 0xFD; // the last bytes of NoNumber and behind
    bool wide_;
    std::vector<std::uint8_t> one_;
    std::vector<Code> four_;
};

// Tells how many of how many respondents were read.
using LoadStep = std::function<void(std::int64_t done, std::int64_t total)>;

class Answers {
  public:
    // Reads everything in one pass. An open question all of whose answers are numbers becomes one
    // of scale level. Throws what the database throws, and what the step throws.
    explicit Answers(Connection& survey, const LoadStep& step = {});

    std::size_t Respondents() const { return respondents_; }
    // Categories of open questions are the numbers that were typed, from the smallest, those of the
    // date the days, those of the source its texts in the order of the alphabet.
    const SurveyVariables& Survey() const { return survey_; }
    const Variable& At(std::size_t variable) const { return survey_.variables[variable]; }
    const Column& Codes(std::size_t variable) const { return columns_[variable]; }
    std::int64_t Id(std::size_t row) const { return ids_[row]; } // respondent.id
    std::size_t Bytes() const;                                   // that the columns take

    void SetLevel(std::size_t variable, Level level) { survey_.variables[variable].level = level; }
    void Reverse(std::size_t variable) { survey_.variables[variable].Reverse(); }

  private:
    SurveyVariables survey_;
    std::size_t respondents_ = 0;
    std::vector<Column> columns_;
    std::vector<std::int64_t> ids_;
};

// The number that a typed answer is, if it is one: digits with a sign, a decimal point or comma and
// an exponent, blanks around it dropped. A comma before exactly three digits may as well part
// thousands ("1,500"), so that is no number, but for "0,500".
std::optional<double> NumberIn(const QString& text);

} // namespace pollarix::statistics
