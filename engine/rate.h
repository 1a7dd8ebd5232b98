// The rate rules of the module and the sizes that follow from a rate.
#pragma once

#include <cstdint>

#include "driver/model/engine_state.h"
#include "driver/model/input_state.h"

namespace corvane {

// Changes a rate to one that the module has, 1000 / (d + 1) Hz from 4 to 1000, and stores it: `rate` is
// limited in place (NaN counts as too low), input.Rate and the result are the effective rate. The divisor d is written
// into every opened module's record unless a recording thread works on it; it takes effect with the next SetConfig.
float ApplyRate(InputState& input, EngineState& engine, float& rate);

// The effective rate, in Hz, that ApplyRate would give.
float EffectiveRate(const InputState& input, float rate);

// Kadrs per block: the smallest power of two that lasts at least 50 ms. rate: effective, Hz.
int32_t BlockKadrsFor(float rate);

// Longest wait for one block, in ms: its duration and half a second.
int32_t RecvTimeoutFor(float rate, int32_t blockKadrs);

// How long stopping waits for the recording thread, in ms: two block periods, or 0 without a block.
uint32_t StopWaitFor(float rate, int32_t blockKadrs);

}  // namespace corvane
