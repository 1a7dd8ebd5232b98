// From calibrated codes to the host's samples, one block at a time: choose the selected channels, round to the nearest
// integer (ties to even), limit to 16 bits, centre on zero (minus 16384, saturating), interleave. Each value is read
// once and each sample written once.
#pragma once

#include <cstdint>
#include <vector>

#include "driver/model/engine_state.h"

namespace corvane {

constexpr int16_t MidScale = 16384;  // calibrated code that stands for sample 0

// Where the samples of one kadr come from. Made once per recording; the modules' blocks must stay where they are.
struct StorePlan {
    struct Source {
        int16_t Position;  // in the kadr
        // The channel's value in the block's first kadr; that of the next kadr is ModuleChannels further on.
        const double* First;
    };
    // All 16 channels of a module at once.
    struct DenseModule {
        const double* Block;
        int16_t Fitted[ModuleChannels];  // -1 keeps the sample; 0, for an empty position, makes it 0
    };
    int16_t Channels = 0;            // samples of one kadr
    std::vector<DenseModule> Dense;  // the table is nothing but whole modules, in order ...
    std::vector<Source> Sparse;      // ... or a choice of channels; those on empty positions are left out
};

StorePlan MakeStorePlan(const EngineState& engine, const std::vector<int16_t>& table);

// The sample for one calibrated code.
int16_t SampleOf(double code);

// Whether a module's block holds numbers only, in its first `kadrs` kadrs: neither NaN nor infinity.
bool AllNumbers(const double* block, int32_t kadrs);

// Writes `kadrs` kadrs to `ring`, which was cleared before the recording: samples of empty positions stay 0.
void StoreBlock(const StorePlan& plan, int32_t kadrs, int16_t* ring);

}  // namespace corvane
