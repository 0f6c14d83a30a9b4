// The import of a results file, measured against bare SQLite inserting the same rows into the same
// tables in one transaction, from C++ and without a file to read. Each run is a process of its own,
// so that its peak memory is its own.
//
//   import_benchmark                     100,000 respondents
//   import_benchmark --respondents 1000  another count
#include <benchmark/benchmark.h>

#include <QFile>
#include <QTemporaryDir>

#include <sqlite3.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include "generate_results.h"
#include "generate_survey.h"
#include "platform/QtDialogs.h"
#include "platform/Windows1252.h"
#include "web/ResultsReader.h"

namespace pollarix::benchmarks {
namespace {

// The program's own boxes, but for showing them.
class SilentDialogs : public QtDialogs {
  public:
    MsgAnswer MsgBox(const QString&, MsgIcon, MsgButtons) override { return MsgAnswer::Ok; }
};

void Import(const QString& survey, const QString& results) {
    Settings settings(survey + ".settings");
    SilentDialogs dialogs;
    ApplicationState state(Directories{}, settings, dialogs);
    state.SurveyConnection.Open(survey);
    DoLoadXML(state, results);
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

void InsertBare(const QString& survey, int respondents) {
    sqlite3* file = nullptr;
    Check(sqlite3_open(survey.toUtf8().constData(), &file));
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

struct Measured {
    double seconds = 0;
    double processorSeconds = 0; // which another program's load does not change
    double peakMegabytes = 0;
};

double Seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

template <typename Work> Measured InOwnProcess(const Work& work) {
    const auto start = std::chrono::steady_clock::now();
    const pid_t process = fork();
    if (process == 0) {
        try {
            work();
        } catch (const std::exception& failure) {
            std::fprintf(stderr, "%s\n", failure.what());
            _exit(1);
        }
        _exit(0);
    }
    int status = 1;
    rusage usage{};
    wait4(process, &status, 0, &usage);
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    if (process < 0 || status != 0)
        std::exit(1);
    return {taken.count(), Seconds(usage.ru_utime) + Seconds(usage.ru_stime),
            static_cast<double>(usage.ru_maxrss) * 1024 / 1e6};
}

class Comparison {
  public:
    explicit Comparison(int respondents)
        : respondents_(respondents), results_(directory_.filePath("results.txt")) {
        resultsMegabytes_ = static_cast<double>(GenerateResults(results_, respondents)) / 1e6;
        GenerateSurvey(POLLARIX_DATA_DIR "/blank.mdb", directory_.filePath("empty.plxs"), 0);
    }

    void Register() {
        Add("bare", [this](const QString& survey) { InsertBare(survey, respondents_); });
        Add("import", [this](const QString& survey) { Import(survey, results_); });
    }

  private:
    template <typename Work> void Add(const std::string& name, Work work) {
        benchmark::RegisterBenchmark(
            name.c_str(),
            [this, name, work](benchmark::State& state) {
                Measured sum;
                for ([[maybe_unused]] const auto& run : state) {
                    const QString survey = directory_.filePath("survey.plxs");
                    QFile::remove(survey);
                    QFile::copy(directory_.filePath("empty.plxs"), survey);
                    const Measured measured = InOwnProcess([&] { work(survey); });
                    state.SetIterationTime(measured.seconds);
                    sum.seconds += measured.seconds;
                    sum.processorSeconds += measured.processorSeconds;
                    sum.peakMegabytes = std::max(sum.peakMegabytes, measured.peakMegabytes);
                }
                if (name == "bare")
                    bare_ = sum;
                state.counters["of_bare"] = sum.seconds / bare_.seconds;
                state.counters["cpu_of_bare"] = sum.processorSeconds / bare_.processorSeconds;
                state.counters["peak_MB"] = sum.peakMegabytes;
                state.counters["peak_of_file"] = sum.peakMegabytes / resultsMegabytes_;
                state.counters["results_MB"] = resultsMegabytes_;
                state.counters["rows"] = static_cast<double>(respondents_) * AnswersPerRespondent;
            })
            ->UseManualTime()
            ->Iterations(3)
            ->Unit(benchmark::kMillisecond);
    }

    QTemporaryDir directory_;
    int respondents_;
    QString results_;
    double resultsMegabytes_ = 0;
    Measured bare_;
};

} // namespace
} // namespace pollarix::benchmarks

int main(int argc, char** argv) {
    int respondents = 100000;
    if (argc >= 3 && std::string(argv[1]) == "--respondents") {
        respondents = std::atoi(argv[2]);
        argv[2] = argv[0];
        argv += 2;
        argc -= 2;
    }
    benchmark::Initialize(&argc, argv);
    pollarix::benchmarks::Comparison comparison(respondents);
    comparison.Register();
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
