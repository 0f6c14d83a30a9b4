#include "design/JumpTexts.h"

#include <QStringList>

#include "document/QuestionLine.h"
#include "platform/base/Failure.h"

namespace pollarix {

namespace {

constexpr qsizetype LongestQuestion = 120; // characters
constexpr qsizetype LongestResponse = 40;
constexpr qsizetype MostLines = 10;

QString LineOf(const clsQ& q) {
    return QuestionLine(q.qType, q.QuestionNo, q.Question, LongestQuestion);
}

} // namespace

QString JumpTarget(const clsSurvey& survey, const clsResponse& response) {
    const QString& key = response.LogicJumpToQuestionKey;
    // A target that was gone when the survey was read has left its id alone.
    if (key.isEmpty() && response.LogicJumpToQuestionID == -1)
        return {};
    const std::shared_ptr<clsQ> target = key.isEmpty() ? nullptr : survey.GetQ(key);
    return target ? LineOf(*target) : QString("a question that was deleted");
}

QString JumpsTo(const clsSurvey& survey, const QString& key) {
    QStringList lines;
    for (int i = 1; i <= survey.QCount(); ++i) {
        const clsQ& q = *survey.GetQIndex(Narrow16(i));
        if (q.qType != kind::Radio)
            continue;
        QStringList from;
        for (int j = 1; j <= q.ResponsesCount(); ++j)
            if (const clsResponse& r = *q.GetResponse(Narrow16(j)); r.LogicJumpToQuestionKey == key)
                from << OnOneLine(r.Text, LongestResponse);
        if (from.isEmpty())
            continue;
        if (lines.size() == MostLines) {
            lines << "...";
            break;
        }
        lines << LineOf(q) + " (" + from.join(", ") + ')';
    }
    return lines.join('\n');
}

} // namespace pollarix
