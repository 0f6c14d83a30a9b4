// What the benchmarks share: the sizes they run at, surveys of these sizes, and work that is
// measured in a process of its own.
#pragma once

#include <QString>
#include <QStringList>

#include <benchmark/benchmark.h>

#include <functional>
#include <string>
#include <vector>

namespace pollarix::benchmarks {

// 1,000 to 1,000,000 respondents, times in milliseconds. The larger ones take gigabytes of disk and
// minutes; one size alone: --benchmark_filter='/100000(/|$)'
void Respondents(benchmark::internal::Benchmark* measured);

// The path of a generated survey of that many respondents, made by the first call. With a directory
// in the environment variable POLLARIX_BENCHMARK_SURVEYS it stays there for the next program.
QString LargeSurvey(int respondents);

// Memory of this process that it shares with no file, in megabytes.
double OwnMemory();

// A piece of work that a process of its own can be started for. To be made at file scope.
struct Work {
    Work(const char* name, std::function<void(const QStringList&)> work);
};

// The command that starts this program for one piece of work.
std::vector<std::string> Alone(const char* work, const QStringList& arguments);

// Does what Alone's command asks for, and gives the process's result. What is thrown ends it.
int DoAlone(const QStringList& arguments);

// Runs the command in each iteration, after `prepare`, which does not count. The time is the whole
// process's. Counters: "cpu_ms" is its processor time, which the load of other programs changes
// little, and "peak_MB" the most memory it had. Its output goes to the file.
void MeasureProcess(benchmark::State& state, const std::vector<std::string>& command,
                    const QString& output = "/dev/null", const std::function<void()>& prepare = {});

} // namespace pollarix::benchmarks
