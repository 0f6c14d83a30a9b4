#include "document/clsSurvey.h"

#include <QUuid>

#include <utility>

#include "platform/base/Failure.h"

namespace pollarix {

QString CreateGUIDKey(const QString& strip) {
    QString key = QUuid::createUuid().toString().toUpper();
    for (const QChar unwanted : strip)
        key.remove(unwanted);
    return key;
}

void clsSurvey::Append(std::shared_ptr<clsQ> q) {
    const std::int16_t count = Narrow16(QCount() + 1);
    questions_.resize(count + 1);
    questions_[count] = std::move(q);
    if (positions_.size() == count - 1)
        positions_.insert(questions_[count]->Key, count);
    else
        positions_.clear();
}

void clsSurvey::ReorderQ_QuestionNos() {
    int number = 1;
    for (int i = 1; i <= QCount(); ++i)
        if (IsNumbered(questions_[i]->qType))
            questions_[i]->QuestionNo = QString::number(number++);
}

QString clsSurvey::AddQ(const QString& Question, std::int32_t qType, std::int16_t DatabaseID,
                        std::int16_t ResponseMatrixGroupID) {
    auto q = std::make_shared<clsQ>();
    q->qType = qType;
    q->OpenEnded_NoOfRows = 1;
    q->Question = Question;
    q->ResponseMatrixGroupID = ResponseMatrixGroupID;
    q->Key = CreateGUIDKey("{}-");
    q->DatabaseID = DatabaseID;
    if (IsNumbered(qType)) {
        int numbered = 0;
        for (int i = 1; i <= QCount(); ++i)
            if (IsNumbered(questions_[i]->qType))
                ++numbered;
        q->QuestionNo = QString::number(numbered + 1);
    }
    Append(q);
    return q->Key;
}

QString clsSurvey::AddQ2(const std::shared_ptr<clsQ>& newQ) {
    // It may stand in the list already; its old key then names nothing any more.
    if (!newQ->Key.isEmpty())
        positions_.clear();
    newQ->Key = CreateGUIDKey("{}-");
    Append(newQ);
    return newQ->Key;
}

void clsSurvey::DeleteQ(const QString& Key) {
    if (QCount() < 1)
        throw Failure(failure::Subscript);
    bool found = false;
    for (int i = 1; i < QCount(); ++i) {
        found = found || questions_[i]->Key == Key;
        if (found)
            questions_[i] = questions_[i + 1];
    }
    positions_.clear();
    // The shrink is not conditional: a key that is not in the list costs the last question.
    questions_.pop_back();
}

void clsSurvey::DebugQResponses(std::int16_t i) const {
    try {
        const std::shared_ptr<clsQ> q = GetQIndex(i);
        if (!q)
            return;
        for (int j = 1; j <= q->ResponsesCount(); ++j)
            (void)q->GetResponse(Narrow16(j));
    } catch (const Failure&) {
        // Ignored on purpose: the walk is for a debugger only.
    }
}

std::shared_ptr<clsQ> clsSurvey::GetQ(const QString& Key) const {
    const std::int16_t i = GetQIndexFromKey(Key);
    return i == -1 ? nullptr : questions_[i];
}

void clsSurvey::SwapQ(const QString& Key1, const QString& Key2) {
    const std::int16_t i = GetQIndexFromKey(Key1);
    const std::int16_t j = GetQIndexFromKey(Key2);
    if (i == -1 || j == -1)
        return;
    std::swap(questions_[i], questions_[j]);
    positions_.clear();
}

std::int16_t clsSurvey::GetQIndexFromKey(const QString& Key) const {
    if (positions_.isEmpty())
        for (std::int16_t i = QCount(); i >= 1; --i)
            positions_.insert(questions_[i]->Key, i); // the first of two stays
    return positions_.value(Key, -1);
}

QString clsSurvey::GetQuestionNoFromKey(const QString& Key) const {
    const std::shared_ptr<clsQ> q = GetQ(Key);
    return q ? q->QuestionNo : QString();
}

std::int32_t clsSurvey::GetQuestionTypeFromKey(const QString& Key) const {
    const std::shared_ptr<clsQ> q = GetQ(Key);
    return q ? q->qType : kind::Text;
}

QString clsSurvey::GetKeyFromDatabaseID(std::int16_t DatabaseID) const {
    for (int i = 1; i <= QCount(); ++i)
        if (questions_[i]->DatabaseID == DatabaseID)
            return questions_[i]->Key;
    return {};
}

std::shared_ptr<clsQ> clsSurvey::GetQIndex(std::int16_t Index) const {
    if (Index < 0 || static_cast<std::size_t>(Index) >= questions_.size())
        throw Failure(failure::Subscript);
    return questions_[Index];
}

void clsSurvey::SetQ(const QString& Key, const std::shared_ptr<clsQ>& q) {
    const std::int16_t i = GetQIndexFromKey(Key);
    if (i == -1 || questions_[i] == q)
        return;
    questions_[i] = q;
    positions_.clear();
}

std::shared_ptr<clsQ> clsSurvey::Required(const QString& Key) const {
    std::shared_ptr<clsQ> q = GetQ(Key);
    if (!q)
        throw Failure(failure::NoObject);
    return q;
}

void clsSurvey::UpdateQuestion(const QString& Key, const QString& Question) {
    Required(Key)->Question = Question;
}

void clsSurvey::UpdateQuestionType(const QString& Key, std::int32_t QuestionType) {
    Required(Key)->qType = QuestionType;
}

void clsSurvey::ClearAll() {
    questions_.clear();
    positions_.clear();
}

} // namespace pollarix
