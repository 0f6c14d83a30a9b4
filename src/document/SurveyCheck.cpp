#include "document/SurveyCheck.h"

#include <QHash>
#include <QStringList>

#include <algorithm>
#include <cstdint>
#include <utility>

#include "document/Kinds.h"
#include "document/QuestionLine.h"
#include "platform/base/Windows1252.h"
#include "platform/richtext/RichText.h"

namespace pollarix {

namespace {

using Question = SurveySnapshot::Question;
using Response = SurveySnapshot::Response;

constexpr qsizetype LongestLabel = 200;   // characters that are shown of a text
constexpr qsizetype LongestQuote = 60;    // of one within a sentence
constexpr qsizetype LettersThatShow = 10; // of those that are lost

QString Quoted(const QString& text) {
    return '"' + OnOneLine(text, LongestQuote) + '"';
}

// The letters that have no byte of their own, each once.
QString LostLettersOf(const QString& text) {
    QStringList letters;
    for (const char32_t letter : text.toStdU32String()) {
        const QString shown = QString::fromUcs4(&letter, 1);
        if (FitsWindows1252(shown) || letters.contains(shown))
            continue;
        if (letters.size() == LettersThatShow)
            return letters.join(' ') + " ...";
        letters << shown;
    }
    return letters.join(' ');
}

// The ways that the answers of respondents open through the survey. Place `count` is its end.
class Ways {
  public:
    explicit Ways(const SurveySnapshot& survey) : count_(survey.questions.size()) {
        for (std::size_t i = 0; i < count_; ++i)
            placeOf_.emplace(survey.questions[i].Key, i);
        next_.resize(count_ + 1);
        before_.resize(count_ + 1);
        for (std::size_t i = 0; i < count_; ++i) {
            const Question& q = survey.questions[i];
            const bool jumps = KindOf(q.qType).shape == Shape::One && !q.responses.empty();
            if (!jumps)
                Add(i, i + 1);
            for (const Response& r : q.responses)
                if (jumps)
                    Add(i, Target(r).value_or(i + 1));
        }
        FindReached();
        FindCircles();
        hasWayOut_.resize(count_ + 1);
        for (std::size_t from = 0; from < count_; ++from)
            for (const std::size_t to : next_[from])
                if (circle_[from] != circle_[to])
                    hasWayOut_[circle_[from]] = true;
    }

    // Where the jump of a response leads; none for one without a jump, or to what is not there.
    std::optional<std::size_t> Target(const Response& r) const {
        const auto found = placeOf_.constFind(r.LogicJumpToQuestionKey);
        if (r.LogicJumpToQuestionKey.isEmpty() || found == placeOf_.constEnd())
            return std::nullopt;
        return *found;
    }
    bool IsReached(std::size_t place) const { return isReached_[place]; }
    // Whether one comes from each of the two to the other.
    bool InOneCircle(std::size_t a, std::size_t b) const { return circle_[a] == circle_[b]; }
    // Whether an answer leads out of the circle that the place is in.
    bool HasWayOut(std::size_t place) const { return hasWayOut_[circle_[place]]; }

  private:
    void Add(std::size_t from, std::size_t to) {
        next_[from].push_back(to);
        before_[to].push_back(from);
    }

    void FindReached() {
        isReached_.resize(count_ + 1);
        std::vector<std::size_t> todo = {0};
        isReached_[0] = true;
        while (!todo.empty()) {
            const std::size_t at = todo.back();
            todo.pop_back();
            for (const std::size_t to : next_[at])
                if (!isReached_[to]) {
                    isReached_[to] = true;
                    todo.push_back(to);
                }
        }
    }

    // Strongly connected components, by two walks (Kosaraju): the first in depth, noting places as
    // they are left; the second backwards, from the one that was left last. Without recursion, for
    // surveys of any length.
    void FindCircles() {
        std::vector<std::size_t> left;
        std::vector<bool> seen(count_ + 1);
        std::vector<std::pair<std::size_t, std::size_t>> path; // place, and its next way to take
        for (std::size_t start = 0; start <= count_; ++start) {
            if (seen[start])
                continue;
            seen[start] = true;
            path.emplace_back(start, 0);
            while (!path.empty()) {
                auto& [at, way] = path.back();
                if (way == next_[at].size()) {
                    left.push_back(at);
                    path.pop_back();
                    continue;
                }
                const std::size_t to = next_[at][way++];
                if (!seen[to]) {
                    seen[to] = true;
                    path.emplace_back(to, 0);
                }
            }
        }
        constexpr auto None = static_cast<std::size_t>(-1);
        circle_.assign(count_ + 1, None);
        std::vector<std::size_t> todo;
        for (auto start = left.rbegin(); start != left.rend(); ++start) {
            if (circle_[*start] != None)
                continue;
            circle_[*start] = *start;
            todo.push_back(*start);
            while (!todo.empty()) {
                const std::size_t at = todo.back();
                todo.pop_back();
                for (const std::size_t from : before_[at])
                    if (circle_[from] == None) {
                        circle_[from] = *start;
                        todo.push_back(from);
                    }
            }
        }
    }

    std::size_t count_;
    QHash<QString, std::size_t> placeOf_;
    std::vector<std::vector<std::size_t>> next_;
    std::vector<std::vector<std::size_t>> before_;
    std::vector<bool> isReached_;
    std::vector<std::size_t> circle_; // some place in it
    std::vector<bool> hasWayOut_;     // by that place
};

class Check {
  public:
    Check(const SurveySnapshot& survey, const std::optional<SurveyScales>& scales)
        : survey_(survey), ways_(survey), knowsScales_(scales) {
        if (scales)
            for (const SurveyScales::Point& point : scales->points)
                pointsOf_[point.scale] << point.name;
        for (const Question& q : survey.questions)
            labels_.push_back(QuestionLine(q.qType, q.QuestionNo, q.Text, LongestLabel));
    }

