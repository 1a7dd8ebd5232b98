// The comparisons of the kernel and of the recorder's text in the 32-bit build, timed in the processor's cycles: Google
// Benchmark is not packaged for the cross compiler. The two sides take turns. Exit code 1 when a limit is missed.
#include <x86intrin.h>

#include "bench/comparison.h"

namespace corvane::bench {

namespace {

constexpr int Repetitions = 41;

uint64_t Cycles(const std::function<void()>& run, const std::function<void()>& beforeEach, int runs) {
    uint64_t cycles = 0;
    for (int i = 0; i < runs; i++) {
        if (beforeEach) beforeEach();
        const int batch = beforeEach ? 1 : 16;
        const uint64_t start = __rdtsc();
        for (int k = 0; k < batch; k++) run();
        cycles += __rdtsc() - start;
    }
    return cycles;
}

bool Measure(const Comparison& row) {
    constexpr int Runs = 200;  // some hundred microseconds
    const auto time = [&](const std::function<void()>& run) {
        return static_cast<double>(Cycles(run, row.BeforeEach, Runs));
    };
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
