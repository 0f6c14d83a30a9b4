// Statistics on large surveys: reading all answers, then tables of each kind. "MB" is what the
// answers take in memory.
#include "Measuring.h"
#include "platform/database/Database.h"
#include "statistics/Association.h"
#include "statistics/Comparison.h"
#include "statistics/Filter.h"
#include "statistics/Frequencies.h"
#include "statistics/Raking.h"
#include "statistics/Reliability.h"

using namespace pollarix;
using namespace pollarix::benchmarks;
using namespace pollarix::statistics;

namespace {

std::unique_ptr<Answers> ReadAll(int respondents) {
    Connection survey;
    survey.Open(LargeSurvey(respondents));
    return std::make_unique<Answers>(survey);
}

// Of the size that the benchmark runs at; read once for all of them.
const Answers& Of(benchmark::State& state) {
    static std::unique_ptr<Answers> answers;
    static std::int64_t size = 0;
    if (size != state.range(0)) {
        size = state.range(0);
        answers = ReadAll(static_cast<int>(size));
    }
    return *answers;
}

std::size_t Place(const Answers& answers, const char* name) {
    return answers.Survey().Find(name).value();
}

Axis AxisOf(const Answers& answers, const char* name) {
    return {Axis::Kind::Variable, Place(answers, name)};
}

// The respondents from the web, weighted to even shares of a question.
Sample WeightedPart(const Answers& answers) {
    Filter web;
    web.kind = Filter::Kind::IsOneOf;
    web.variable = SurveyVariables::Source;
    web.codes = {1};
    Sample sample;
    sample.chosen = Choose(answers, web);
    sample.weights = Rake(answers, {{Place(answers, "q6"), {4, 3, 2, 1}}}, sample.chosen).weights;
    return sample;
}

void ReadAnswers(benchmark::State& state) {
    std::unique_ptr<Answers> answers;
    LargeSurvey(static_cast<int>(state.range(0)));
    const double before = OwnMemory();
    for ([[maybe_unused]] const auto run : state)
        answers = ReadAll(static_cast<int>(state.range(0)));
    state.counters["MB"] = static_cast<double>(answers->Bytes()) / 1e6;
    state.counters["process_MB"] = OwnMemory() - before;
}

void CountShares(benchmark::State& state) {
    const Answers& answers = Of(state);
    for ([[maybe_unused]] const auto run : state) {
        benchmark::DoNotOptimize(CountFrequencies(answers, Place(answers, "q2"), {}));
        benchmark::DoNotOptimize(CountTicks(answers, 2, {}));
    }
}

void CrossTwo(benchmark::State& state) {
    const Answers& answers = Of(state);
    for ([[maybe_unused]] const auto run : state)
        benchmark::DoNotOptimize(Associate(
            CountCrossTables(answers, AxisOf(answers, "q4_1"), AxisOf(answers, "q4_2"), {}, {})
                .front(),
            true));
}

void CrossTicksByLayer(benchmark::State& state) {
    const Answers& answers = Of(state);
    for ([[maybe_unused]] const auto run : state)
        for (const CrossTable& table :
             CountCrossTables(answers, {Axis::Kind::Ticks, 2}, AxisOf(answers, "q6"),
                              Place(answers, "source"), {}))
            benchmark::DoNotOptimize(AssociateLines(table));
}

void CrossFilteredAndWeighted(benchmark::State& state) {
    const Answers& answers = Of(state);
    for ([[maybe_unused]] const auto run : state)
        benchmark::DoNotOptimize(
            Associate(CountCrossTables(answers, AxisOf(answers, "q2"), AxisOf(answers, "q4_2"), {},
                                       WeightedPart(answers))
                          .front(),
                      false));
}

void CompareGroups(benchmark::State& state) {
    const Answers& answers = Of(state);
    for ([[maybe_unused]] const auto run : state)
        benchmark::DoNotOptimize(
            Compare(answers, Place(answers, "q4_1"), Place(answers, "q2"), {}));
}

void DaysBySource(benchmark::State& state) {
    const Answers& answers = Of(state);
    for ([[maybe_unused]] const auto run : state)
        benchmark::DoNotOptimize(
            Compare(answers, SurveyVariables::Date, SurveyVariables::Source, {}));
}

void Alpha(benchmark::State& state) {
    const Answers& answers = Of(state);
    for ([[maybe_unused]] const auto run : state)
        benchmark::DoNotOptimize(CronbachsAlpha(
            answers, {Place(answers, "q4_1"), Place(answers, "q4_2"), Place(answers, "q4_3")}, {}));
}

BENCHMARK(ReadAnswers)->Apply(Respondents)->Iterations(1);
BENCHMARK(CountShares)->Apply(Respondents);
BENCHMARK(CrossTwo)->Apply(Respondents);
BENCHMARK(CrossTicksByLayer)->Apply(Respondents);
BENCHMARK(CrossFilteredAndWeighted)->Apply(Respondents);
BENCHMARK(CompareGroups)->Apply(Respondents);
BENCHMARK(DaysBySource)->Apply(Respondents);
BENCHMARK(Alpha)->Apply(Respondents);

} // namespace
