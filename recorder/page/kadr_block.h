// Kadrs as a report reads them, block after block, and what is missing in them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace corvane::recorder {

// A bit for each column of a recording.
using Columns = uint64_t;
constexpr size_t ColumnsMax = 64;

constexpr size_t BlockSamples = 256 * 1024;  // about as many as are read at once

// Kadrs one after another in which the same columns were not measured.
struct MissingRun {
    int64_t Kadrs = 0;
    Columns Missing = 0;
};

// `Sample`: int16_t as recorded, or int32_t for the digits of a text.
template <class Sample>
struct KadrBlock {
    std::vector<Sample> Samples;   // row by row; those that were not measured can be anything
    std::vector<MissingRun> Runs;  // of all kadrs here
};

}  // namespace corvane::recorder
