// One row of the benchmark table: a piece of the driver against a limit of the machine, or against the plain way to do
// the same. Both run in one process and one run, so that the ratio means the same on any machine.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace corvane::bench {

enum class Goal {
    CostAtMost,         // driver's time / alternative's time
    FasterAtLeast,      // alternative's time / driver's time
    NanosecondsAtMost,  // driver's time less the alternative's
};

struct Comparison {
    std::string Name;
    std::string Against;
    Goal Kind;
    double Limit;
    std::function<void()> Driver;
    std::function<void()> Alternative;
    std::function<void()> BeforeEach = {};  // not timed; makes every single run cold
};

std::vector<Comparison> KernelComparisons();
std::vector<Comparison> RingComparisons();

void PrintHead();
// Prints a row of the two sides' times; false when it misses its limit.
bool PrintRow(const Comparison& row, double driver, double alternative);

// Keeps the compiler from dropping or merging work on what the pointer reaches.
inline void Keep(const void* memory) {
    asm volatile("" : : "r"(memory) : "memory");
}

// Keeps a result.
inline void Keep(double value) {
    asm volatile("" : : "x"(value));
}

}  // namespace corvane::bench
