// The import of a results file, beside bare SQLite inserting the same rows into the same tables in
// one transaction, from C++ and without a file to read. Each run is a process of its own, so that
// its peak memory is its own.
#include <QFile>
#include <QTemporaryDir>

#include <sqlite3.h>

#include <map>
#include <stdexcept>

#include "Measuring.h"
#include "generate_results.h"
#include "generate_survey.h"
#include "platform/base/Windows1252.h"
#include "platform/desktop/QtDialogs.h"
#include "web/ResultsReader.h"

using namespace pollarix;
using namespace pollarix::benchmarks;

namespace {

// The program's own boxes, but for showing them.
class SilentDialogs : public QtDialogs {
  public:
    MsgAnswer MsgBox(const QString&, MsgIcon, MsgButtons) override { return MsgAnswer::Ok; }
};

void ImportResults(const QStringList& arguments) {
    const QString& survey = arguments[0];
    Settings settings(survey + ".settings");
    SilentDialogs dialogs;
    ApplicationState state(Directories{}, settings, dialogs);
    state.SurveyConnection.Open(survey);
    DoLoadXML(state, arguments[1]);
    state.SurveyConnection.Close();
}

void Check(int result) {
    if (result != SQLITE_OK && result != SQLITE_DONE)
        throw std::runtime_error(sqlite3_errstr(result));
}

sqlite3_stmt* Prepared(sqlite3* file, const char* sql) {
    sqlite3_stmt* statement = nullptr;
    Check(sqlite3_prepare_v2(file, sql, -1, &statement, nullptr));
    return statement;
}

void InsertBare(const QStringList& arguments) {
    const int respondents = arguments[1].toInt();
    sqlite3* file = nullptr;
    Check(sqlite3_open(arguments[0].toUtf8().constData(), &file));
    Check(sqlite3_exec(file, "PRAGMA cache_size = -32000; BEGIN", nullptr, nullptr, nullptr));
    sqlite3_stmt* respondentRow = Prepared(file, "INSERT INTO respondent (source) VALUES ('Web')");
    sqlite3_stmt* row =
        Prepared(file, "INSERT INTO respondent_responses (QuestionID, RespondentID, ResponseID, "
                       "SimpleResponse, ResponseMatrixID) VALUES (?, ?, ?, ?, ?)");
    for (int respondent = 1; respondent <= respondents; ++respondent) {
        Check(sqlite3_step(respondentRow));
        Check(sqlite3_reset(respondentRow));
        const sqlite3_int64 id = sqlite3_last_insert_rowid(file);
        ForEachAnswer(respondent, [&](const GeneratedAnswer& answer) {
            const QByteArray text =
                FromWindows1252(QByteArrayView(answer.text.data(), answer.text.size())).toUtf8();
            sqlite3_bind_int(row, 1, answer.question);
            sqlite3_bind_int64(row, 2, id);
            sqlite3_bind_int(row, 3, answer.response);
            sqlite3_bind_text(row, 4, text.constData(), static_cast<int>(text.size()),
                              SQLITE_STATIC);
            if (answer.point)
                sqlite3_bind_int(row, 5, answer.point);
            else
                sqlite3_bind_null(row, 5);
            Check(sqlite3_step(row));
            Check(sqlite3_reset(row));
        });
    }
    sqlite3_finalize(respondentRow);
    sqlite3_finalize(row);
    Check(sqlite3_exec(file, "COMMIT", nullptr, nullptr, nullptr));
    Check(sqlite3_close(file));
}

const Work Imported("import", ImportResults);
const Work Bare("bare", InsertBare);

// The same file for the same count, made once.
QString Results(int respondents) {
    static const QTemporaryDir directory;
    static std::map<int, QString> made;
    QString& path = made[respondents];
    if (path.isEmpty()) {
        path = directory.filePath(QString::number(respondents));
        GenerateResults(path, respondents);
    }
    return path;
}

// Each time into an empty survey.
void Measure(benchmark::State& state, const char* work, const QString& argument) {
    const QTemporaryDir directory;
    const QString survey = directory.filePath("survey.plxs");
    MeasureProcess(state, Alone(work, {survey, argument}), "/dev/null",
                   [&] { GenerateSurvey(POLLARIX_DATA_DIR "/blank.mdb", survey, 0); });
    state.counters["rows"] = static_cast<double>(state.range(0)) * AnswersPerRespondent;
}

void Import(benchmark::State& state) {
    const QString results = Results(static_cast<int>(state.range(0)));
    Measure(state, "import", results);
    state.counters["file_MB"] = static_cast<double>(QFile(results).size()) / 1e6;
}

void Import_BareSQLite(benchmark::State& state) {
    Measure(state, "bare", QString::number(state.range(0)));
}

void Sizes(benchmark::internal::Benchmark* measured) {
    Respondents(measured);
    measured->UseManualTime()->Iterations(1);
}

BENCHMARK(Import)->Apply(Sizes);
BENCHMARK(Import_BareSQLite)->Apply(Sizes);

} // namespace
