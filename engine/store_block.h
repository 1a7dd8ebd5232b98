// From calibrated codes to the host's samples, one block at a time: choose the selected channels, round to the nearest
// integer (ties to even), limit to 16 bits, centre on zero (minus 16384, saturating), interleave. A block of doubles is
// read once and whole kadrs are written once.
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
        const double*
            First;  // the channel's value of the block's first kadr; the next kadr's lies ModuleChannels further
    };
    // All 16 channels of a module at once.
    struct DenseModule {
        const double* Block;
        int16_t Fitted[ModuleChannels];  // -1: keep the sample, 0: an empty position, always 0
    };
    int16_t Channels = 0;            // samples of one kadr
    std::vector<DenseModule> Dense;  // the table is nothing but whole modules, in order ...
    std::vector<Source> Sparse;      // ... or a choice of channels; those on empty positions are left out
};

StorePlan PlanStore(const EngineState& engine, const std::vector<int16_t>& table);

// The rule for one value.
int16_t SampleOf(double code);

// Writes `kadrs` kadrs to `ring`. Entries of channels on empty positions keep 0, which the ring was cleared to.
void StoreBlock(const StorePlan& plan, int32_t kadrs, int16_t* ring);

}  // namespace corvane
