#include "document/SurveyReader.h"

#include <QCryptographicHash>
#include <QHash>

#include "document/clsSurvey.h"

namespace pollarix {

namespace {

void ReadQuestions(Connection& file, SurveySnapshot& design) {
    for (Recordset row = file.Execute("SELECT * FROM question ORDER BY pos"); !row.AtEnd();
         row.MoveNext()) {
        SurveySnapshot::Question q;
        q.Text = row.NullToString("question");
        q.qType = Narrow32(row.Integer("qtype"));
        q.DatabaseID = Narrow16(row.Integer("id"));
        q.QuestionNo = row.NullToString("questionno");
        q.ResponseMatrixGroupID = 1;
        q.Key = CreateGUIDKey("{}-");
        Narrow16(static_cast<std::int64_t>(design.questions.size()) + 1); // as many as are counted
        design.questions.push_back(std::move(q));
    }
}

void ReadResponses(Connection& file, SurveySnapshot& design) {
    QHash<std::int16_t, QString> keyOf; // the first of two questions under one id
    for (const SurveySnapshot::Question& q : design.questions)
        if (!keyOf.contains(q.DatabaseID))
            keyOf.insert(q.DatabaseID, q.Key);
    for (SurveySnapshot::Question& q : design.questions) {
        if (!HasResponses(q.qType))
            continue;
        for (Recordset row = file.Execute(
                 "SELECT id, name, responseMatrixGroupID, LogicJumpToQuestionID FROM response "
                 "WHERE questionid = ? ORDER BY pos",
                 {q.DatabaseID});
             !row.AtEnd(); row.MoveNext()) {
            if (q.responses.empty())
                q.ResponseMatrixGroupID = Narrow16(row.Integer("responseMatrixGroupID"));
            SurveySnapshot::Response r;
            r.LogicJumpToQuestionID = -1;
            if (!row.IsNull("LogicJumpToQuestionID")) {
                r.LogicJumpToQuestionID = Narrow16(row.Integer("LogicJumpToQuestionID"));
                r.LogicJumpToQuestionKey = keyOf.value(r.LogicJumpToQuestionID);
            }
            r.Text = row.NullToString("name");
            r.DatabaseID = Narrow16(row.Integer("id"));
            Narrow16(static_cast<std::int64_t>(q.responses.size()) + 1);
            q.responses.push_back(std::move(r));
        }
    }
}

} // namespace

DesignRead ReadDesign(Connection& file) {
    DesignRead read;
    try {
        ReadQuestions(file, read.design);
        ReadResponses(file, read.design);
    } catch (const Failure& failure) {
        read.failure = failure;
    }
    return read;
}

QByteArray DigestOfDesign(Connection& file) {
    QCryptographicHash digest(QCryptographicHash::Sha1);
    const auto add = [&](const char* sql, int fields) {
        for (Recordset row = file.Execute(sql); !row.AtEnd(); row.MoveNext())
            for (int field = 0; field < fields; ++field) {
                const bool null = row.IsNull(field);
                const QString text = null ? QString() : row.Text(field);
                // The length keeps two fields from being read as one.
                digest.addData(QByteArray::number(null ? -1 : text.size()) + ' ');
                digest.addData(QByteArrayView(reinterpret_cast<const char*>(text.utf16()),
                                              text.size() * qsizetype(sizeof(char16_t))));
            }
        digest.addData("\n");
    };
    add("SELECT id, question, questionno, qtype, pos FROM question ORDER BY id", 5);
    add("SELECT id, questionid, name, pos, responseMatrixGroupID, LogicJumpToQuestionID "
        "FROM response ORDER BY id",
        6);
    return digest.result();
}

} // namespace pollarix
