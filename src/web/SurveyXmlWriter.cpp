#include "web/SurveyXmlWriter.h"

#include "platform/base/Failure.h"
#include "platform/base/Windows1252.h"
#include "platform/files/Files.h"
#include "platform/richtext/RichText.h"

namespace pollarix {

namespace {

// Each sub question brings its whole scale along: without a bound, a small file could fill the
// memory.
constexpr qsizetype LongestDocument = 64 << 20;

class Document {
  public:
    void Line(int tabs, QStringView line) {
        if (text_.size() > LongestDocument)
            throw Failure(failure::Overflow, "The survey document is too long");
        text_ += QString(tabs, '\t');
        text_ += line;
        text_ += QLatin1String("\r\n");
    }
    void Value(int tabs, const char* tag, const QString& value) {
        Line(tabs, QString("<%1>").arg(QLatin1String(tag)) + value +
                       QString("</%1>").arg(QLatin1String(tag)));
    }
    void Value(int tabs, const char* tag, std::int64_t value) {
        Value(tabs, tag, QString::number(value));
    }
    const QString& Text() const { return text_; }

  private:
    QString text_;
};

// The whole scale stands again before each sub question.
void WriteScale(Document& document, Connection& file, std::int16_t group) {
    const Recordset count = file.Execute(
        "SELECT count(*) FROM responsematrix WHERE responsematrixgroupid = ?", {group});
    if (!count.AtEnd())
        document.Value(3, "ReponseMatrixCount", count.Integer(0)); // the tag is spelt so
    for (Recordset point = file.Execute("SELECT id, name FROM responsematrix WHERE "
                                        "responsematrixgroupid = ? ORDER BY pos",
                                        {group});
         !point.AtEnd(); point.MoveNext()) {
        document.Value(4, "ResponseMatrixID", point.Integer("id"));
        document.Value(4, "ResponseMatrixName", point.NullToString("name"));
    }
}

void WriteResponses(Document& document, Connection& file, const clsQ& q) {
    document.Value(1, "ResponsesCount", q.ResponsesCount());
    if (q.ResponsesCount() < 1)
        return;
    // One wrapper for all responses of the question, not one for each.
    document.Line(2, u"<Response>");
    for (int j = 1; j <= q.ResponsesCount(); ++j) {
        const std::shared_ptr<clsResponse> r = q.GetResponse(Narrow16(j));
        // Its result serves nothing, but a file that can't answer ends the run.
        file.Execute("SELECT id FROM response WHERE id = ?", {r->DatabaseID});
        if (q.qType == kind::Matrix)
            WriteScale(document, file, q.ResponseMatrixGroupID);
        document.Value(3, "QuestionID", q.DatabaseID);
        document.Value(3, "Name", r->Text);
        document.Value(3, "DatabaseID", r->DatabaseID);
        document.Value(3, "Pos", j);
        document.Value(3, "ResponseMatrixGroupID", q.ResponseMatrixGroupID);
    }
    document.Line(2, u"</Response>");
}

} // namespace

QString SurveyXmlPath(const ApplicationState& state) {
    return state.directories.InUser("test.xml");
}

void DoSaveXML(ApplicationState& state, const SurveyViews& views) {
    // The selection serves nothing, but without one the writing fails.
    if (!views.SelectedKey())
        throw Failure(failure::NoObject);

    clsSurvey& survey = state.CurrentSurvey;
    Connection& file = state.SurveyConnection;
    Document document;
    document.Value(0, "app", QString("Pollarix"));
    document.Value(0, "user", QString());
    document.Value(0, "key", QString());
    document.Value(0, "version", QString("1.4"));
    for (int i = 1; i <= survey.QCount(); ++i) {
        const clsQ& q = *survey.GetQIndex(Narrow16(i));
        file.Execute("SELECT id FROM question WHERE id = ?", {q.DatabaseID}); // as above
        document.Line(0, u"<q>");
        document.Value(1, "DatabaseID", q.DatabaseID);
        document.Value(1, "Question", PlainTextOf(q.Question));
        document.Value(1, "QuestionNo", q.QuestionNo); // as it stands, also on instruction text
        document.Value(1, "QType", q.qType);
        document.Value(1, "OpenEnded_NoOfRows", q.OpenEnded_NoOfRows);
        document.Line(1, u"<r>");
        if (HasResponses(q.qType))
            WriteResponses(document, file, q);
        document.Line(1, u"</r>");
        document.Line(0, u"</q>");
    }
    WriteWholeFile(SurveyXmlPath(state), ToWindows1252(document.Text()));
}

} // namespace pollarix
