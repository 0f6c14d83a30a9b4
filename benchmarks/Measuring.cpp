#include "Measuring.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <stdexcept>
#include <utility>

#include "generate_survey.h"

extern char** environ;

namespace pollarix::benchmarks {

namespace {

std::map<QString, std::function<void(const QStringList&)>>& Works() {
    static std::map<QString, std::function<void(const QStringList&)>> works;
    return works;
}

double Milliseconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
}

// Gives what the process used.
rusage Run(const std::vector<std::string>& command, const QString& output) {
    std::vector<char*> arguments;
    for (const std::string& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, QFile::encodeName(output).constData(),
                                     O_WRONLY | O_CREAT | O_TRUNC, 0600);
    pid_t process = 0;
    int status = posix_spawnp(&process, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    rusage usage{};
    if (status == 0)
        wait4(process, &status, 0, &usage);
    if (status != 0)
        throw std::runtime_error(command[0] + " failed");
    return usage;
}

} // namespace

void Respondents(benchmark::internal::Benchmark* measured) {
    measured->RangeMultiplier(10)->Range(1000, 1000000)->Unit(benchmark::kMillisecond);
}

QString LargeSurvey(int respondents) {
    static const QTemporaryDir own;
    const QString kept = qEnvironmentVariable("POLLARIX_BENCHMARK_SURVEYS");
    const QString path =
        QString("%1/survey-%2.plxs").arg(kept.isEmpty() ? own.path() : kept).arg(respondents);
    if (!QFile::exists(path)) {
        GenerateSurvey(POLLARIX_DATA_DIR "/blank.mdb", path + ".part", respondents);
        QFile::rename(path + ".part", path);
    }
    return path;
}

double OwnMemory() {
    QFile file("/proc/self/status");
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : file.readAll().split('\n'))
        if (line.startsWith("RssAnon:"))
            return line.simplified().split(' ').value(1).toDouble() * 1024 / 1e6;
    return 0;
}

Work::Work(const char* name, std::function<void(const QStringList&)> work) {
    Works().emplace(name, std::move(work));
}

std::vector<std::string> Alone(const char* work, const QStringList& arguments) {
    std::vector<std::string> command{QCoreApplication::applicationFilePath().toStdString(),
                                     "--alone", work};
    for (const QString& argument : arguments)
        command.push_back(argument.toStdString());
    return command;
}

int DoAlone(const QStringList& arguments) {
    Works().at(arguments.value(0))(arguments.mid(1));
    return 0;
}

void MeasureProcess(benchmark::State& state, const std::vector<std::string>& command,
                    const QString& output, const std::function<void()>& prepare) {
    double processor = 0;
    double peak = 0;
    for ([[maybe_unused]] const auto run : state) {
        if (prepare)
            prepare();
        const auto start = std::chrono::steady_clock::now();
        const rusage usage = Run(command, output);
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        state.SetIterationTime(taken.count());
        processor += Milliseconds(usage.ru_utime) + Milliseconds(usage.ru_stime);
        peak = std::max(peak, static_cast<double>(usage.ru_maxrss) * 1024 / 1e6);
    }
    state.counters["cpu_ms"] = {processor, benchmark::Counter::kAvgIterations};
    state.counters["peak_MB"] = peak;
}

} // namespace pollarix::benchmarks
