// The survey that is open: its questions in the order in which they are asked. Between opening and
// saving it is the truth about questions and responses; respondents and answers are never here.
#pragma once

#include <QHash>
#include <QString>

#include <cstdint>
#include <memory>
#include <vector>

#include "document/clsQ.h"

namespace pollarix {

// A new key: the text form of a fresh GUID, upper case, without the characters of `strip`. With
// "{}-" it has 32 digits.
QString CreateGUIDKey(const QString& strip);

class clsSurvey {
  public:
    QString ProjectFilename; // nothing reads or writes it; the path is ApplicationState's

    // How many questions there are.
    std::int16_t QCount() const {
        return static_cast<std::int16_t>(questions_.empty() ? 0 : questions_.size() - 1);
    }

    // Numbers the questions 1, 2, 3 ... in list order. An instruction text uses up no number and
    // keeps whatever number it has.
    void ReorderQ_QuestionNos();

    // Appends a new question and gives its key. It is numbered as the last real question; an
    // instruction text gets no number. Throws Overflow for a 32768th question.
    QString AddQ(const QString& Question, std::int32_t qType, std::int16_t DatabaseID,
                 std::int16_t ResponseMatrixGroupID);

    // Appends an existing question under a fresh key, which it gives; nothing is numbered.
    QString AddQ2(const std::shared_ptr<clsQ>& newQ);

    // Appends a question under the key it has, which no other in the list may have.
    void Append(std::shared_ptr<clsQ> q);

    // Removes a question. With an unknown key the last question goes: the list always shrinks.
    // Nothing is renumbered. Throws Subscript on an empty list.
    void DeleteQ(const QString& Key);

    // A diagnostic walk over one question's responses, without effect; failures are ignored.
    void DebugQResponses(std::int16_t i) const;

    std::shared_ptr<clsQ> GetQ(const QString& Key) const;    // no object for an unknown key
    void SwapQ(const QString& Key1, const QString& Key2);    // does nothing unless both are found
    std::int16_t GetQIndexFromKey(const QString& Key) const; // 1-based, or -1
    QString GetQuestionNoFromKey(const QString& Key) const;  // or ""
    std::int32_t GetQuestionTypeFromKey(const QString& Key) const; // or 4
    QString GetKeyFromDatabaseID(std::int16_t DatabaseID) const;   // of the first match, or ""

    // The question at position 1 to QCount, as clsQ::GetResponse. Throws Subscript.
    std::shared_ptr<clsQ> GetQIndex(std::int16_t Index) const;

    void SetQ(const QString& Key, const std::shared_ptr<clsQ>& q); // nothing for an unknown key

    // These two have no guard: an unknown key throws NoObject.
    void UpdateQuestion(const QString& Key, const QString& Question);
    void UpdateQuestionType(const QString& Key, std::int32_t QuestionType);

    void ClearAll();

  private:
    std::shared_ptr<clsQ> Required(const QString& Key) const;

    // Empty while the list has no bounds; else element 0 is never used.
    std::vector<std::shared_ptr<clsQ>> questions_;

    // Where each key stands first in the list, so that a lookup in a long survey costs no walk.
    // Empty after a change that moved questions, and made again by the next lookup.
    mutable QHash<QString, std::int16_t> positions_;
};

} // namespace pollarix
