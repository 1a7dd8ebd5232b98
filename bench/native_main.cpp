// Runs every comparison under Google Benchmark, its two sides interleaved at random, and prints one table of the
// medians. Exit code 1 when a limit is missed.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <map>

#include "bench/comparison.h"

namespace corvane::bench {

namespace {

constexpr int Repetitions = 15;

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
    benchmark->Repetitions(Repetitions)->MinTime(0.02);
    if (beforeEach) {
        benchmark->UseManualTime();
    } else {
        benchmark->UseRealTime();
    }
}

// Keeps every repetition's time, in ns, by the benchmark's name.
class Times : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration)
                ByName_[run.run_name.function_name].push_back(run.GetAdjustedRealTime());
        }
    }

    double Median(const std::string& name) {
        std::vector<double>& times = ByName_.at(name);
        const auto middle = times.begin() + static_cast<ptrdiff_t>(times.size() / 2);
        std::nth_element(times.begin(), middle, times.end());
        return *middle;
    }

private:
    std::map<std::string, std::vector<double>> ByName_;
};

int Run() {
    std::vector<Comparison> rows = KernelComparisons();
    for (Comparison& row : RingComparisons()) rows.push_back(std::move(row));
    for (size_t i = 0; i < rows.size(); i++) {
        Register(std::to_string(i) + "d", rows[i].Driver, rows[i].BeforeEach);
        Register(std::to_string(i) + "a", rows[i].Alternative, rows[i].BeforeEach);
    }
    Times times;
    benchmark::RunSpecifiedBenchmarks(&times);
    PrintHead();
    bool allMet = true;
    for (size_t i = 0; i < rows.size(); i++) {
        allMet &= PrintRow(rows[i], times.Median(std::to_string(i) + "d"), times.Median(std::to_string(i) + "a"));
    }
    return allMet ? 0 : 1;
}

}  // namespace

}  // namespace corvane::bench

int main() {
    char program[] = "native_bench";
    char interleave[] = "--benchmark_enable_random_interleaving=true";
    char* arguments[] = {program, interleave};
    int count = 2;
    benchmark::Initialize(&count, arguments);
    return corvane::bench::Run();
}
