#include "bench/comparison.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>

namespace corvane::bench {

void PrintHead() {
    std::printf("| what | against | measured | limit | met |\n|---|---|---|---|---|\n");
}

bool PrintRow(const Comparison& row, const std::vector<Pair>& pairs) {
    std::vector<double> figures;
    for (const auto& [driver, alternative] : pairs) {
        double figure = (driver - alternative) / row.Values;
        if (row.Kind == Goal::CostAtMost) figure = driver / alternative;
        if (row.Kind == Goal::FasterAtLeast) figure = alternative / driver;
        figures.push_back(figure);
    }
    const auto middle = figures.begin() + static_cast<ptrdiff_t>(figures.size() / 2);
    std::nth_element(figures.begin(), middle, figures.end());
    const double measured = *middle;
    const bool met = row.Kind == Goal::FasterAtLeast ? measured >= row.Limit : measured <= row.Limit;
    const char* unit = row.Kind == Goal::NanosecondsAtMost ? "ns" : "x ";
    const char* limit = row.Kind == Goal::FasterAtLeast ? "at least" : "at most";
    const std::string against = row.Kind == Goal::FasterAtLeast ? "faster than " + row.Against : row.Against;
    std::printf("| %-35s | %-36s | %7.2f %s | %s %g %s | %s |\n", row.Name.c_str(), against.c_str(), measured, unit,
                limit, row.Limit, unit, met ? "yes" : "NO");
    return met;
}

}  // namespace corvane::bench
