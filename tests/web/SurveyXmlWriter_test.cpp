#include "web/SurveyXmlWriter.h"

#include "WebWizard.h"
#include "support/Bytes.h"
#include "support/Places.h"

using namespace pollarix;
using namespace pollarix::test;

namespace {

class SurveyXml : public WebWizard {
  protected:
    clsQ& Add(const QString& text, std::int32_t kind, int id, int scale) {
        return *Survey().GetQ(Survey().AddQ(text, kind, id, scale));
    }
    clsSurvey& Survey() { return program.state.CurrentSurvey; }
};

} // namespace

TEST_F(SurveyXml, ASurveyOfEveryKindIsWrittenAsTheServerReadsIt) {
    RunSql(path, {"DELETE FROM responsematrix WHERE ResponseMatrixGroupID = 2",
                  "INSERT INTO responsematrix (id, name, ResponseMatrixGroupID, pos) VALUES"
                  "(300, NULL, 2, 1), (301, '<Good>', 2, 0)"});
    Add("{\\rtf1\\ansi What's \\b new\\b0 ?\\par Say\\tab more}", kind::OpenEnded, 11, 1)
        .OpenEnded_NoOfRows = 0;
    clsQ& check = Add("", kind::Check, 12, 1);
    clsQ& radio = Add(u"Which? \u20ac \u0416\U0001F600"_qs, kind::Radio, -1, 1);
    radio.AddResponse("Yes", 40, 11, Survey().GetQIndex(1)->Key); // jumps are not written
    radio.AddResponse("a < b & \"c\"", -1, -1, "");
    clsQ& matrix = Add("Rate", kind::Matrix, 14, 2);
    matrix.AddResponse("Food", 50, -1, "");
    matrix.AddResponse("", 51, -1, "");
    clsQ& text = Add("Read this", kind::Text, 16, 1);
    text.QuestionNo = "7"; // an old number stays
    text.AddResponse("never written", 60, -1, "");
    check.OpenEnded_NoOfRows = -2;

    DoSaveXML(program.state, views);
    const QByteArray byHand = BytesOf(SourceFile("tests/web/every-kind.txt")); // with LF alone
    EXPECT_EQ(BytesOf(SurveyXmlPath(program.state)), QByteArray(byHand).replace("\n", "\r\n"));
}
