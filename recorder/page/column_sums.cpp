#include "recorder/page/column_sums.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace corvane::recorder {
namespace {

// So many columns are summed at once. The compiler makes vectors of the loops over them, and the sums stay near.
constexpr size_t Lanes = 32;

// The upper and lower halves of squares apart: neither sum leaves 32 bits.
struct Tile {
    int16_t Min[Lanes], Max[Lanes];
    int32_t Sum[Lanes];
    uint32_t Low[Lanes], High[Lanes];
};

Tile SumTile(const int16_t* samples, size_t rows, size_t width) {
    Tile tile{};
    for (size_t lane = 0; lane < Lanes; lane++) tile.Min[lane] = tile.Max[lane] = samples[lane];
    for (size_t row = 0; row < rows; row++) {
        const int16_t* from = samples + row * width;
        // Not std::min: of references the compiler makes no vectors.
        for (size_t lane = 0; lane < Lanes; lane++)
            tile.Min[lane] = from[lane] < tile.Min[lane] ? from[lane] : tile.Min[lane];
        for (size_t lane = 0; lane < Lanes; lane++)
            tile.Max[lane] = from[lane] > tile.Max[lane] ? from[lane] : tile.Max[lane];
    }
    for (size_t row = 0; row < rows; row++) {
        const int16_t* from = samples + row * width;
        for (size_t lane = 0; lane < Lanes; lane++) tile.Sum[lane] += from[lane];
    }
    for (size_t row = 0; row < rows; row++) {
        const int16_t* from = samples + row * width;
        for (size_t lane = 0; lane < Lanes; lane++) {
            const int32_t sample = from[lane];
            const auto square = static_cast<uint32_t>(sample * sample);
            tile.Low[lane] += square & 0xFFFFu;
            tile.High[lane] += square >> 16;
        }
    }
    return tile;
}

// While sums are collected, Squares are those of the samples themselves, at most 2^45: exact.
void Include(ColumnSums& sums, int64_t count, int32_t min, int32_t max, int64_t sum, int64_t squares) {
    sums.Count += count;
    sums.Min = std::min(sums.Min, min);
    sums.Max = std::max(sums.Max, max);
    sums.Sum += sum;
    sums.Squares += static_cast<double>(squares);
}

}  // namespace

void ColumnSums::Add(const ColumnSums& other) {
    if (other.Count == 0) return;
    if (Count > 0) {
        const double distance = other.Mean() - Mean();
        const auto mine = static_cast<double>(Count);
        const auto others = static_cast<double>(other.Count);
        Squares += distance * distance * mine * others / (mine + others);
    }
    Squares += other.Squares;
    Count += other.Count;
    Min = std::min(Min, other.Min);
    Max = std::max(Max, other.Max);
    Sum += other.Sum;
}

// Several rows in a row of their own fill all lanes, whatever the number of columns.
void SumColumns(std::span<const int16_t> samples, std::span<ColumnSums> columns) {
    const size_t count = columns.size();
    const size_t width = std::lcm(count, Lanes);
    const size_t rows = samples.size() / width;
    std::ranges::fill(columns, ColumnSums{});
    for (size_t first = 0; rows > 0 && first < width; first += Lanes) {
        const Tile tile = SumTile(samples.data() + first, rows, width);
        for (size_t lane = 0; lane < Lanes; lane++) {
            Include(columns[(first + lane) % count], static_cast<int64_t>(rows), tile.Min[lane], tile.Max[lane],
                    tile.Sum[lane], int64_t{tile.High[lane]} * 65536 + tile.Low[lane]);
        }
    }
    size_t column = 0;
    for (const int32_t sample : samples.subspan(rows * width)) {
        Include(columns[column], 1, sample, sample, sample, int64_t{sample} * sample);
        if (++column == count) column = 0;
    }
    // n Q - S^2 is at most 2^60: exact as whole numbers, where the difference of doubles would be noise.
    for (ColumnSums& sums : columns) {
        const auto difference = sums.Count * static_cast<int64_t>(sums.Squares) - sums.Sum * sums.Sum;
        sums.Squares = static_cast<double>(difference) / static_cast<double>(sums.Count);
    }
}

// Whole numbers don't hold the squares of these. The few samples of a text take the slower way of two passes.
void SumColumns(std::span<const int32_t> samples, std::span<ColumnSums> columns) {
    const size_t count = columns.size();
    for (size_t column = 0; column < count; column++) {
        ColumnSums sums;
        for (size_t i = column; i < samples.size(); i += count) {
            sums.Count++;
            sums.Min = std::min(sums.Min, samples[i]);
            sums.Max = std::max(sums.Max, samples[i]);
            sums.Sum += samples[i];
        }
        const double mean = sums.Mean();
        for (size_t i = column; i < samples.size(); i += count) {
            const double distance = samples[i] - mean;
            sums.Squares += distance * distance;
        }
        columns[column] = sums;
    }
}

}  // namespace corvane::recorder
