#include "bench/comparison.h"

#include <cstdio>

namespace corvane::bench {

void PrintHead() {
    std::printf("| what | against | measured | limit | met |\n|---|---|---|---|---|\n");
}

bool PrintRow(const Comparison& row, double driver, double alternative) {
    double measured = driver - alternative;
    if (row.Kind == Goal::CostAtMost) measured = driver / alternative;
    if (row.Kind == Goal::FasterAtLeast) measured = alternative / driver;
    const bool met = row.Kind == Goal::FasterAtLeast ? measured >= row.Limit : measured <= row.Limit;
    const char* unit = row.Kind == Goal::NanosecondsAtMost ? "ns" : "x ";
    const char* limit = row.Kind == Goal::FasterAtLeast ? "at least" : "at most";
    const std::string against = row.Kind == Goal::FasterAtLeast ? "faster than " + row.Against : row.Against;
    std::printf("| %-34s | %-36s | %7.2f %s | %s %g %s | %s |\n", row.Name.c_str(), against.c_str(), measured, unit,
                limit, row.Limit, unit, met ? "yes" : "NO");
    return met;
}

}  // namespace corvane::bench
