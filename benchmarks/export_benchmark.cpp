// Writing answers out, measured against the SQLite shell dumping the same rows. Each run is a
// process of its own, so that its peak memory is its own; the time is the whole process's, too.
//
//   export_benchmark                     at 100,000 respondents
//   export_benchmark --respondents 1000  at another count
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QFileInfo>
#include <QTemporaryDir>

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "analysis/DetailedReport.h"
#include "analysis/SurveyExport.h"
#include "analysis/TableExport.h"
#include "generate_survey.h"

extern char** environ;

namespace pollarix::benchmarks {
namespace {

class NoDisplay : public ProgressDisplay {
  public:
    void ShowProgress(const QString&) override {}
    void ClearProgress() override {}
};

// The process that is measured: one file written, with the program's own repainting meanwhile.
int WriteOne(const std::string& what, const QString& survey, const QString& path) {
    Connection connection;
    connection.Open(survey);
    NoDisplay display;
    LongWork work(display);
    work.Do("respondent", [&](const ProgressStep& step) {
        if (what == "export")
            SurveyExport::Write(connection, path, step);
        else if (what == "table")
            TableExport::Write(connection, path, step);
        else
            DetailedReport::Write(connection, path, step);
    });
    return 0;
}

struct Measured {
    double seconds = 0;
    double processorSeconds = 0; // steadier than the clock on a busy machine
    double peakMegabytes = 0;
};

double Seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

Measured Run(const std::vector<std::string>& command, const std::string& output) {
    std::vector<char*> arguments;
    for (const std::string& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, output.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                     0600);
    const auto start = std::chrono::steady_clock::now();
    pid_t process = 0;
    int status = posix_spawnp(&process, arguments[0], &actions, nullptr, arguments.data(), environ);
    rusage usage{};
    if (status == 0)
        wait4(process, &status, 0, &usage);
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    posix_spawn_file_actions_destroy(&actions);
    if (status != 0) {
        std::fprintf(stderr, "%s failed\n", command[0].c_str());
        std::exit(1);
    }
    return {taken.count(), Seconds(usage.ru_utime) + Seconds(usage.ru_stime),
            static_cast<double>(usage.ru_maxrss) / 1024};
}

class Comparison {
  public:
    Comparison(std::string self, int respondents)
        : self_(std::move(self)), survey_(directory_.filePath("survey.plxs")),
          output_(directory_.filePath("output").toStdString()) {
        GenerateSurvey(POLLARIX_DATA_DIR "/blank.mdb", survey_, respondents);
    }

    void Register() {
        // The rows as they lie in the file, and the same in the order and with the names in which
        // they are written out.
        Add("shell/rows", {"sqlite3", "-csv", survey_.toStdString(),
                           "SELECT * FROM respondent; SELECT * FROM respondent_responses;"});
        Add("shell/joined",
            {"sqlite3", "-csv", survey_.toStdString(),
             "SELECT source, submitteddate, questionno, response.name, responsematrix.name, "
             "SimpleResponse FROM respondent "
             "JOIN respondent_responses AS answer ON RespondentID = respondent.id "
             "JOIN question ON question.id = answer.QuestionID "
             "LEFT JOIN response ON response.id = ResponseID "
             "LEFT JOIN responsematrix ON responsematrix.id = answer.ResponseMatrixID "
             "ORDER BY submitteddate, respondent.id, answer.QuestionID, answer.id;"});
        for (const char* what : {"export", "table", "report"})
            Add(what, {self_, "--write", what, survey_.toStdString(),
                       directory_.filePath(what).toStdString()});
    }

  private:
    void Add(const std::string& name, const std::vector<std::string>& command) {
        benchmark::RegisterBenchmark(
            name.c_str(),
            [this, name, command](benchmark::State& state) {
                Measured sum;
                for ([[maybe_unused]] const auto& run : state) {
                    const Measured one = Run(command, output_);
                    state.SetIterationTime(one.seconds);
                    sum.seconds += one.seconds;
                    sum.processorSeconds += one.processorSeconds;
                    sum.peakMegabytes = std::max(sum.peakMegabytes, one.peakMegabytes);
                }
                if (name == "shell/rows")
                    shell_ = sum;
                state.counters["of_shell"] = sum.seconds / shell_.seconds;
                state.counters["cpu_of_shell"] = sum.processorSeconds / shell_.processorSeconds;
                state.counters["peak_MB"] = sum.peakMegabytes;
                const QString file = directory_.filePath(QString::fromStdString(name));
                state.counters["file_MB"] =
                    static_cast<double>(
                        QFileInfo(QFileInfo::exists(file) ? file : QString::fromStdString(output_))
                            .size()) /
                    1e6;
            })
            ->UseManualTime()
            ->Iterations(5)
            ->Unit(benchmark::kMillisecond);
    }

    QTemporaryDir directory_;
    std::string self_;
    QString survey_;
    std::string output_;
    Measured shell_;
};

} // namespace
} // namespace pollarix::benchmarks

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv, argv + argc);
    if (arguments.size() == 5 && arguments[1] == "--write") {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        const QApplication application(argc, argv);
        return pollarix::benchmarks::WriteOne(arguments[2], QString::fromStdString(arguments[3]),
                                              QString::fromStdString(arguments[4]));
    }
    int respondents = 100000;
    if (arguments.size() >= 3 && arguments[1] == "--respondents") {
        respondents = std::atoi(arguments[2].c_str());
        argv[2] = argv[0];
        argv += 2;
        argc -= 2;
    }
    benchmark::Initialize(&argc, argv);
    pollarix::benchmarks::Comparison comparison(arguments[0], respondents);
    comparison.Register();
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
