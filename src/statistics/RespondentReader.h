// Reads the survey file's answers one respondent at a time, as codes of the variables, in bounded
// memory. Here is decided what counts as an answer, and why there is none.
#pragma once

#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

#include "document/AnswerRows.h"
#include "statistics/Variables.h"

namespace pollarix::statistics {

// The place of an answer in its variable's categories, or one of the reasons why there is none.
using Code = std::uint32_t;
constexpr Code NotAsked = 0xFFFFFFFF;  // the survey's jumps led past the question
constexpr Code LeftEmpty = 0xFFFFFFFE; // asked, and nothing chosen or typed
constexpr Code NoNumber = 0xFFFFFFFD;  // typed, but no number
constexpr bool IsAnswer(Code code) {
    return code < NoNumber;
}

class RespondentReader {
  public:
    // Respondents come by date, those of one date by id. The variables have to outlive the reader.
    RespondentReader(Connection& survey, const SurveyVariables& variables);

    // Goes to the first respondent or the next; false behind the last. Throws what the database
    // throws.
    bool Next();

    std::int64_t Id() const { return id_; }
    const std::optional<QString>& SubmittedDate() const { return date_; } // as stored
    const std::optional<QString>& Source() const { return source_; }

    // The respondent's code of each variable of a question. An open ended one that was answered
    // has 0 and its text in TextOf. Date and source have LeftEmpty; they are above.
    //
    // Of several answers to a question that holds one, the first stored counts. A check question
    // without any tick was left empty; with one, the other responses are "No". Answers to what is
    // gone from the survey count as none.
    //
    // Who was asked is worked out by walking the survey by the respondent's answers as manual entry
    // does. A jump to a question that is gone, or a second one from the same question, would there
    // show a page again until another answer is given; here the walk goes on behind it. A question
    // with a stored answer always counts as asked, whatever the walk says.
    const std::vector<Code>& Codes() const { return codes_; }
    const QString& TextOf(std::size_t variable) const { return texts_[variable]; }

  private:
    void ReadAnswer();
    void CompleteTicks();
    void MarkNotAsked();

    const SurveyVariables& variables_;
    AnswerRows rows_;
    QHash<std::int64_t, int> questionPlaces_;
    std::int64_t id_ = 0;
    std::optional<QString> date_;
    std::optional<QString> source_;
    std::vector<Code> codes_;
    std::vector<QString> texts_; // by variable; empty but for open ended ones
    std::vector<char> answered_; // by question
    std::vector<char> asked_;    // by question
    std::vector<char> jumped_;   // by question, in one walk
};

} // namespace pollarix::statistics