    std::vector<Finding> Run() {
        for (place_ = 0; place_ < survey_.questions.size(); ++place_) {
            const Question& q = survey_.questions[place_];
            const QString text = PlainTextOf(q.Text);
            if (text.trimmed().isEmpty())
                Problem(Finding::Kind::EmptyText, 0,
                        q.qType == kind::Text ? "The instruction text is empty."
                                              : "The question has no text.");
            if (!ways_.IsReached(place_))
                Problem(Finding::Kind::NotReached, 0,
                        "Whoever answers the questions before it is led past it.");
            QString all = text;
            if (HasResponses(q.qType)) {
                CheckResponses(q);
                for (const Response& r : q.responses)
                    all += r.Text;
            }
            if (q.qType == kind::Matrix && knowsScales_)
                CheckScale(q, all);
            if (KindOf(q.qType).shape == Shape::One)
                CheckJumps(q);
            if (!FitsWindows1252(all))
                Problem(Finding::Kind::LostLetters, 0,
                        "On the web and in the CSV export these letters become \"?\": " +
                            LostLettersOf(all));
        }
        return std::move(findings_);
    }

  private:
    void Add(Finding::Kind kind, Finding::Gravity gravity, std::size_t response,
             const QString& words) {
        findings_.push_back({kind, gravity, survey_.questions[place_].Key,
                             static_cast<int>(response), labels_[place_], words});
    }
    void Problem(Finding::Kind kind, std::size_t response, const QString& words) {
        Add(kind, Finding::Gravity::Problem, response, words);
    }
    void Note(Finding::Kind kind, std::size_t response, const QString& words) {
        Add(kind, Finding::Gravity::Note, response, words);
    }

    void CheckResponses(const Question& q) {
        const bool matrix = q.qType == kind::Matrix;
        const std::size_t count = q.responses.size();
        if (count == 0 && matrix)
            Problem(Finding::Kind::NoSubQuestions, 0, "The matrix has no sub questions.");
        else if (count == 0)
            Problem(Finding::Kind::FewResponses, 0, "There is no response to choose.");
        else if (count == 1 && !matrix)
            Note(Finding::Kind::FewResponses, 0, "There is only one response to choose.");
        const QString what = matrix ? "Sub question" : "Response";
        QHash<QString, std::size_t> first;
        for (std::size_t i = 0; i < count; ++i) {
            const QString text = q.responses[i].Text.simplified().toCaseFolded();
            if (text.isEmpty()) {
                Problem(Finding::Kind::EmptyText, i + 1,
                        QString("%1 %2 has no text.").arg(what).arg(i + 1));
                continue;
            }
            const auto same = first.constFind(text);
            if (same == first.constEnd())
                first.insert(text, i);
            else
                Problem(Finding::Kind::EqualResponses, i + 1,
                        QString("%1s %2 and %3 are equal: ").arg(what).arg(*same + 1).arg(i + 1) +
                            Quoted(q.responses[i].Text));
        }
    }

    void CheckScale(const Question& q, QString& all) {
        const QStringList points = pointsOf_.value(q.ResponseMatrixGroupID);
        if (points.isEmpty())
            Problem(Finding::Kind::NoPoints, 0, "The scale of the matrix has no points.");
        all += points.join(QString());
    }

    void CheckJumps(const Question& q) {
        for (std::size_t i = 0; i < q.responses.size(); ++i) {
            const Response& r = q.responses[i];
            const QString who = "Response " + Quoted(r.Text);
            const std::optional<std::size_t> target = ways_.Target(r);
            // A target whose row was gone already when the survey was read has left its id alone.
            const bool jumps = !r.LogicJumpToQuestionKey.isEmpty() || r.LogicJumpToQuestionID != -1;
            if (!target) {
                if (jumps)
                    Problem(Finding::Kind::JumpToDeleted, i + 1,
                            who + " jumps to a question that was deleted.");
            } else if (*target == place_) {
                Problem(Finding::Kind::JumpToItself, i + 1,
                        who + " jumps to its own question, which is then asked again.");
            } else if (*target < place_ && ways_.InOneCircle(*target, place_)) {
                const QString back =
                    who + " leads back to " + OnOneLine(labels_[*target], LongestQuote) + ". ";
                if (ways_.HasWayOut(place_))
                    Note(Finding::Kind::Loop, i + 1,
                         back + "Who always chooses it never comes to the end.");
                else
                    Problem(Finding::Kind::Loop, i + 1, back + "No answer leads out of this loop.");
            }
        }
    }

    const SurveySnapshot& survey_;
    Ways ways_;
    bool knowsScales_;
    QHash<std::int64_t, QStringList> pointsOf_;
    std::vector<QString> labels_;
    std::size_t place_ = 0;
    std::vector<Finding> findings_;
};

} // namespace

std::vector<Finding> CheckSurvey(const SurveySnapshot& survey,
                                 const std::optional<SurveyScales>& scales) {
    return Check(survey, scales).Run();
}

int CountProblems(const std::vector<Finding>& findings) {
    return static_cast<int>(
        std::count_if(findings.begin(), findings.end(), [](const Finding& finding) {
            return finding.gravity == Finding::Gravity::Problem;
        }));
}

} // namespace pollarix
