#include "document/SurveySearch.h"

#include <QHash>

#include <algorithm>
#include <utility>

#include "document/Kinds.h"
#include "document/QuestionLine.h"
#include "platform/richtext/RichText.h"

namespace pollarix {

namespace {

constexpr qsizetype LongestLine = 200;  // characters that are shown of a question
constexpr qsizetype LettersBefore = 30; // of a long text that show before what was found in it

QString Around(const QString& text, qsizetype at) {
    const qsizetype from = at <= LettersBefore ? 0 : at - LettersBefore;
    return (from > 0 ? "... " : "") + OnOneLine(text.mid(from), LongestLine);
}

class Collector {
  public:
    explicit Collector(std::size_t most) : most_(most) {}

    // False when no more places are wanted.
    bool Add(FoundText place) {
        found_.more = found_.places.size() == most_;
        if (!found_.more)
            found_.places.push_back(std::move(place));
        return !found_.more;
    }
    FoundTexts Take() { return std::move(found_); }

  private:
    std::size_t most_;
    FoundTexts found_;
};

FoundText PlaceOf(const SurveySnapshot::Question& q) {
    FoundText place;
    place.key = q.Key;
    place.questionId = q.DatabaseID;
    place.question = QuestionLine(q.qType, q.QuestionNo, q.Text, LongestLine);
    return place;
}

// A pattern that every text fits which holds the sought one. The database knows the capitals of
// plain letters only, so that any other letter may be any.
QString PatternOf(const QString& sought) {
    QString pattern = "%";
    for (const char32_t letter : sought.toStdU32String()) {
        if (letter == U'%' || letter == U'_' || letter == U'\\')
            pattern += '\\';
        pattern += letter < 0x80 ? QChar(static_cast<char16_t>(letter)) : QChar('_');
    }
    return pattern + '%';
}

} // namespace

FoundTexts FindInDesign(const SurveySnapshot& survey, const QString& sought, std::size_t most) {
    Collector found(most);
    if (sought.isEmpty())
        return {};
    for (const SurveySnapshot::Question& q : survey.questions) {
        const QString text = PlainTextOf(q.Text);
        if (const qsizetype at = text.indexOf(sought, 0, Qt::CaseInsensitive); at >= 0) {
            FoundText place = PlaceOf(q);
            place.text = Around(text, at);
            if (!found.Add(std::move(place)))
                break;
        }
        if (!HasResponses(q.qType))
            continue;
        for (std::size_t i = 0; i < q.responses.size(); ++i) {
            const QString& response = q.responses[i].Text;
            const qsizetype at = response.indexOf(sought, 0, Qt::CaseInsensitive);
            if (at < 0)
                continue;
            FoundText place = PlaceOf(q);
            place.kind = FoundText::Kind::Response;
            place.response = static_cast<int>(i) + 1;
            place.responseId = q.responses[i].DatabaseID;
            place.text = Around(response, at);
            if (!found.Add(std::move(place)))
                return found.Take();
        }
    }
    return found.Take();
}

FoundTexts FindInAnswers(Connection& file, const SurveySnapshot& survey, const QString& sought,
                         std::size_t most) {
    Collector found(most);
    if (sought.isEmpty())
        return {};
    QHash<std::int64_t, const SurveySnapshot::Question*> questions;
    for (const SurveySnapshot::Question& q : survey.questions)
        if (KindOf(q.qType).shape == Shape::Text)
            questions.insert(q.DatabaseID, &q);
    for (Recordset row = file.Execute(
             "SELECT RespondentID, QuestionID, SimpleResponse FROM respondent_responses "
             "WHERE SimpleResponse LIKE ? ESCAPE '\\' ORDER BY id",
             {PatternOf(sought)});
         !row.AtEnd(); row.MoveNext()) {
        const SurveySnapshot::Question* const q = questions.value(row.Integer(1));
        const QString text = row.NullToString(2);
        const qsizetype at = text.indexOf(sought, 0, Qt::CaseInsensitive);
        if (!q || at < 0) // of a question that was deleted, or only alike
            continue;
        FoundText place = PlaceOf(*q);
        place.kind = FoundText::Kind::Answer;
        place.respondentId = row.Integer(0);
        place.text = Around(text, at);
        if (!found.Add(std::move(place)))
            break;
    }
    return found.Take();
}

} // namespace pollarix
