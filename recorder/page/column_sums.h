// Sums over the columns of a table, row by row as a recording has it. Most of a report's time goes here.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace corvane::recorder {

struct ColumnSums {
    int64_t Count = 0;
    int32_t Min = INT32_MAX;
    int32_t Max = INT32_MIN;
    int64_t Sum = 0;
    double Squares = 0;  // of the distances from the mean

    double Mean() const { return static_cast<double>(Sum) / static_cast<double>(Count); }
    void Add(const ColumnSums& other);
};

constexpr size_t SumRowsMax = 32768;  // of one call: sums of 32 bits hold so many squares

// `samples`: whole rows, of which there are 1 to SumRowsMax, with one sample for each of `columns`.
void SumColumns(std::span<const int16_t> samples, std::span<ColumnSums> columns);
void SumColumns(std::span<const int32_t> samples, std::span<ColumnSums> columns);

}  // namespace corvane::recorder
