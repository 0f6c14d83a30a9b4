// Writing answers out, beside the SQLite shell dumping the same rows. Each run is a process of its
// own, so that its peak memory is its own.
#include <QFileInfo>
#include <QTemporaryDir>

#include "Measuring.h"
#include "analysis/DetailedReport.h"
#include "analysis/SurveyExport.h"
#include "analysis/TableExport.h"

using namespace pollarix;
using namespace pollarix::benchmarks;

namespace {

class NoDisplay : public ProgressDisplay {
  public:
    void ShowProgress(const QString&) override {}
    void ClearProgress() override {}
};

// One file written, with the program's own repainting meanwhile.
template <auto Writer> void WriteFile(const QStringList& arguments) {
    Connection connection;
    connection.Open(arguments[0]);
    NoDisplay display;
    LongWork work(display);
    work.Do("respondent",
            [&](const ProgressStep& step) { Writer(connection, arguments[1], step); });
}

const Work Export("export", WriteFile<SurveyExport::Write>);
const Work Table("table", WriteFile<TableExport::Write>);
const Work Report("report", WriteFile<DetailedReport::Write>);

void Write(benchmark::State& state, const char* what) {
    const QTemporaryDir directory;
    const QString file = directory.filePath("written");
    MeasureProcess(state, Alone(what, {LargeSurvey(static_cast<int>(state.range(0))), file}));
    state.counters["file_MB"] = static_cast<double>(QFileInfo(file).size()) / 1e6;
}

void Shell(benchmark::State& state, const char* rows) {
    const QTemporaryDir directory;
    const QString file = directory.filePath("dumped");
    const QString survey = LargeSurvey(static_cast<int>(state.range(0)));
    MeasureProcess(state, {"sqlite3", "-csv", survey.toStdString(), rows}, file);
    state.counters["file_MB"] = static_cast<double>(QFileInfo(file).size()) / 1e6;
}

void Sizes(benchmark::internal::Benchmark* measured) {
    Respondents(measured);
    measured->UseManualTime()->Iterations(1);
}

BENCHMARK_CAPTURE(Write, export, "export")->Apply(Sizes);
BENCHMARK_CAPTURE(Write, table, "table")->Apply(Sizes);
BENCHMARK_CAPTURE(Write, report, "report")->Apply(Sizes);
// The rows as they lie in the file, and the same in the order and with the names in which they are
// written out.
BENCHMARK_CAPTURE(Shell, dump, "SELECT * FROM respondent; SELECT * FROM respondent_responses;")
    ->Apply(Sizes);
BENCHMARK_CAPTURE(Shell, joined,
                  "SELECT source, submitteddate, questionno, response.name, responsematrix.name, "
                  "SimpleResponse FROM respondent "
                  "JOIN respondent_responses AS answer ON RespondentID = respondent.id "
                  "JOIN question ON question.id = answer.QuestionID "
                  "LEFT JOIN response ON response.id = ResponseID "
                  "LEFT JOIN responsematrix ON responsematrix.id = answer.ResponseMatrixID "
                  "ORDER BY submitteddate, respondent.id, answer.QuestionID, answer.id;")
    ->Apply(Sizes);

} // namespace
