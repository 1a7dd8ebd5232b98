// Runs every comparison under Google Benchmark, round after round, its two sides one right after the other, and prints
// one table of the medians. Exit code 1 when a limit is missed.
#include <benchmark/benchmark.h>

#include <chrono>
#include <map>

#include "bench/comparison.h"

namespace corvane::bench {

namespace {

constexpr int Rounds = 31;

std::string DriverName(size_t row) {
    return std::to_string(row) + "d";
}

std::string AlternativeName(size_t row) {
    return std::to_string(row) + "a";
}

// One side of a comparison as a benchmark. Cold runs are timed one by one; the others in batches.
void Register(const std::string& name, const std::function<void()>& run, const std::function<void()>& beforeEach) {
    using Clock = std::chrono::steady_clock;
    auto* benchmark = benchmark::RegisterBenchmark(name.c_str(), [run, beforeEach](benchmark::State& state) {
        for (auto _ : state) {
            if (!beforeEach) {
                run();
                continue;
            }
            beforeEach();
            const Clock::time_point start = Clock::now();
            run();
            state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
        }
    });
    benchmark->MinTime(0.02);
    if (beforeEach) {
        benchmark->UseManualTime();
    } else {
        benchmark->UseRealTime();
    }
}

// Keeps every round's time, in ns, by the benchmark's name.
class Times : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration)
                ByName_[run.run_name.function_name].push_back(run.GetAdjustedRealTime());
        }
    }

    std::vector<Pair> Pairs(size_t row) const {
        const std::vector<double>& driver = ByName_.at(DriverName(row));
        const std::vector<double>& alternative = ByName_.at(AlternativeName(row));
        std::vector<Pair> pairs;
        for (size_t i = 0; i < driver.size(); i++) pairs.push_back({driver[i], alternative[i]});
        return pairs;
    }

private:
    std::map<std::string, std::vector<double>> ByName_;
};

int Run() {
    std::vector<Comparison> rows = KernelComparisons();
    for (Comparison& row : RingComparisons()) rows.push_back(std::move(row));
    for (Comparison& row : CsvComparisons()) rows.push_back(std::move(row));
    for (size_t i = 0; i < rows.size(); i++) {
        Register(DriverName(i), rows[i].Driver, rows[i].BeforeEach);
        Register(AlternativeName(i), rows[i].Alternative, rows[i].BeforeEach);
    }
    Times times;
    for (int round = 0; round < Rounds; round++) benchmark::RunSpecifiedBenchmarks(&times);
    PrintHead();
    bool allMet = true;
    for (size_t i = 0; i < rows.size(); i++) allMet &= PrintRow(rows[i], times.Pairs(i));
    return allMet ? 0 : 1;
}

}  // namespace

}  // namespace corvane::bench

int main() {
    char program[] = "native_bench";
    char* arguments[] = {program};
    int count = 1;
    benchmark::Initialize(&count, arguments);
    return corvane::bench::Run();
}
