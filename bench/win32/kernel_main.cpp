// The comparisons of the kernel and of the recorder's text in the 32-bit build, timed by the processor's counter:
// Google Benchmark is not packaged for the cross compiler. The two sides take turns. Exit code 1 when a limit is
// missed.
#include <x86intrin.h>
#include <chrono>

#include "bench/comparison.h"

namespace corvane::bench {

namespace {

constexpr int Repetitions = 41;

// The processor's counter, which is finer than the system's clocks.
double NanosecondsOfTick() {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    const uint64_t ticks = __rdtsc();
    while (Clock::now() - start < std::chrono::milliseconds(200)) {
    }
    const std::chrono::duration<double, std::nano> passed = Clock::now() - start;
    return passed.count() / static_cast<double>(__rdtsc() - ticks);
}

// Of one run, in the processor's ticks.
double Ticks(const std::function<void()>& run, const std::function<void()>& beforeEach, int runs) {
    uint64_t ticks = 0;
    const int batch = beforeEach ? 1 : 16;
    for (int i = 0; i < runs; i++) {
        if (beforeEach) beforeEach();
        const uint64_t start = __rdtsc();
        for (int k = 0; k < batch; k++) run();
        ticks += __rdtsc() - start;
    }
    return static_cast<double>(ticks) / runs / batch;
}

bool Measure(const Comparison& row) {
    constexpr int Runs = 200;  // some hundred microseconds
    static const double tick = NanosecondsOfTick();
    const auto time = [&](const std::function<void()>& run) { return tick * Ticks(run, row.BeforeEach, Runs); };
    time(row.Driver);
    time(row.Alternative);
    std::vector<Pair> pairs(Repetitions);
    for (Pair& pair : pairs) pair = {time(row.Driver), time(row.Alternative)};
    return PrintRow(row, pairs);
}

}  // namespace

}  // namespace corvane::bench

int main() {
    using namespace corvane::bench;
    PrintHead();
    bool allMet = true;
    for (const Comparison& row : KernelComparisons()) allMet &= Measure(row);
    for (const Comparison& row : CsvComparisons()) allMet &= Measure(row);
    return allMet ? 0 : 1;
}
