// The reader of results files. What an import adds is whole: respondents of the web only, no answer
// without its respondent, none of the questions touched, and the message tells the right count. A
// refused import ends in one of the failures it is allowed.
#include "FuzzProgram.h"
#include "web/ResultsReader.h"

#include <sqlite3.h>

using namespace pollarix;

namespace {

bool IsKnown(int number) {
    return number == 0 || number == failure::InvalidArgument || number == failure::Overflow ||
           number == failure::Subscript || number == failure::TypeMismatch ||
           number == SQLITE_CONSTRAINT_DATATYPE || number == SQLITE_CONSTRAINT_NOTNULL;
}

// Opened once: an import begins with an empty file's tables.
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
        return made;
    }();
    return program;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Program& program = ProgramWithSurvey();
    Connection& survey = program.state.SurveyConnection;
    program.dialogs.shown = 0;
    const QString path = fuzz::Path("3-7.txt");
    fuzz::WriteFile(path, {reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)});
    const int number = fuzz::NumberOf([&] { DoLoadXML(program.state, path); });
    fuzz::Require(IsKnown(number), "only known failures");
    fuzz::Require(program.dialogs.shown == (number == 0 ? 1 : 0), "one message for an import");
    fuzz::Require(survey.Count("SELECT count(*) FROM respondent WHERE source <> 'Web' OR "
                               "source IS NULL OR submitteddate = ''") == 0,
                  "respondents are of the web");
    fuzz::Require(survey.Count("SELECT count(*) FROM respondent_responses WHERE RespondentID NOT "
                               "IN (SELECT id FROM respondent) OR SimpleResponse IS NULL") == 0,
                  "answers belong to respondents");
    fuzz::Require(survey.Count("SELECT (SELECT count(*) FROM question) + (SELECT count(*) FROM "
                               "response)") == 0,
                  "questions are not touched");
    WriteBatch batch(survey);
    survey.Run("DELETE FROM respondent_responses");
    survey.Run("DELETE FROM respondent");
    batch.Commit();
    return 0;
}
