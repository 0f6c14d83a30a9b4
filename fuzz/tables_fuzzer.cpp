// The tables that answers are imported from. The first byte says what the rest is: a whole file, a
// text with a given shape, or what stands within a workbook. A table is read to its end or refused
// with the path in front; what is imported is what was counted before, whole and of the survey; a
// refused import leaves nothing.
#include <zip.h>

#include <algorithm>

#include "FuzzProgram.h"
#include "document/SurveyReader.h"
#include "statistics/GeneratedAnswers.h"
#include "tables/AnswerImport.h"
#include "tables/OpenTable.h"

#include <sqlite3.h>

using namespace pollarix;

namespace {

enum Input : std::uint8_t { WholeFile, GivenShape, Rows, SharedTexts, Formats, Inputs };

// Opened once: each import begins without respondents.
fuzz::Program& ProgramWithSurvey() {
    static fuzz::Program& program = []() -> fuzz::Program& {
        static fuzz::Program made;
        const QString path = fuzz::Path("survey.plxs");
        sqlite3* file = nullptr;
        fuzz::Require(sqlite3_open(path.toUtf8().constData(), &file) == SQLITE_OK &&
                          sqlite3_exec(file, fuzz::BlankSurveySql().constData(), nullptr, nullptr,
                                       nullptr) == SQLITE_OK,
                      "a blank survey can be made");
        sqlite3_close(file);
        made.state.SurveyConnection.Open(path);
        test::GeneratedAnswers generated(made.state.SurveyConnection);
        return made;
    }();
    return program;
}

void WriteWorkbook(const QString& path, Input input, const QByteArray& bytes) {
    const auto part = [&](Input own, const char* usual) {
        return input == own ? bytes : QByteArray(usual);
    };
    const std::vector<std::pair<const char*, QByteArray>> parts = {
        {"_rels/.rels", "<a><Relationship Id='a' Type='x/officeDocument' Target='w.xml'/></a>"},
        {"w.xml", "<a><sheet name='One' id='b'/></a>"},
        {"_rels/w.xml.rels", "<a><Relationship Id='b' Type='x/worksheet' Target='s.xml'/>"
                             "<Relationship Id='c' Type='x/sharedStrings' Target='t.xml'/>"
                             "<Relationship Id='d' Type='x/styles' Target='f.xml'/></a>"},
        {"f.xml", part(Formats, "<a><cellXfs><xf numFmtId='0'/><xf numFmtId='14'/></cellXfs></a>")},
        {"t.xml", part(SharedTexts, "<a><si><t>q1</t></si><si><t>North</t></si></a>")},
        {"s.xml", part(Rows, "<a><row><c t='s'><v>0</v></c><c t='inlineStr'><is><t>date</t></is>"
                             "</c></row><row><c t='s'><v>1</v></c><c s='1'><v>45000</v></c></row>"
                             "</a>")}};
    zip_t* zip = zip_open(path.toUtf8().constData(), ZIP_CREATE | ZIP_TRUNCATE, nullptr);
    for (const auto& [name, content] : parts) {
        const auto place = static_cast<zip_uint64_t>(
            zip_file_add(zip, name,
                         zip_source_buffer(zip, content.constData(),
                                           static_cast<zip_uint64_t>(content.size()), 0),
                         ZIP_FL_OVERWRITE));
        zip_set_file_compression(zip, place, ZIP_CM_STORE, 0);
    }
    fuzz::Require(zip_close(zip) == 0, "a workbook can be made");
}

tables::TableShape ShapeOf(std::uint8_t byte) {
    tables::TextShape text;
    text.encoding = static_cast<tables::TextShape::Encoding>(byte % 3);
    text.separator = u",;\t|"[byte / 3 % 4];
    text.quote = u"\"'\0"[byte / 12 % 3];
    tables::TableShape shape;
    shape.text = text;
    shape.hasNames = byte < 128;
    return shape;
}

void Import(fuzz::Program& program, const QString& path,
            const std::optional<tables::TableShape>& shape) {
    Connection& survey = program.state.SurveyConnection;
    const statistics::SurveyVariables variables(survey);
    const auto table = tables::OpenTable(path, shape);
    fuzz::Require(!table->Columns().empty(), "a table has columns");
    tables::AnswerImport import(variables, *table, GuessTargets(table->Columns(), variables));
    const auto checked = import.Check({});
    const auto imported = import.Write(program.state, DigestOfDesign(survey), {});
    fuzz::Require(imported == checked->respondents, "as many as were counted");
    fuzz::Require(survey.Count("SELECT count(*) FROM respondent WHERE source = 'Imported'") ==
                      imported,
                  "each of them is there");
    fuzz::Require(survey.Count("SELECT count(*) FROM respondent_responses") == checked->answers,
                  "and each answer");
    fuzz::Require(
        survey.Count("SELECT count(*) FROM respondent_responses AS a LEFT JOIN respondent AS r ON "
                     "r.id = RespondentID LEFT JOIN question AS q ON q.id = a.QuestionID LEFT JOIN "
                     "response AS c ON c.id = ResponseID AND c.questionid = q.id LEFT JOIN "
                     "responsematrix AS m ON m.id = ResponseMatrixID AND "
                     "m.ResponseMatrixGroupID = c.responseMatrixGroupID WHERE r.id IS NULL OR "
                     "q.id IS NULL OR (qtype <> 0 AND c.id IS NULL) OR (qtype = 3 AND m.id IS "
                     "NULL)") == 0,
        "answers belong to the survey");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2)
        return 0;
    fuzz::Program& program = ProgramWithSurvey();
    Connection& survey = program.state.SurveyConnection;
    const auto input = static_cast<Input>(data[0] % Inputs);
    const auto bytes =
        QByteArray(reinterpret_cast<const char*>(data) + 1, static_cast<qsizetype>(size) - 1);
    const QString path = fuzz::Path("answers");
    std::optional<tables::TableShape> shape;
    if (input == WholeFile) {
        fuzz::WriteFile(path, bytes);
    } else if (input == GivenShape) {
        shape = ShapeOf(static_cast<std::uint8_t>(bytes[0]));
        fuzz::WriteFile(path, QByteArrayView(bytes).sliced(1));
    } else {
        WriteWorkbook(path, input, bytes);
    }
    try {
        Import(program, path, shape);
    } catch (const Failure& failure) {
        fuzz::Require(failure.Number() == failure::InvalidArgument &&
                          failure.Description().startsWith(path),
                      "a refusal names the file");
        fuzz::Require(survey.Count("SELECT count(*) FROM respondent") == 0,
                      "and leaves the survey as it was");
        return 0;
    }
    WriteBatch batch(survey);
    survey.Run("DELETE FROM respondent_responses");
    survey.Run("DELETE FROM respondent");
    batch.Commit();
    return 0;
}
