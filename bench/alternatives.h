// What the sample kernel is measured against: limits of the machine, and the plain ways to do its work.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "driver/model/engine_state.h"
#include "engine/store_block.h"

namespace corvane::bench {

// Reads `count` doubles, a multiple of eight, with SSE2.
void ReadAll(const double* values, size_t count);

// Reads the selected doubles of a block one by one into one running sum. Each addition waits for the one before, so
// this is what a plain loop takes, not the least that reading can take: with four sums it is about three times as fast.
void ReadSelected(const StorePlan& plan, int32_t kadrs);

// The four steps on vectors, channel by channel: choose, round and limit, centre, interleave.
void StepByStep(const EngineState& engine, const std::vector<int16_t>& table, int32_t kadrs, int16_t* ring);

// The same result in one pass, one value at a time, with the processor's scalar conversion.
void FusedScalar(const EngineState& engine, int32_t channels, int32_t kadrs, int16_t* ring);

}  // namespace corvane::bench
