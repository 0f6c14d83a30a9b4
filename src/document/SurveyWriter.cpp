#include "document/SurveyWriter.h"

#include <QHash>
#include <QSet>

#include "document/clsQ.h"
#include "platform/base/Failure.h"

namespace pollarix {

namespace {

constexpr std::int64_t BesideText = 1000; // what the other fields of a row may take, in bytes

void RequireLength(const QString& text, const QString& what) {
    // No character takes more than three bytes a unit: mostly nothing has to be counted.
    if (3 * text.size() + BesideText <= Connection::LongestText)
        return;
    const std::int64_t bytes = text.toUtf8().size();
    if (bytes + BesideText > Connection::LongestText)
        throw Failure(failure::Overflow,
                      QString("%1 has %2 MB, which is more than a survey file takes (%3 MB). "
                              "Nothing was saved")
                          .arg(what)
                          .arg(bytes >> 20)
                          .arg(Connection::LongestText >> 20));
}

void RequireLengths(const SurveySnapshot& design) {
    for (std::size_t i = 0; i < design.questions.size(); ++i) {
        const SurveySnapshot::Question& q = design.questions[i];
        RequireLength(q.Text, QString("The text at place %1 of the survey").arg(i + 1));
        if (!HasResponses(q.qType))
            continue;
        for (std::size_t j = 0; j < q.responses.size(); ++j)
            RequireLength(q.responses[j].Text,
                          QString("Response %1 at place %2 of the survey").arg(j + 1).arg(i + 1));
    }
}

class Writer {
  public:
    Writer(Connection& file, const SurveySnapshot& design) : file_(file), design_(design) {}

    void Write() {
        file_.Run("UPDATE question SET deleteme = true");
        file_.Run("UPDATE response SET deleteme = true");
        // All questions get their ids before any response is written, so that a jump to a question
        // that is new in this save can be stored.
        WriteQuestions();
        WriteResponses();
        file_.Run("DELETE FROM response WHERE deleteme = true");
        file_.Run("DELETE FROM question WHERE deleteme = true");
    }

  private:
    // What a row is found and made under. -1 stands for none; an id that another one of this save
    // has taken is none either.
    enum class Row { Update, InsertUnderId, Insert };
    Row RowOf(const char* select, std::int16_t id, QSet<std::int16_t>& taken) {
        if (id == -1 || taken.contains(id))
            return Row::Insert;
        if (!file_.Execute(select, {id}).AtEnd())
            return Row::Update;
        return id > 0 ? Row::InsertUnderId : Row::Insert;
    }

    void WriteQuestions() {
        TableInsert insert(file_, "question",
                           {"question", "questionno", "qtype", "pos", "Deleteme"});
        TableInsert insertUnderId(file_, "question",
                                  {"id", "question", "questionno", "qtype", "pos", "Deleteme"});
        QSet<std::int16_t> taken;
        std::int64_t pos = 0;
        for (const SurveySnapshot::Question& q : design_.questions) {
            ++pos;
            std::int16_t id = q.DatabaseID;
            switch (RowOf("SELECT id FROM question WHERE id = ?", id, taken)) {
            case Row::Update:
                file_.Run("UPDATE question SET Deleteme = false, questionno = ?, question = ?, "
                          "qtype = ?, pos = ? WHERE id = ?",
                          {q.QuestionNo, q.Text, q.qType, pos, id});
                break;
            case Row::InsertUnderId:
                insertUnderId.Add({id, q.Text, q.QuestionNo, q.qType, pos, 0});
                break;
            case Row::Insert:
                id = Narrow16(insert.Add({q.Text, q.QuestionNo, q.qType, pos, 0}));
                break;
            }
            taken.insert(id);
            idOf_.insert(q.Key, id);
        }
    }

    void WriteResponses() {
        TableInsert insert(
            file_, "response",
            {"questionid", "name", "pos", "responseMatrixGroupID", "LogicJumpToQuestionID"});
        TableInsert insertUnderId(
            file_, "response",
            {"id", "questionid", "name", "pos", "responseMatrixGroupID", "LogicJumpToQuestionID"});
        QSet<std::int16_t> taken;
        // Lives across responses and questions, and only an update sets it: a key that no longer
        // resolves inherits the jump that was worked out last. Required behaviour.
        std::int16_t jumpID = 0;
        for (const SurveySnapshot::Question& q : design_.questions) {
            if (!HasResponses(q.qType))
                continue;
            const std::int16_t question = idOf_.value(q.Key);
            std::int64_t pos = 0;
            for (const SurveySnapshot::Response& r : q.responses) {
                ++pos;
                const auto target = idOf_.constFind(r.LogicJumpToQuestionKey);
                const bool found = target != idOf_.constEnd();
                const DbValue ownJump = found ? DbValue(*target) : DbValue();
                switch (RowOf("SELECT id FROM response WHERE id = ?", r.DatabaseID, taken)) {
                case Row::Update:
                    if (r.LogicJumpToQuestionKey.isEmpty())
                        jumpID = -1;
                    else if (found)
                        jumpID = *target;
                    file_.Run("UPDATE response SET Deleteme = false, name = ?, "
                              "responseMatrixGroupID = ?, LogicJumpToQuestionID = ?, pos = ? "
                              "WHERE id = ?",
                              {r.Text, q.ResponseMatrixGroupID,
                               jumpID == -1 ? DbValue() : DbValue(jumpID), pos, r.DatabaseID});
                    taken.insert(r.DatabaseID);
                    break;
                case Row::InsertUnderId:
                    insertUnderId.Add(
                        {r.DatabaseID, question, r.Text, pos, q.ResponseMatrixGroupID, ownJump});
                    taken.insert(r.DatabaseID);
                    break;
                case Row::Insert:
                    insert.Add({question, r.Text, pos, q.ResponseMatrixGroupID, ownJump});
                    break;
                }
            }
        }
    }

    Connection& file_;
    const SurveySnapshot& design_;
    QHash<QString, std::int16_t> idOf_; // the question's key
};

} // namespace

void WriteDesign(Connection& file, const SurveySnapshot& design) {
    RequireLengths(design);
    Writer(file, design).Write();
}

} // namespace pollarix
