// One row of the benchmark table: a piece of the driver against a limit of the machine, or against the plain way to do
// the same. Both run in one process and one run, so that the ratio means the same on any machine.
#pragma once

#include <cstddef>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

namespace corvane::bench {

enum class Goal {
    CostAtMost,         // driver's time / alternative's time
    FasterAtLeast,      // alternative's time / driver's time
    NanosecondsAtMost,  // driver's time less the alternative's, for each value
};

struct Comparison {
    std::string Name;
    std::string Against;
    Goal Kind;
    double Limit;
    std::function<void()> Driver;
    std::function<void()> Alternative;
    std::function<void()> BeforeEach = {};  // not timed; makes every single run cold
    double Values = 1;                      // of one run, for NanosecondsAtMost: what each of them takes
};

std::vector<Comparison> KernelComparisons();
std::vector<Comparison> CsvComparisons();
std::vector<Comparison> RingComparisons();
Comparison TwoCoreComparison();

// The times of both sides in ns, taken one right after the other: what else the machine does changes from moment to
// moment.
struct Pair {
    double Driver;
    double Alternative;
};

void PrintHead();
// Prints a row with the median of what each pair makes of it; false when that misses the limit.
bool PrintRow(const Comparison& row, const std::vector<Pair>& pairs);

// Keeps the compiler from dropping or merging work on what the pointer reaches.
inline void Keep(const void* memory) {
    asm volatile("" : : "r"(memory) : "memory");
}

// Keeps a result.
inline void Keep(double value) {
    asm volatile("" : : "x"(value));
}

// memcpy of the library: of a size that the compiler knows it would make a string instruction, which is slower.
inline void CopyBytes(void* destination, const void* source, size_t bytes) {
    asm volatile("" : "+r"(bytes));
    std::memcpy(destination, source, bytes);
}

}  // namespace corvane::bench
